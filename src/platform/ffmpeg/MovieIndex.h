#pragma once

#include "platform/ffmpeg/MovieFragments.h"

#include <optional>
#include <span>

namespace tavi {

/// How the tracks of a movie end, where its fragments don't tell.
struct MovieEnds {
    /// For each track how long its last sample lasts, in its ticks.
    std::vector<std::optional<std::int64_t>> lastDurations;
    /// When the last sound ends at the latest, in ticks of the movie.
    std::optional<std::int64_t> sound;
};

/// An edit list ("edts"): nothing for `empty` ticks of the movie, then the track
/// from `mediaTime` (ticks of the track) on for `duration` ticks of the movie (0: to its end,
/// in a fragmented movie).
MovieBox makeEditList(std::int64_t empty, std::int64_t duration, std::int64_t mediaTime);

/// The plain index ("moov") of a movie: `moov` is that of the fragmented one, with
/// its edit lists. Tracks without a sample are left out. Absent for an index that
/// isn't ours: one without the boxes that every index has.
std::optional<MovieBox> makePlainIndex(MovieBox moov, MovieFragments fragments,
                                       const MovieEnds& ends);

} // namespace tavi
