#include "project/Camera.h"

#include <algorithm>
#include <cmath>
#include <optional>

namespace tavi {

namespace {

constexpr double kSpringDecay = 6.0;                    // per unit of t
constexpr double kSpringAngularRate = 4.71238898038469; // 3*pi/2: settled exactly at t = 1

Point mix(Point a, Point b, double s) {
    return {a.x + (b.x - a.x) * s, a.y + (b.y - a.y) * s};
}

Point position(const ZoomWaypoint& waypoint) {
    return {waypoint.centerX, waypoint.centerY};
}

Point approachFirstWaypoint(const ZoomKeyframe& keyframe, double time) {
    const ZoomWaypoint& first = keyframe.waypoints.front();
    const double length = first.time - keyframe.timestamp;
    if (!(length > 0)) {
        return position(first);
    }
    const double p = std::clamp((time - keyframe.timestamp) / length, 0.0, 1.0);
    return mix(keyframe.rect.center(), position(first), smootherstep(p));
}

double interpolateZoom(std::span<const ZoomCurvePoint> sorted, double time) {
    if (sorted.front().time >= time) {
        return sorted.front().zoomLevel;
    }
    if (sorted.back().time <= time) {
        return sorted.back().zoomLevel;
    }
    for (std::size_t i = 1; i < sorted.size(); ++i) {
        const ZoomCurvePoint& a = sorted[i - 1];
        const ZoomCurvePoint& b = sorted[i];
        if (a.time <= time && b.time >= time) {
            return a.zoomLevel + (time - a.time) / (b.time - a.time) * (b.zoomLevel - a.zoomLevel);
        }
    }
    return sorted.front().zoomLevel;
}

/// Zoom and centre at one moment, before the crop is formed.
struct CameraPose {
    double zoom = 1;
    Point center;
};

CameraPose targetPose(const ZoomKeyframe& keyframe, double time, double videoWidth) {
    return {zoomLevel(keyframe, time, videoWidth), center(keyframe, time)};
}

CameraPose poseAt(const ZoomKeyframe& keyframe, double time, Size video) {
    const Point frameCenter{video.width * 0.5, video.height * 0.5};
    const double start = keyframe.timestamp;
    const double end = keyframe.endTime;
    const double ramp = std::min(keyframe.transitionDuration, (end - start) * 0.5);
    if (time < start + ramp) {
        // Kept on purpose: entering follows the moving target.
        const CameraPose target = targetPose(keyframe, time, video.width);
        const double e = ease(keyframe.easingType, (time - start) / ramp);
        return {(target.zoom - 1) * e + 1, mix(frameCenter, target.center, e)};
    }
    if (end - ramp < time) {
        // Kept on purpose: leaving starts from where the camera stood when the
        // ramp began, and eases forward like the entry, not mirrored.
        const double rampStart = end - ramp;
        const CameraPose from = targetPose(keyframe, rampStart, video.width);
        const double e = ease(keyframe.easingType, (time - rampStart) / ramp);
        return {from.zoom + (1 - from.zoom) * e, mix(from.center, frameCenter, e)};
    }
    return targetPose(keyframe, time, video.width);
}

Rect cropAround(const CameraPose& pose, Size video, double cropAspect) {
    // The bounds come first in min and max: a pose that overflowed into no
    // number at all then ends at a bound.
    const double width = video.width / std::max(1.0, pose.zoom);
    const double height = width / cropAspect;
    const double x = std::max(0.0, std::min(video.width - width, pose.center.x - width * 0.5));
    const double y = std::max(0.0, std::min(video.height - height, pose.center.y - height * 0.5));
    return {x, y, width, height};
}

/// The first active keyframe in order of timestamp, of equal ones the first stored.
const ZoomKeyframe* activeKeyframe(std::span<const ZoomKeyframe> keyframes, double time) {
    const ZoomKeyframe* active = nullptr;
    for (const ZoomKeyframe& keyframe : keyframes) {
        if (keyframe.timestamp <= time && keyframe.endTime >= time &&
            (!active || keyframe.timestamp < active->timestamp)) {
            active = &keyframe;
        }
    }
    return active;
}

} // namespace

double smootherstep(double t) {
    return t * t * t * (t * (6 * t - 15) + 10);
}

double ease(EasingType easing, double t) {
    t = std::clamp(t, 0.0, 1.0);
    switch (easing) {
    case EasingType::linear:
        return t;
    case EasingType::easeIn:
        return t * t * t;
    case EasingType::easeOut:
        return 1 - (1 - t) * (1 - t) * (1 - t);
    case EasingType::easeInOut:
        return smootherstep(t);
    case EasingType::spring:
        return 1 - std::exp(-kSpringDecay * t) * std::cos(kSpringAngularRate * t);
    }
    return t;
}

Point center(const ZoomKeyframe& keyframe, double time) {
    const auto& waypoints = keyframe.waypoints;
    if (waypoints.empty()) {
        return keyframe.rect.center();
    }
    if (waypoints.front().time >= time) {
        return approachFirstWaypoint(keyframe, time);
    }
    if (waypoints.back().time <= time) {
        return position(waypoints.back());
    }
    for (std::size_t i = 1; i < waypoints.size(); ++i) {
        const ZoomWaypoint& a = waypoints[i - 1];
        const ZoomWaypoint& b = waypoints[i];
        if (a.time <= time && b.time >= time) {
            const double p = std::clamp((time - a.time) / (b.time - a.time), 0.0, 1.0);
            return mix(position(a), position(b), smootherstep(p));
        }
    }
    return keyframe.rect.center();
}

double zoomLevel(const ZoomKeyframe& keyframe, double time, double videoWidth) {
    const auto& curve = keyframe.zoomCurve;
    if (curve.empty()) {
        return keyframe.rect.width > 0 ? videoWidth / keyframe.rect.width : 1.0;
    }
    const auto byTime = [](const ZoomCurvePoint& a, const ZoomCurvePoint& b) {
        return a.time < b.time;
    };
    if (std::is_sorted(curve.begin(), curve.end(), byTime)) {
        return interpolateZoom(curve, time);
    }
    std::vector<ZoomCurvePoint> sorted = curve;
    std::stable_sort(sorted.begin(), sorted.end(), byTime);
    return interpolateZoom(sorted, time);
}

Rect evaluateCamera(std::span<const ZoomKeyframe> keyframes, double time, Size video,
                    double cropAspect) {
    const ZoomKeyframe* keyframe = activeKeyframe(keyframes, time);
    if (!keyframe) {
        return {0, 0, video.width, video.height};
    }
    return cropAround(poseAt(*keyframe, time, video), video, cropAspect);
}

} // namespace tavi
