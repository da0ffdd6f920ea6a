#include "editor/TimelineStops.h"

#include "editor/TrimEdits.h"

namespace tavi {

namespace {

using Kind = TimelineHit::Kind;
using Geometry = TimelineGeometry;

constexpr double kUpper = Geometry::kUpperLaneHeight;
constexpr double kLower = Geometry::kLowerLaneHeight;

Rect over(const TimelineSpan& span, double height) {
    return {span.x, 0, span.width, height};
}

Rect around(double x, double width, double height, double laneHeight) {
    return {x - width / 2, (laneHeight - height) / 2, width, height};
}

TimelineStop trimStop(const TimelineModel& model, Kind kind, double time) {
    constexpr double kMargin = 2;
    return {
        {kind, {}, {}},
        {},
        TimelineLane::upper,
        around(model.geometry.x(time), Geometry::kTrimHandleWidth, kUpper - 2 * kMargin, kUpper)};
}

TimelineStop edgeStop(const TimelineModel& model, const ZoomKeyframe& keyframe, Kind kind) {
    const double time = kind == Kind::leftEdge ? keyframe.timestamp : keyframe.endTime;
    return {{kind, keyframe.id, {}},
            {},
            TimelineLane::upper,
            around(model.geometry.x(time), Geometry::kEdgeHandleWidth,
                   TimelineMarks::edgeHandleHeight(kUpper), kUpper)};
}

TimelineStop pointStop(const TimelineModel& model, const ZoomKeyframe& keyframe,
                       const ZoomCurvePoint& point) {
    constexpr double kSize = Geometry::kCurvePointSize;
    const Point middle = TimelineMarks::curvePoint(model.geometry, point, kLower);
    return {{Kind::curvePoint, keyframe.id, point.id},
            {},
            TimelineLane::lower,
            {middle.x - kSize / 2, middle.y - kSize / 2, kSize, kSize}};
}

void addParts(std::vector<TimelineStop>& stops, const TimelineModel& model,
              const ZoomKeyframe& keyframe) {
    stops.push_back(edgeStop(model, keyframe, Kind::leftEdge));
    stops.push_back(edgeStop(model, keyframe, Kind::rightEdge));
    stops.push_back({{Kind::curve, keyframe.id, {}},
                     {},
                     TimelineLane::lower,
                     over(TimelineMarks::curveSpan(model.geometry, keyframe), kLower)});
    for (const ZoomCurvePoint& point : keyframe.zoomCurve) {
        stops.push_back(pointStop(model, keyframe, point));
    }
}

} // namespace

std::vector<TimelineStop> timelineStops(const TimelineModel& model, std::optional<Uuid> selected) {
    if (!(model.geometry.duration > 0)) {
        return {};
    }
    const TrimState& trim = model.trimState;
    std::vector<TimelineStop> stops{trimStop(model, Kind::trimIn, trim.inPoint)};
    for (const TimeRange& cut : trim.cutSegments) {
        stops.push_back({{},
                         cut.id,
                         TimelineLane::upper,
                         over(TimelineMarks::cutSpan(model.geometry, cut), kUpper)});
    }
    for (const ZoomKeyframe& keyframe : model.keyframes) {
        stops.push_back(
            {{Kind::body, keyframe.id, {}},
             {},
             TimelineLane::upper,
             over(TimelineMarks::keyframeMarks(model.geometry, keyframe).body, kUpper)});
        if (keyframe.id == selected) {
            addParts(stops, model, keyframe);
        }
    }
    stops.push_back(trimStop(model, Kind::trimOut, TrimEdits::end(trim, model.geometry.duration)));
    return stops;
}

} // namespace tavi
