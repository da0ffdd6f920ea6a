#include "editor/TimelineGestures.h"

#include "editor/TimelineMoves.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace tavi {

namespace {

using Kind = TimelineHit::Kind;

constexpr double kLane = TimelineGeometry::kLowerLaneHeight;

/// How far (points) the pointer has to go before a press is a drag. Below it, what
/// can be clicked is clicked; a hand isn't steadier than that.
double dragDistance(Kind kind) {
    switch (kind) {
    case Kind::curvePoint:
        return 2;
    case Kind::body:
    case Kind::curve:
        return 3;
    default:
        return 1;
    }
}

const ZoomKeyframe* find(const TimelineModel& model, Uuid id) {
    const auto found = std::ranges::find(model.keyframes, id, &ZoomKeyframe::id);
    return found == model.keyframes.end() ? nullptr : &*found;
}

} // namespace

TimelineGestures::TimelineGestures(Callbacks callbacks) : m_callbacks(std::move(callbacks)) {}

std::optional<TimelineHit> TimelineGestures::draggingEdge() const {
    const bool isEdge = isDragging(Kind::leftEdge) || isDragging(Kind::rightEdge);
    return isEdge ? std::optional(m_hit) : std::nullopt;
}

std::optional<Uuid> TimelineGestures::draggingCurvePointID() const {
    return isDragging(Kind::curvePoint) ? std::optional(m_hit.point) : std::nullopt;
}

bool TimelineGestures::isScrub() const {
    return m_hit.kind == Kind::none || m_hit.kind == Kind::body || m_hit.kind == Kind::curve;
}

void TimelineGestures::press(const TimelineModel& model, TimelineLane lane, Point place) {
    if (!(model.geometry.duration > 0)) {
        return;
    }
    m_lane = lane;
    m_hit = timelineHit(model, lane, place);
    m_start = place;
    m_isDragging = false;
    if (isScrub()) {
        scrub(model, place.x);
    }
}

void TimelineGestures::move(const TimelineModel& model, Point place) {
    if (!m_lane) {
        return;
    }
    m_isDragging = m_isDragging ||
                   std::hypot(place.x - m_start.x, place.y - m_start.y) >= dragDistance(m_hit.kind);
    if (isScrub()) {
        scrub(model, place.x);
    } else if (m_isDragging) {
        drag(model, place);
    }
}

void TimelineGestures::release(const TimelineModel& model, Point place) {
    if (m_lane && !m_isDragging) {
        click(model, place);
    }
    cancel();
}

void TimelineGestures::cancel() {
    m_lane.reset();
    m_hit = {};
    m_isDragging = false;
}

void TimelineGestures::scrub(const TimelineModel& model, double x) {
    m_callbacks.onSeek(model.geometry.time(x));
    if (m_lane == TimelineLane::upper) {
        m_callbacks.onSelectKeyframe({});
    }
}

void TimelineGestures::drag(const TimelineModel& model, Point place) {
    const double time = model.geometry.time(place.x);
    switch (m_hit.kind) {
    case Kind::trimIn:
        m_callbacks.onTrimInChanged(time);
        break;
    case Kind::trimOut:
        m_callbacks.onTrimOutChanged(time);
        break;
    case Kind::curvePoint:
        dragPoint(model, place);
        break;
    default:
        dragEdge(model, time);
    }
}

void TimelineGestures::dragEdge(const TimelineModel& model, double time) {
    const ZoomKeyframe* stored = find(model, m_hit.keyframe);
    if (!stored) {
        return;
    }
    m_callbacks.onUpdateKeyframe(
        m_hit.kind == Kind::leftEdge
            ? TimelineMoves::withStart(*stored, time)
            : TimelineMoves::withEnd(*stored, time, model.geometry.duration));
}

void TimelineGestures::dragPoint(const TimelineModel& model, Point place) {
    const ZoomKeyframe* keyframe = find(model, m_hit.keyframe);
    if (!keyframe) {
        return;
    }
    m_callbacks.onUpdateZoomCurvePoint(
        keyframe->id,
        TimelineMoves::withinRamps(*keyframe, {m_hit.point, model.geometry.time(place.x),
                                               TimelineGeometry::curveLevel(place.y, kLane)}));
}

void TimelineGestures::click(const TimelineModel& model, Point place) {
    if (m_hit.kind == Kind::body) {
        m_callbacks.onSelectKeyframe(m_hit.keyframe);
    } else if (m_hit.kind == Kind::curve) {
        addPoint(model, place);
    }
}

void TimelineGestures::addPoint(const TimelineModel& model, Point place) {
    const ZoomKeyframe* keyframe = find(model, m_hit.keyframe);
    if (!keyframe) {
        return;
    }
    const double time = model.geometry.time(place.x);
    if (TimelineMoves::isBetweenRamps(*keyframe, time)) {
        m_callbacks.onAddZoomCurvePoint(
            keyframe->id, {Uuid::make(), time, TimelineGeometry::curveLevel(place.y, kLane)});
    }
}

} // namespace tavi
