#pragma once

#include "base/Geometry.h"
#include "editor/TimelineHit.h"

#include <optional>
#include <vector>

namespace tavi {

/// A thing on the timeline that the keyboard reaches.
struct TimelineStop {
    TimelineHit hit;
    std::optional<Uuid> cut; ///< Present for a cut, whose `hit` is of no kind.
    TimelineLane lane = TimelineLane::upper;
    Rect place; ///< Points from the upper left corner of the lane's track, y downwards.

    /// Whether the two are the same thing, wherever it stands.
    bool isSame(const TimelineStop& other) const { return hit == other.hit && cut == other.cut; }
    bool operator==(const TimelineStop&) const = default;
};

/// The stops in the order in which they are reached: the trim's start, cuts, keyframes by time, the
/// trim's end. The selected keyframe is followed by its parts: start, end, curve, points.
///
/// None without a duration. Pure; any thread.
std::vector<TimelineStop> timelineStops(const TimelineModel& model, std::optional<Uuid> selected);

} // namespace tavi
