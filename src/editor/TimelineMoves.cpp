#include "editor/TimelineMoves.h"

#include "editor/TimelineMarks.h"

#include <algorithm>

namespace tavi::TimelineMoves {

namespace {

constexpr double kShortestKeyframe = 0.1; ///< Seconds that a move of an edge leaves.

} // namespace

ZoomKeyframe withStart(ZoomKeyframe keyframe, double time) {
    keyframe.timestamp = std::max(std::min(time, keyframe.endTime - kShortestKeyframe), 0.0);
    return keyframe;
}

ZoomKeyframe withEnd(ZoomKeyframe keyframe, double time, double duration) {
    keyframe.endTime = std::max(std::min(time, duration), keyframe.timestamp + kShortestKeyframe);
    return keyframe;
}

ZoomCurvePoint withinRamps(const ZoomKeyframe& keyframe, ZoomCurvePoint point) {
    const double edge = TimelineMarks::edge(keyframe);
    point.time = std::max(std::min(point.time, keyframe.endTime - edge), keyframe.timestamp + edge);
    return point;
}

bool isBetweenRamps(const ZoomKeyframe& keyframe, double time) {
    const double edge = TimelineMarks::edge(keyframe);
    return time >= keyframe.timestamp + edge && time <= keyframe.endTime - edge;
}

} // namespace tavi::TimelineMoves
