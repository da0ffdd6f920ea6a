#pragma once

#include "base/Geometry.h"

#include <string>
#include <vector>

namespace tavi {

/// Where moments and zoom levels lie on the timeline, which shows the whole recording.
///
/// Units: points and seconds; x from the left end of the track, y downwards within a lane.
/// All functions are pure; any thread.
struct TimelineGeometry {
    double duration = 0;   ///< Of the recording, seconds; nothing is drawn unless it is positive.
    double trackWidth = 0; ///< Length of a lane without its padding.

    static constexpr double kTotalHeight = 240;
    static constexpr double kRulerHeight = 20;
    static constexpr double kSeparatorHeight = 1;
    static constexpr double kUpperLaneHeight = 109; ///< Half of what is left, rounded down.
    static constexpr double kLowerLaneHeight = 110;
    static constexpr double kLanePadding = 16; ///< Left and right of the track.

    static constexpr double kTrimHandleWidth = 6;
    static constexpr double kTrimHandleHitArea = 16;
    static constexpr double kEdgeHandleWidth = 3;
    static constexpr double kEdgeHitArea = 14;
    static constexpr double kCurvePointSize = 8;
    static constexpr double kCurveMaxZoom = 6.0; ///< The level at the top of the curve lane.
    static constexpr double kCurveMargin = 6;    ///< Above that level, and below level 1.

    /// Moments outside of the recording lie on its ends. 0 without a duration.
    double x(double time) const;

    /// The moment under a place; places outside of the track mean its ends.
    double time(double x) const;

    /// Levels above the scale lie above the lane's margin.
    static double curveY(double level, double laneHeight);

    /// The level at a height, limited to 1 ... kCurveMaxZoom.
    static double curveLevel(double y, double laneHeight);
};

/// One line of the ruler.
struct RulerTick {
    double x = 0;
    bool isMajor = false;
    std::string label; ///< "12s", "1:05"; empty where none is shown.

    bool operator==(const RulerTick&) const = default;
};

inline constexpr double kMajorTickHeight = 8;
inline constexpr double kMinorTickHeight = 4;

/// The ruler of a recording: ticks on whole multiples of a step that leaves them room.
std::vector<RulerTick> rulerTicks(const TimelineGeometry& geometry);

} // namespace tavi
