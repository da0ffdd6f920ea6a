#include "editor/TimelineGeometry.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>

namespace tavi {

namespace {

/// A label needs this much track to its right.
constexpr double kLabelRoom = 30;

struct RulerSteps {
    int minorPerSecond; ///< 0 where the step is a second or more.
    int minorSeconds;
    int minorPerMajor;
};

RulerSteps rulerSteps(double pointsPerSecond) {
    if (pointsPerSecond > 100) {
        return {5, 0, 5};
    }
    return pointsPerSecond > 20 ? RulerSteps{0, 1, 5} : RulerSteps{0, 2, 5};
}

std::string label(double time) {
    const auto seconds = static_cast<long>(std::floor(time));
    return seconds < 60 ? fmt::format("{}s", seconds)
                        : fmt::format("{}:{:02}", seconds / 60, seconds % 60);
}

} // namespace

double TimelineGeometry::x(double time) const {
    return duration > 0 ? std::clamp(time / duration, 0.0, 1.0) * trackWidth : 0;
}

double TimelineGeometry::time(double x) const {
    return trackWidth > 0 ? std::clamp(x / trackWidth, 0.0, 1.0) * duration : 0;
}

double TimelineGeometry::curveY(double level, double laneHeight) {
    const double share = (level - 1) / (kCurveMaxZoom - 1);
    return kCurveMargin + (laneHeight - 2 * kCurveMargin) * (1 - share);
}

double TimelineGeometry::curveLevel(double y, double laneHeight) {
    const double share = 1 - (y - kCurveMargin) / (laneHeight - 2 * kCurveMargin);
    return std::clamp(1 + share * (kCurveMaxZoom - 1), 1.0, kCurveMaxZoom);
}

std::vector<RulerTick> rulerTicks(const TimelineGeometry& geometry) {
    if (!(geometry.duration > 0)) {
        return {};
    }
    const RulerSteps steps = rulerSteps(geometry.trackWidth / geometry.duration);
    std::vector<RulerTick> ticks;
    for (long i = 0;; ++i) {
        const double time = steps.minorPerSecond > 0 ? static_cast<double>(i) / steps.minorPerSecond
                                                     : static_cast<double>(i * steps.minorSeconds);
        if (time > geometry.duration) {
            return ticks;
        }
        RulerTick tick{geometry.x(time), i % steps.minorPerMajor == 0, {}};
        if (tick.isMajor && tick.x < geometry.trackWidth - kLabelRoom) {
            tick.label = label(time);
        }
        ticks.push_back(std::move(tick));
    }
}

} // namespace tavi
