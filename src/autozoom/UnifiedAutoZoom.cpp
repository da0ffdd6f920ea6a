#include "autozoom/UnifiedAutoZoom.h"

#include <algorithm>
#include <cmath>

namespace tavi::UnifiedAutoZoom {

namespace {

constexpr double kMergeDistance = 0.6; ///< Of the viewport's width.
constexpr double kFarthest = 1e100;    ///< Video pixels; see Inputs::position.
/// Beyond this in either direction the times it stands for may overflow.
constexpr double kMostAggressive = 1e100;

bool earlier(const CursorEvent& a, const CursorEvent& b) {
    return a.timestamp < b.timestamp;
}

void addFocalPoint(ZoomRegion& region, const ActivitySegment& segment) {
    region.focalPoints.push_back(
        {(segment.startTime + segment.endTime) * 0.5, segment.focalX, segment.focalY});
}

void recomputePrimaryFocus(ZoomRegion& region) {
    double x = 0;
    double y = 0;
    for (const FocalPoint& point : region.focalPoints) {
        x += point.x;
        y += point.y;
    }
    const auto count = static_cast<double>(region.focalPoints.size());
    region.primaryFocalX = x / count;
    region.primaryFocalY = y / count;
}

bool canMerge(const ZoomRegion& region, const ActivitySegment& segment, double mergeGap,
              double mergeDistance) {
    const double pause = segment.startTime - region.endTime;
    const double distance =
        std::hypot(segment.focalX - region.primaryFocalX, segment.focalY - region.primaryFocalY);
    return pause < mergeGap && distance < mergeDistance;
}

bool isUsable(double length) {
    return std::isfinite(length) && length != 0;
}

bool canGenerate(const Inputs& inputs) {
    const Size viewport = viewportSize(inputs);
    return inputs.duration > 0 && std::abs(inputs.aggressiveness) < kMostAggressive &&
           isUsable(viewport.width) && isUsable(viewport.height) &&
           std::isfinite(inputs.video.width / viewport.width);
}

} // namespace

Thresholds::Thresholds(double a)
    : activityGap(2.5 - 1.3 * a),
      mergeGap(3.0 - 1.5 * a),
      zoomFactor(1.3 + 1.7 * a),
      leadIn(0.8 - 0.4 * a),
      tail(1.5 - 0.7 * a),
      minWaypointInterval(0.6 - 0.3 * a) {}

Point Inputs::position(const CursorEvent& event) const {
    return {std::clamp(event.x * scale, -kFarthest, kFarthest),
            std::clamp(video.height - event.y * scale, -kFarthest, kFarthest)};
}

Inputs prepareInputs(const EditProject& project, Size video, double duration,
                     double aggressiveness) {
    Inputs inputs;
    inputs.video = video;
    inputs.duration = duration;
    inputs.aggressiveness = aggressiveness;
    const double sourceHeight = project.videoHeight > 0 ? project.videoHeight : video.height;
    inputs.scale = sourceHeight > 0 ? video.height / sourceHeight : 1.0;
    inputs.base = video;
    const OutputSettings& settings = project.outputSettings;
    const Size output = resolvedOutputSize(settings.resolution, settings.autoAspectRatio, video);
    if (output.height > 0) {
        const double aspect = output.width / output.height;
        inputs.base = aspect < video.width / video.height
                          ? Size{video.height * aspect, video.height}
                          : Size{video.width, video.width / aspect};
    }
    return inputs;
}

std::vector<CursorEvent> sortedByTime(std::span<const CursorEvent> events) {
    std::vector<CursorEvent> sorted(events.begin(), events.end());
    std::stable_sort(sorted.begin(), sorted.end(), earlier);
    return sorted;
}

Size viewportSize(const Inputs& inputs) {
    const double zoomFactor = Thresholds(inputs.aggressiveness).zoomFactor;
    return {inputs.base.width / zoomFactor, inputs.base.height / zoomFactor};
}

std::vector<ZoomRegion> simulateCamera(std::span<const ActivitySegment> segments,
                                       const Inputs& inputs) {
    const double mergeGap = Thresholds(inputs.aggressiveness).mergeGap;
    const double mergeDistance = kMergeDistance * viewportSize(inputs).width;
    std::vector<ZoomRegion> regions;
    for (const ActivitySegment& segment : segments) {
        if (regions.empty() || !canMerge(regions.back(), segment, mergeGap, mergeDistance)) {
            ZoomRegion& region = regions.emplace_back();
            region.startTime = segment.startTime;
            region.endTime = segment.endTime;
            addFocalPoint(region, segment);
            region.primaryFocalX = segment.focalX;
            region.primaryFocalY = segment.focalY;
            continue;
        }
        ZoomRegion& last = regions.back();
        addFocalPoint(last, segment);
        last.endTime = segment.endTime;
        recomputePrimaryFocus(last);
    }
    return regions;
}

std::vector<ZoomKeyframe> generate(std::span<const CursorEvent> events, const Inputs& inputs) {
    if (events.empty() || !canGenerate(inputs)) {
        return {};
    }
    std::vector<CursorEvent> sorted;
    if (!std::is_sorted(events.begin(), events.end(), earlier)) {
        sorted = sortedByTime(events);
        events = sorted;
    }
    const auto segments = detectActivity(events, inputs);
    const auto regions = simulateCamera(segments, inputs);
    return mergeKeyframes(emitKeyframes(regions, events, inputs));
}

std::vector<ZoomKeyframe> generate(const EditProject& project, Size video, double duration,
                                   double aggressiveness) {
    return generate(project.cursorEvents, prepareInputs(project, video, duration, aggressiveness));
}

} // namespace tavi::UnifiedAutoZoom
