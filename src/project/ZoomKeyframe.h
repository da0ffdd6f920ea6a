#pragma once

#include "base/Geometry.h"
#include "base/Uuid.h"
#include "project/RawValue.h"

#include <vector>

namespace tavi {

enum class EasingType { linear, easeIn, easeOut, easeInOut, spring };

template<>
struct RawValues<EasingType> {
    static constexpr std::array<std::string_view, 5> names{"Linear", "Ease In", "Ease Out",
                                                           "Ease In-Out", "Spring"};
};

/// A point that the camera's centre passes through.
struct ZoomWaypoint {
    double time = 0;    ///< Seconds.
    double centerX = 0; ///< Video pixels, bottom-left origin.
    double centerY = 0;

    bool operator==(const ZoomWaypoint&) const = default;
};

/// A point of a keyframe's magnification over time.
struct ZoomCurvePoint {
    Uuid id = Uuid::make();
    double time = 0;      ///< Seconds.
    double zoomLevel = 1; ///< 1 is the full frame.

    bool operator==(const ZoomCurvePoint&) const = default;
};

/// One zoom: from `timestamp` to `endTime` the camera leaves the full frame,
/// goes to a closer view and comes back. Positions are video pixels with the
/// origin at the bottom left. No value is checked here.
struct ZoomKeyframe {
    /// Marks a keyframe that was written before segments had an end.
    static constexpr double kNoEndTime = -1.0;

    Uuid id = Uuid::make();
    double timestamp = 0;        ///< Seconds; the camera begins to leave the full frame.
    double endTime = kNoEndTime; ///< Seconds; the camera is back on the full frame.
    Rect rect; ///< Base viewport: its centre, and its width where there is no curve.
    std::vector<ZoomWaypoint> waypoints;           ///< In order of time.
    std::vector<ZoomCurvePoint> zoomCurve;         ///< In any order.
    double transitionDuration = 0;                 ///< Seconds of the entry and of the exit ramp.
    EasingType easingType = EasingType::easeInOut; ///< Of both ramps.

    bool operator==(const ZoomKeyframe&) const = default;
};

} // namespace tavi
