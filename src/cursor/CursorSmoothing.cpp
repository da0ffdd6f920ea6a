#include "cursor/CursorSmoothing.h"

#include "base/Geometry.h"
#include "cursor/SpringIntegrator.h"

#include <array>
#include <cmath>

namespace tavi {

namespace {

/// Events this far apart, or further, are not connected. Seconds.
constexpr double kMaxSpringGap = 1.0;

/// In the order of the presets, from `slow` on.
constexpr std::array<SpringConstants, 4> kSprings{{
    {3.0, 20.0, 80.0},
    {1.5, 26.0, 170.0},
    {1.0, 34.0, 300.0},
    {0.6, 44.0, 500.0},
}};

/// Kept on purpose: `leftMouseDown`, which is how new takes log a left press, is
/// no anchor.
bool isAnchor(CursorEventType type) {
    return type == CursorEventType::leftClick || type == CursorEventType::rightClick;
}

/// One run of the spring along the log, in either direction.
class SpringRun {
public:
    SpringRun(const SpringConstants& spring, Point start) : m_spring(spring) { reset(start); }

    /// Moves on over `gap` seconds to an event at `target`; where the smoothed
    /// pointer then stands.
    Point advance(double gap, Point target, bool anchor) {
        if (!(gap > 0 && gap < kMaxSpringGap)) {
            reset(target);
            return target;
        }
        const SpringPropagator propagator(gap, m_spring);
        propagator.apply(m_x, target.x);
        propagator.apply(m_y, target.y);
        if (anchor || !std::isfinite(m_x.position) || !std::isfinite(m_y.position)) {
            reset(target);
        }
        return {m_x.position, m_y.position};
    }

private:
    void reset(Point at) {
        m_x = {at.x, 0};
        m_y = {at.y, 0};
    }

    SpringConstants m_spring;
    SpringState m_x;
    SpringState m_y;
};

std::vector<SmoothedCursorSample> flippedSamples(std::span<const CursorEvent> events,
                                                 double videoHeight) {
    std::vector<SmoothedCursorSample> samples;
    samples.reserve(events.size());
    for (const CursorEvent& event : events) {
        samples.push_back({event.timestamp, event.x, videoHeight - event.y});
    }
    return samples;
}

} // namespace

std::vector<SmoothedCursorSample> smoothCursorEvents(std::span<const CursorEvent> events,
                                                     CursorSmoothingPreset preset,
                                                     double videoHeight) {
    std::vector<SmoothedCursorSample> samples = flippedSamples(events, videoHeight);
    if (preset == CursorSmoothingPreset::none || events.empty()) {
        return samples;
    }
    const SpringConstants& spring = kSprings[static_cast<std::size_t>(preset) - 1];
    const std::size_t last = events.size() - 1;
    const auto target = [&](std::size_t i) {
        return Point{events[i].x, videoHeight - events[i].y};
    };

    SpringRun forward(spring, target(0));
    for (std::size_t i = 1; i <= last; ++i) {
        const Point p = forward.advance(events[i].timestamp - events[i - 1].timestamp, target(i),
                                        isAnchor(events[i].eventType));
        samples[i].x = p.x;
        samples[i].y = p.y;
    }

    SpringRun backward(spring, target(last));
    const auto average = [&](std::size_t i, Point p) {
        // Halved before they are added: no sum of finite values overflows.
        samples[i].x = 0.5 * samples[i].x + 0.5 * p.x;
        samples[i].y = 0.5 * samples[i].y + 0.5 * p.y;
    };
    average(last, target(last));
    for (std::size_t i = last; i-- > 0;) {
        average(i, backward.advance(events[i + 1].timestamp - events[i].timestamp, target(i),
                                    isAnchor(events[i].eventType)));
    }
    return samples;
}

} // namespace tavi
