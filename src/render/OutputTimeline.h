#pragma once

#include "project/EditProject.h"

#include <vector>

namespace tavi {

/// What an export sees of a take: the kept stretches of its source, and the
/// keyframes and the log moved to output time.
struct OutputTimeline {
    std::vector<TimeRange> ranges;     ///< Kept stretches in source time.
    std::vector<double> outputOffsets; ///< Of each range, the length of those before it.
    std::vector<ZoomKeyframe> keyframes;
    std::vector<CursorEvent> cursorEvents;

    double duration() const { return totalLength(ranges); } ///< Seconds of output.
};

/// Moves a project to output time. `duration` is that of the source in seconds.
///
/// An untrimmed project is one range of the whole source, and nothing moves.
/// Otherwise a keyframe survives when both its ends do, a waypoint, curve point
/// or event when its own time does. `ranges` is empty when everything is cut away.
/// Pure; linear in the log for a log in order.
OutputTimeline makeOutputTimeline(const EditProject& project, double duration);

} // namespace tavi
