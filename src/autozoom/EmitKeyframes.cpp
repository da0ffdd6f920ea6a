#include "autozoom/UnifiedAutoZoom.h"

#include <algorithm>
#include <cmath>

namespace tavi::UnifiedAutoZoom {

namespace {

constexpr double kDeadZone = 0.3;        ///< Of the viewport's width.
constexpr double kMergeTolerance = 0.05; ///< Seconds.

/// Turns regions into keyframes for one viewport.
class Emitter {
public:
    explicit Emitter(const Inputs& inputs)
        : m_inputs(inputs),
          m_thresholds(inputs.aggressiveness),
          m_viewport(viewportSize(inputs)),
          m_halfWidth(m_viewport.width * 0.5),
          m_halfHeight(m_viewport.height * 0.5),
          // Against the video's own width, not the base: so the camera's crop
          // comes out as wide as the viewport.
          m_level(inputs.video.width / m_viewport.width),
          m_ramp(std::max(m_thresholds.leadIn, m_thresholds.tail)) {}

    ZoomKeyframe keyframe(const ZoomRegion& region, const ZoomRegion* next,
                          std::span<const CursorEvent> events) const {
        const Point focus = firstFocus(region);
        ZoomKeyframe keyframe;
        keyframe.timestamp = startOf(region);
        keyframe.endTime = endOf(region, next);
        keyframe.rect = {clampX(focus.x) - m_halfWidth, clampY(focus.y) - m_halfHeight,
                         m_viewport.width, m_viewport.height};
        keyframe.waypoints = waypoints(region, focus, events);
        keyframe.zoomCurve = {{Uuid::make(), keyframe.timestamp + m_ramp, m_level},
                              {Uuid::make(), keyframe.endTime - m_ramp, m_level}};
        keyframe.transitionDuration = m_ramp;
        keyframe.easingType = EasingType::easeInOut;
        return keyframe;
    }

private:
    double clampX(double v) const {
        return std::max(m_halfWidth, std::min(v, m_inputs.video.width - m_halfWidth));
    }
    double clampY(double v) const {
        return std::max(m_halfHeight, std::min(v, m_inputs.video.height - m_halfHeight));
    }

    double startOf(const ZoomRegion& region) const {
        return std::max(region.startTime - m_thresholds.leadIn, 0.0);
    }

    double holdOf(const ZoomRegion& region) const { return region.endTime + m_thresholds.tail; }

    /// A region with room holds for two tails, one crowded by the next for one.
    double endOf(const ZoomRegion& region, const ZoomRegion* next) const {
        const double extended = std::min(region.endTime + 2 * m_thresholds.tail, m_inputs.duration);
        return !next || extended <= startOf(*next) ? extended : holdOf(region);
    }

    static Point firstFocus(const ZoomRegion& region) {
        if (region.focalPoints.empty()) {
            return {region.primaryFocalX, region.primaryFocalY};
        }
        return {region.focalPoints.front().x, region.focalPoints.front().y};
    }

    std::vector<ZoomWaypoint> waypoints(const ZoomRegion& region, Point last,
                                        std::span<const CursorEvent> events) const {
        const double hold = holdOf(region);
        const double deadZone = kDeadZone * m_viewport.width;
        double lastTime = region.startTime;
        std::vector<ZoomWaypoint> points;
        const auto first = std::lower_bound(
            events.begin(), events.end(), region.startTime,
            [](const CursorEvent& event, double time) { return event.timestamp < time; });
        for (auto event = first; event != events.end() && event->timestamp <= hold; ++event) {
            const Point p = m_inputs.position(*event);
            if (std::hypot(p.x - last.x, p.y - last.y) > deadZone &&
                event->timestamp - lastTime > m_thresholds.minWaypointInterval) {
                points.push_back({event->timestamp, clampX(p.x), clampY(p.y)});
                last = p;
                lastTime = event->timestamp;
            }
        }
        return points;
    }

    const Inputs& m_inputs;
    Thresholds m_thresholds;
    Size m_viewport;
    double m_halfWidth;
    double m_halfHeight;
    double m_level;
    double m_ramp;
};

/// Extends `last` by a later keyframe; its start, rect and ramps stay.
void absorb(ZoomKeyframe& last, ZoomKeyframe&& next) {
    last.endTime = std::max(last.endTime, next.endTime);
    last.waypoints.insert(last.waypoints.end(), next.waypoints.begin(), next.waypoints.end());
    last.zoomCurve.insert(last.zoomCurve.end(), next.zoomCurve.begin(), next.zoomCurve.end());
    std::stable_sort(
        last.zoomCurve.begin(), last.zoomCurve.end(),
        [](const ZoomCurvePoint& a, const ZoomCurvePoint& b) { return a.time < b.time; });
}

} // namespace

std::vector<ZoomKeyframe> emitKeyframes(std::span<const ZoomRegion> regions,
                                        std::span<const CursorEvent> events, const Inputs& inputs) {
    const Emitter emitter(inputs);
    std::vector<ZoomKeyframe> keyframes;
    keyframes.reserve(regions.size());
    for (std::size_t i = 0; i < regions.size(); ++i) {
        const ZoomRegion* next = i + 1 < regions.size() ? &regions[i + 1] : nullptr;
        keyframes.push_back(emitter.keyframe(regions[i], next, events));
    }
    return keyframes;
}

std::vector<ZoomKeyframe> mergeKeyframes(std::vector<ZoomKeyframe> keyframes) {
    std::stable_sort(
        keyframes.begin(), keyframes.end(),
        [](const ZoomKeyframe& a, const ZoomKeyframe& b) { return a.timestamp < b.timestamp; });
    std::vector<ZoomKeyframe> merged;
    for (ZoomKeyframe& keyframe : keyframes) {
        if (!merged.empty() && keyframe.timestamp < merged.back().endTime + kMergeTolerance) {
            absorb(merged.back(), std::move(keyframe));
        } else {
            merged.push_back(std::move(keyframe));
        }
    }
    return merged;
}

} // namespace tavi::UnifiedAutoZoom
