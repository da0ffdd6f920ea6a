#include "editor/TimelineMarks.h"

#include "editor/TrimEdits.h"
#include "project/Camera.h"

#include <algorithm>
#include <cmath>

namespace tavi::TimelineMarks {

namespace {

constexpr double kNarrowest = 1;
constexpr double kNarrowestBody = 2;

TimelineSpan span(const TimelineGeometry& geometry, double start, double end,
                  double narrowest = kNarrowest) {
    const double x = geometry.x(start);
    return {x, std::max(geometry.x(end) - x, narrowest)};
}

} // namespace

double edge(const ZoomKeyframe& keyframe) {
    return std::min(keyframe.transitionDuration, (keyframe.endTime - keyframe.timestamp) / 2);
}

std::vector<TimelineSpan> dimAreas(const TimelineGeometry& geometry, const TrimState& trim) {
    if (trim.isUntrimmed()) {
        return {};
    }
    const double in = geometry.x(trim.inPoint);
    const double out = geometry.x(TrimEdits::end(trim, geometry.duration));
    return {{0, in}, {out, geometry.trackWidth - out}};
}

TimelineSpan cutSpan(const TimelineGeometry& geometry, const TimeRange& cut) {
    return span(geometry, cut.start, cut.end);
}

PendingCut pendingCut(const TimelineGeometry& geometry, double marker, double currentTime) {
    const auto [start, end] = std::minmax(marker, currentTime);
    return {span(geometry, start, end), geometry.x(marker)};
}

KeyframeMarks keyframeMarks(const TimelineGeometry& geometry, const ZoomKeyframe& keyframe) {
    const double ramp = edge(keyframe);
    const double bodyStart = keyframe.timestamp + ramp;
    const double bodyEnd = keyframe.endTime - ramp;
    return {span(geometry, keyframe.timestamp, bodyStart),
            span(geometry, bodyStart, bodyEnd, kNarrowestBody),
            span(geometry, bodyEnd, keyframe.endTime)};
}

TimelineSpan curveSpan(const TimelineGeometry& geometry, const ZoomKeyframe& keyframe) {
    return span(geometry, keyframe.timestamp, keyframe.endTime, kNarrowestBody);
}

double shownLevel(const ZoomKeyframe& keyframe, double time, double videoWidth) {
    const double level = zoomLevel(keyframe, time, videoWidth);
    const double ramp = edge(keyframe);
    const double exit = keyframe.endTime - ramp;
    if (time < keyframe.timestamp + ramp) {
        return 1 + (level - 1) * (time - keyframe.timestamp) / ramp;
    }
    return time > exit && ramp > 0 ? level + (1 - level) * (time - exit) / ramp : level;
}

std::vector<Point> curveLine(const TimelineGeometry& geometry, const ZoomKeyframe& keyframe,
                             double videoWidth, double laneHeight) {
    const double length = keyframe.endTime - keyframe.timestamp;
    const int steps = std::max(2, static_cast<int>(curveSpan(geometry, keyframe).width / 2));
    std::vector<Point> line;
    for (int i = 0; i <= steps; ++i) {
        const double time = keyframe.timestamp + length * i / steps;
        const double level = shownLevel(keyframe, time, videoWidth);
        line.push_back({geometry.x(time), TimelineGeometry::curveY(level, laneHeight)});
    }
    return line;
}

Point curvePoint(const TimelineGeometry& geometry, const ZoomCurvePoint& point, double laneHeight) {
    return {geometry.x(point.time), TimelineGeometry::curveY(point.zoomLevel, laneHeight)};
}

double edgeHandleHeight(double laneHeight) {
    constexpr double kMargin = 4;
    constexpr double kTallest = 20;
    return std::min(laneHeight - kMargin, kTallest);
}

} // namespace tavi::TimelineMarks
