#pragma once

#include "base/Uuid.h"

#include <optional>
#include <vector>

namespace tavi {

/// A stretch of source video.
struct TimeRange {
    Uuid id = Uuid::make();
    double start = 0; ///< Seconds of source video, inclusive.
    double end = 0;   ///< Seconds of source video, exclusive.

    bool operator==(const TimeRange&) const = default;
};

/// Which parts of the source video survive into the output. Cuts may be
/// unsorted, overlap, reach outside the trim or be empty; they stay as stored.
struct TrimState {
    double inPoint = 0;             ///< First kept moment, seconds of source video.
    std::optional<double> outPoint; ///< Last kept moment; absent: the end of the video.
    std::vector<TimeRange> cutSegments;

    bool operator==(const TrimState&) const = default;

    /// True when nothing is cut away: the source is its own output.
    bool isUntrimmed() const { return inPoint <= 0 && !outPoint && cutSegments.empty(); }
};

/// The stretches that survive, sorted, disjoint, each of positive length, with
/// fresh ids at each call.
///
/// Units:  `duration` of the source in seconds.
/// Errors: none; empty when the trim is empty or the cuts cover all of it.
/// Thread: any.
std::vector<TimeRange> keptRanges(const TrimState& trim, double duration);

/// Where a moment of the source lands in the output, absent when it doesn't
/// survive. Each kept range holds its start and not its end, so the very end of
/// the last one has no output time.
std::optional<double> outputTime(const TrimState& trim, double time, double duration);

/// The same for many moments of one trim: `ranges` as keptRanges() gives them.
std::optional<double> outputTime(const std::vector<TimeRange>& ranges, double time);

/// The sum of the lengths, in order.
double totalLength(const std::vector<TimeRange>& ranges);

} // namespace tavi
