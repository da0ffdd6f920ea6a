#include "editor/TimelineHit.h"

#include "editor/TrimEdits.h"

#include <cmath>
#include <ranges>

namespace tavi {

namespace {

using Kind = TimelineHit::Kind;

bool isNear(double x, double middle, double hitArea) {
    return std::abs(x - middle) <= hitArea / 2;
}

bool isIn(const TimelineSpan& span, double x) {
    return x >= span.x && x < span.x + span.width;
}

TimelineHit trimHandleAt(const TimelineModel& model, double x) {
    const TimelineGeometry& geometry = model.geometry;
    const double in = geometry.x(model.trimState.inPoint);
    const double out = geometry.x(TrimEdits::end(model.trimState, geometry.duration));
    const double half = (in + out) / 2; // where the hit areas overlap the nearer one counts
    if (isNear(x, out, TimelineGeometry::kTrimHandleHitArea) && x >= half) {
        return {Kind::trimOut, {}, {}};
    }
    const bool isIn = isNear(x, in, TimelineGeometry::kTrimHandleHitArea);
    return {isIn ? Kind::trimIn : Kind::none, {}, {}};
}

/// Whether a place is within the height of an edge handle's hit area.
bool isAtEdgeHeight(double y) {
    constexpr double kExtra = 8;
    const double lane = TimelineGeometry::kUpperLaneHeight;
    return std::abs(y - lane / 2) <= (TimelineMarks::edgeHandleHeight(lane) + kExtra) / 2;
}

TimelineHit edgeAt(const TimelineModel& model, Point place) {
    if (!isAtEdgeHeight(place.y)) {
        return {};
    }
    for (const ZoomKeyframe& keyframe : model.keyframes | std::views::reverse) {
        const double left = model.geometry.x(keyframe.timestamp);
        const double right = model.geometry.x(keyframe.endTime);
        if (isNear(place.x, right, TimelineGeometry::kEdgeHitArea) &&
            place.x >= (left + right) / 2) {
            return {Kind::rightEdge, keyframe.id, {}};
        }
        if (isNear(place.x, left, TimelineGeometry::kEdgeHitArea)) {
            return {Kind::leftEdge, keyframe.id, {}};
        }
    }
    return {};
}

TimelineHit bodyAt(const TimelineModel& model, double x) {
    for (const ZoomKeyframe& keyframe : model.keyframes | std::views::reverse) {
        if (isIn(TimelineMarks::keyframeMarks(model.geometry, keyframe).body, x)) {
            return {Kind::body, keyframe.id, {}};
        }
    }
    return {};
}

TimelineHit upperHit(const TimelineModel& model, Point place) {
    if (const auto handle = trimHandleAt(model, place.x); handle.kind != Kind::none) {
        return handle;
    }
    if (const auto edge = edgeAt(model, place); edge.kind != Kind::none) {
        return edge;
    }
    return bodyAt(model, place.x);
}

bool isOnPoint(const TimelineModel& model, const ZoomCurvePoint& point, Point place) {
    const Point middle =
        TimelineMarks::curvePoint(model.geometry, point, TimelineGeometry::kLowerLaneHeight);
    return std::hypot(place.x - middle.x, place.y - middle.y) <=
           TimelineGeometry::kCurvePointSize / 2;
}

TimelineHit lowerHit(const TimelineModel& model, Point place) {
    for (const ZoomKeyframe& keyframe : model.keyframes | std::views::reverse) {
        for (const ZoomCurvePoint& point : keyframe.zoomCurve | std::views::reverse) {
            if (isOnPoint(model, point, place)) {
                return {Kind::curvePoint, keyframe.id, point.id};
            }
        }
    }
    for (const ZoomKeyframe& keyframe : model.keyframes | std::views::reverse) {
        if (isIn(TimelineMarks::curveSpan(model.geometry, keyframe), place.x)) {
            return {Kind::curve, keyframe.id, {}};
        }
    }
    return {};
}

} // namespace

TimelineHit timelineHit(const TimelineModel& model, TimelineLane lane, Point place) {
    if (!(model.geometry.duration > 0)) {
        return {};
    }
    return lane == TimelineLane::upper ? upperHit(model, place) : lowerHit(model, place);
}

std::optional<Uuid> cutAt(const TimelineModel& model, double x) {
    for (const TimeRange& cut : model.trimState.cutSegments | std::views::reverse) {
        if (model.geometry.duration > 0 && isIn(TimelineMarks::cutSpan(model.geometry, cut), x)) {
            return cut.id;
        }
    }
    return std::nullopt;
}

TimelinePointer pointerOver(const TimelineHit& hit) {
    switch (hit.kind) {
    case Kind::trimIn:
    case Kind::trimOut:
    case Kind::leftEdge:
    case Kind::rightEdge:
        return TimelinePointer::resizeLeftRight;
    case Kind::curvePoint:
        return TimelinePointer::openHand;
    default:
        return TimelinePointer::arrow;
    }
}

} // namespace tavi
