#pragma once

#include "project/ZoomKeyframe.h"

#include <optional>

namespace tavi {

/// Where the parts of a keyframe may be put on the timeline: what a drag asks for, limited. The
/// neighbours are another's business. Times are seconds of source video. Pure; any thread.
namespace TimelineMoves {

/// Begins at `time`: not before 0, and a tenth of a second before its end at the latest.
ZoomKeyframe withStart(ZoomKeyframe keyframe, double time);

/// Ends at `time`: not after `duration`, and a tenth of a second after its start at the earliest.
ZoomKeyframe withEnd(ZoomKeyframe keyframe, double time, double duration);

/// A point of the curve at `time`, put between the ramps; the level is the caller's.
ZoomCurvePoint withinRamps(const ZoomKeyframe& keyframe, ZoomCurvePoint point);

/// Whether a new point may stand there: not in a ramp.
bool isBetweenRamps(const ZoomKeyframe& keyframe, double time);

} // namespace TimelineMoves
} // namespace tavi
