#pragma once

#include "base/MediaTime.h"
#include "platform/ffmpeg/MovieBoxes.h"

#include <cstdint>
#include <filesystem>
#include <optional>

namespace tavi {

/// What the boxes of a QuickTime or MP4 file say about the whole movie
/// (ISO/IEC 14496-12, 8.2).
struct MovieHeader {
    bool isMovie = false;  ///< The file starts with a box of this family.
    bool hasIndex = false; ///< A "moov" box was found.
    /// The "mvhd" duration at the movie's own timescale; absent where the box
    /// is missing, damaged, or says 0 or "unknown" (a fragmented file).
    std::optional<MediaTime> duration;
};

/// Looks for the movie header. Never reads outside [0, size) and ends after a
/// bounded number of boxes, whatever the bytes are.
MovieHeader parseMovieHeader(const ReadBytes& read, std::uint64_t size);

/// The same of a file; an unreadable one counts as no movie.
MovieHeader readMovieHeader(const std::filesystem::path& path);

} // namespace tavi
