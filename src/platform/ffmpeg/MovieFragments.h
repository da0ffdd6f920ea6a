#pragma once

#include "platform/ffmpeg/MovieBoxes.h"

namespace tavi {

/// What the fragments of a movie hold of one of its tracks.
struct FragmentedTrack {
    struct Sample {
        std::int64_t time = 0;  ///< Of decoding, in the track's ticks.
        std::uint32_t size = 0; ///< Bytes.
        std::uint32_t duration = 0;
        std::int32_t offset = 0; ///< From decoding to presentation.
        bool isKey = true;
    };
    /// Samples that lie one behind the other in the file.
    struct Chunk {
        std::uint64_t offset = 0; ///< In the file.
        std::uint32_t samples = 0;
    };

    std::uint32_t id = 0;
    std::vector<Sample> samples; ///< In order of decoding.
    std::vector<Chunk> chunks;   ///< Of all samples, in their order.
};

struct MovieFragments {
    std::vector<FragmentedTrack> tracks; ///< As many as `moov` has, in its order.
    std::uint64_t end = 0;               ///< Of the last whole fragment.
};

/// Nothing yet of a movie whose (empty) index is `moov`; its fragments begin at `start`.
MovieFragments noFragments(const MovieBox& moov, std::uint64_t start);

/// Adds the tables of all whole fragments from `found.end` up to `size`; what is not
/// whole, or no fragment, ends the reading. `moov` as above.
void readFragments(const ReadBytes& read, std::uint64_t size, const MovieBox& moov,
                   MovieFragments& found);

} // namespace tavi
