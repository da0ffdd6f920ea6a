#pragma once

#include "editor/TimelineGeometry.h"
#include "project/TrimState.h"
#include "project/ZoomKeyframe.h"

#include <optional>
#include <span>
#include <vector>

namespace tavi {

/// A stretch of a lane.
struct TimelineSpan {
    double x = 0;
    double width = 0;

    bool operator==(const TimelineSpan&) const = default;
};

/// A cut that was begun and not ended.
struct PendingCut {
    TimelineSpan span;
    double markerX = 0; ///< Where it was begun.
};

/// What a keyframe is on the upper lane.
struct KeyframeMarks {
    TimelineSpan entry; ///< The ramp in.
    TimelineSpan body;
    TimelineSpan exit; ///< The ramp out.
};

/// The marks of the timeline, in points of a lane. Pure functions; any thread.
namespace TimelineMarks {

/// The length of either ramp of a keyframe, seconds: at most half of it.
double edge(const ZoomKeyframe& keyframe);

/// What the trim leaves out; empty while nothing is trimmed or cut.
std::vector<TimelineSpan> dimAreas(const TimelineGeometry& geometry, const TrimState& trim);

/// The rectangle of a cut, at least 1 wide.
TimelineSpan cutSpan(const TimelineGeometry& geometry, const TimeRange& cut);

/// From the marker to the playhead, in either order, at least 1 wide.
PendingCut pendingCut(const TimelineGeometry& geometry, double marker, double currentTime);

/// The ramps at least 1 wide, the body at least 2.
KeyframeMarks keyframeMarks(const TimelineGeometry& geometry, const ZoomKeyframe& keyframe);

/// The ground of a keyframe's curve, at least 2 wide.
TimelineSpan curveSpan(const TimelineGeometry& geometry, const ZoomKeyframe& keyframe);

/// The level that the curve shows at a moment, ramps included. For drawing: what the film
/// shows is evaluateCamera()'s.
double shownLevel(const ZoomKeyframe& keyframe, double time, double videoWidth);

/// The line of a keyframe's curve, from left to right, one point for two points of width.
std::vector<Point> curveLine(const TimelineGeometry& geometry, const ZoomKeyframe& keyframe,
                             double videoWidth, double laneHeight);

/// The middle of a curve point's circle.
Point curvePoint(const TimelineGeometry& geometry, const ZoomCurvePoint& point, double laneHeight);

/// How tall the visible part of an edge handle is.
double edgeHandleHeight(double laneHeight);

} // namespace TimelineMarks
} // namespace tavi
