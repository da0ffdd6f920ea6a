#pragma once

#include "editor/TimelineMarks.h"

#include <optional>
#include <vector>

namespace tavi {

enum class TimelineLane { upper, lower };

/// What the timeline shows: borrowed from the open take, for the time of a call.
struct TimelineModel {
    TimelineGeometry geometry;
    const std::vector<ZoomKeyframe>& keyframes;
    const TrimState& trimState;
    double videoWidth = 0; ///< Pixels.
};

/// What lies under the pointer.
struct TimelineHit {
    enum class Kind {
        none,
        trimIn,
        trimOut,
        leftEdge,   ///< Of `keyframe`.
        rightEdge,  ///< Of `keyframe`.
        body,       ///< Of `keyframe`: between its ramps.
        curvePoint, ///< `point` of `keyframe`.
        curve,      ///< The ground of `keyframe`'s curve.
    };

    Kind kind = Kind::none;
    Uuid keyframe;
    Uuid point;

    bool operator==(const TimelineHit&) const = default;
};

/// The topmost thing at a place of a lane that a drag or a click is for: trim handles
/// before edge handles before bodies; curve points before the ground of curves. Of equals the
/// one that was drawn last.
///
/// Units: points from the upper left corner of the lane's track. Pure; any thread.
TimelineHit timelineHit(const TimelineModel& model, TimelineLane lane, Point place);

/// The cut under a place of the upper lane, for its menu: cuts lie below everything else there.
std::optional<Uuid> cutAt(const TimelineModel& model, double x);

/// The shape that the pointer has over a hit.
enum class TimelinePointer { arrow, resizeLeftRight, openHand };
TimelinePointer pointerOver(const TimelineHit& hit);

} // namespace tavi
