#include "editor/KeyframeEdits.h"

#include <algorithm>
#include <ranges>

namespace tavi::KeyframeEdits {

namespace {

constexpr double kNewLength = 2.0; ///< Seconds of a new zoom.
constexpr double kNewShare = 0.7;  ///< Of each side of the video that a new zoom shows.
constexpr double kNewRamp = 0.5;   ///< Seconds of a new zoom's ramps.

/// A rectangle this wide, as a share of the video, shows all of it: not a zoom.
constexpr double kFullShare = 0.99;

ZoomKeyframe* find(std::vector<ZoomKeyframe>& keyframes, Uuid id) {
    const auto found = std::ranges::find(keyframes, id, &ZoomKeyframe::id);
    return found == keyframes.end() ? nullptr : &*found;
}

void sortByTime(std::vector<ZoomKeyframe>& keyframes) {
    std::ranges::stable_sort(keyframes, {}, &ZoomKeyframe::timestamp);
}

void sortByTime(std::vector<ZoomCurvePoint>& points) {
    std::ranges::stable_sort(points, {}, &ZoomCurvePoint::time);
}

/// The start of `keyframe`, moved behind the end of the one before it.
double startBehind(const std::vector<ZoomKeyframe>& keyframes, const ZoomKeyframe& keyframe) {
    for (auto other = keyframes.rbegin(); other != keyframes.rend(); ++other) {
        if (other->timestamp < keyframe.timestamp && other->id != keyframe.id) {
            return std::max(keyframe.timestamp, other->endTime);
        }
    }
    return keyframe.timestamp;
}

/// The end of `keyframe`, moved before the start of the one after it.
double endBefore(const std::vector<ZoomKeyframe>& keyframes, const ZoomKeyframe& keyframe) {
    const auto next = std::ranges::find_if(keyframes, [&](const ZoomKeyframe& other) {
        return other.timestamp > keyframe.timestamp && other.id != keyframe.id;
    });
    return next == keyframes.end() ? keyframe.endTime : std::min(keyframe.endTime, next->timestamp);
}

bool closeOpenEnds(std::vector<ZoomKeyframe>& keyframes, double duration) {
    const auto isOpen = [](const ZoomKeyframe& keyframe) { return keyframe.endTime < 0; };
    if (std::ranges::none_of(keyframes, isOpen)) {
        return false;
    }
    sortByTime(keyframes);
    for (std::size_t i = 0; i < keyframes.size(); ++i) {
        if (isOpen(keyframes[i])) {
            keyframes[i].endTime = i + 1 < keyframes.size() ? keyframes[i + 1].timestamp : duration;
        }
    }
    return true;
}

bool makeCurve(ZoomKeyframe& keyframe, double videoWidth) {
    const double width = keyframe.rect.width;
    if (!keyframe.zoomCurve.empty() || !(width > 0) || !(width < videoWidth * kFullShare)) {
        return false;
    }
    const double level = videoWidth / width;
    const double edge =
        std::min(keyframe.transitionDuration, (keyframe.endTime - keyframe.timestamp) / 2);
    keyframe.zoomCurve = {{Uuid::make(), keyframe.timestamp + edge, level},
                          {Uuid::make(), keyframe.endTime - edge, level}};
    return true;
}

} // namespace

bool addKeyframe(std::vector<ZoomKeyframe>& keyframes, double time, double duration, Size video) {
    const bool isInside = std::ranges::any_of(keyframes, [time](const ZoomKeyframe& keyframe) {
        return keyframe.timestamp <= time && time < keyframe.endTime;
    });
    if (isInside) {
        return false;
    }
    const Size size{kNewShare * video.width, kNewShare * video.height};
    ZoomKeyframe keyframe;
    keyframe.timestamp = time;
    keyframe.endTime = std::min(time + kNewLength, duration);
    keyframe.rect = {(video.width - size.width) / 2, (video.height - size.height) / 2, size.width,
                     size.height};
    keyframe.transitionDuration = kNewRamp;
    keyframe.easingType = EasingType::easeInOut;
    keyframes.push_back(std::move(keyframe));
    sortByTime(keyframes);
    return true;
}

bool updateKeyframe(std::vector<ZoomKeyframe>& keyframes, ZoomKeyframe keyframe) {
    ZoomKeyframe* stored = find(keyframes, keyframe.id);
    if (!stored) {
        return false;
    }
    keyframe.timestamp = startBehind(keyframes, keyframe);
    keyframe.endTime = endBefore(keyframes, keyframe);
    std::erase_if(keyframe.zoomCurve, [&](const ZoomCurvePoint& point) {
        return !(point.time >= keyframe.timestamp && point.time <= keyframe.endTime);
    });
    *stored = std::move(keyframe);
    sortByTime(keyframes);
    return true;
}

bool takesWaypoint(const std::vector<ZoomKeyframe>& keyframes, Uuid id, double time) {
    const auto found = std::ranges::find(keyframes, id, &ZoomKeyframe::id);
    return found != keyframes.end() && found->timestamp <= time && time <= found->endTime;
}

bool addWaypoint(std::vector<ZoomKeyframe>& keyframes, Uuid id, ZoomWaypoint waypoint) {
    if (!takesWaypoint(keyframes, id, waypoint.time)) {
        return false;
    }
    ZoomKeyframe* keyframe = find(keyframes, id);
    keyframe->waypoints.push_back(waypoint);
    std::ranges::stable_sort(keyframe->waypoints, {}, &ZoomWaypoint::time);
    return true;
}

bool addZoomCurvePoint(std::vector<ZoomKeyframe>& keyframes, Uuid id, ZoomCurvePoint point) {
    ZoomKeyframe* keyframe = find(keyframes, id);
    if (!keyframe) {
        return false;
    }
    keyframe->zoomCurve.push_back(point);
    sortByTime(keyframe->zoomCurve);
    return true;
}

bool updateZoomCurvePoint(std::vector<ZoomKeyframe>& keyframes, Uuid id, ZoomCurvePoint point) {
    ZoomKeyframe* keyframe = find(keyframes, id);
    if (!keyframe) {
        return false;
    }
    const auto stored = std::ranges::find(keyframe->zoomCurve, point.id, &ZoomCurvePoint::id);
    if (stored == keyframe->zoomCurve.end()) {
        return false;
    }
    *stored = point;
    sortByTime(keyframe->zoomCurve);
    return true;
}

bool deleteZoomCurvePoint(std::vector<ZoomKeyframe>& keyframes, Uuid id, Uuid point) {
    ZoomKeyframe* keyframe = find(keyframes, id);
    if (!keyframe) {
        return false;
    }
    std::erase_if(keyframe->zoomCurve,
                  [point](const ZoomCurvePoint& stored) { return stored.id == point; });
    return true;
}

bool normalize(std::vector<ZoomKeyframe>& keyframes, double duration, double videoWidth) {
    bool isChanged = closeOpenEnds(keyframes, duration);
    for (ZoomKeyframe& keyframe : keyframes) {
        isChanged |= makeCurve(keyframe, videoWidth);
    }
    return isChanged;
}

} // namespace tavi::KeyframeEdits
