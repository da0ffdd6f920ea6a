#include "cursor/CursorRenderer.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <span>

namespace tavi {

namespace {

/// Two neighbours in a log around a moment, and where the moment lies between them.
struct Neighbours {
    std::size_t lower = 0;
    std::size_t upper = 0;
    double fraction = 0; ///< 0 at `lower`, 1 at `upper`; 0 where both have one time.
};

/// Halved, so that even the largest doubles have a difference.
double fractionBetween(double a, double b, double time) {
    const double gap = b - a;
    return std::isfinite(gap) ? (time - a) / gap : (0.5 * time - 0.5 * a) / (0.5 * b - 0.5 * a);
}

/// Finds the neighbours of `time` by bisection in a log that is not empty and
/// need not be sorted; at and beyond the ends both are the end.
template<typename Item>
Neighbours findNeighbours(std::span<const Item> items, double time) {
    const std::size_t last = items.size() - 1;
    if (time <= items[0].timestamp) {
        return {0, 0, 0};
    }
    if (time >= items[last].timestamp) {
        return {last, last, 0};
    }
    std::size_t low = 0;
    std::size_t high = last;
    while (high - low > 1) {
        const std::size_t middle = (low + high) / 2;
        // Two selections instead of a branch that no processor can foresee.
        const bool upperHalf = items[middle].timestamp <= time;
        low = upperHalf ? middle : low;
        high = upperHalf ? high : middle;
    }
    if (!(items[high].timestamp - items[low].timestamp > 0)) {
        return {low, low, 0};
    }
    return {low, high, fractionBetween(items[low].timestamp, items[high].timestamp, time)};
}

double mix(double a, double b, double fraction) {
    const double distance = b - a;
    return std::isfinite(distance) ? a + distance * fraction : a * (1 - fraction) + b * fraction;
}

template<typename Item>
Point interpolate(std::span<const Item> items, double time) {
    const Neighbours n = findNeighbours(items, time);
    const Item& a = items[n.lower];
    const Item& b = items[n.upper];
    return {mix(a.x, b.x, n.fraction), mix(a.y, b.y, n.fraction)};
}

bool isClick(CursorEventType type) {
    return type == CursorEventType::leftClick || type == CursorEventType::rightClick;
}

bool isKeyPress(CursorEventType type) {
    return type == CursorEventType::keyDown;
}

EventIndex indexOf(const std::vector<CursorEvent>& events, bool (*belongs)(CursorEventType)) {
    std::vector<CursorEvent> chosen;
    std::copy_if(events.begin(), events.end(), std::back_inserter(chosen),
                 [&](const CursorEvent& event) { return belongs(event.eventType); });
    return EventIndex(std::move(chosen));
}

} // namespace

CursorRenderer CursorRenderer::make(std::vector<CursorEvent> events, double videoHeight,
                                    const CursorSettings& settings,
                                    std::vector<PixelBufferPtr> cursorImages,
                                    std::vector<CursorImageInfo> cursorImageInfos) {
    CursorRenderer renderer;
    renderer.smoothedSamples = smoothCursorEvents(events, settings.smoothingPreset, videoHeight);
    renderer.clicks = indexOf(events, isClick);
    renderer.keyPresses = indexOf(events, isKeyPress);
    renderer.events = std::move(events);
    renderer.videoHeight = videoHeight;
    renderer.settings = settings;
    renderer.cursorImages = std::move(cursorImages);
    renderer.cursorImageInfos = std::move(cursorImageInfos);
    return renderer;
}

std::optional<Point> CursorRenderer::position(double time) const {
    if (!smoothedSamples.empty() && settings.smoothingPreset != CursorSmoothingPreset::none) {
        return interpolate(std::span<const SmoothedCursorSample>(smoothedSamples), time);
    }
    if (events.empty()) {
        return std::nullopt;
    }
    const Point raw = interpolate(std::span<const CursorEvent>(events), time);
    return Point{raw.x, videoHeight - raw.y};
}

std::int64_t CursorRenderer::cursorImageId(double time) const {
    if (events.empty()) {
        return 0;
    }
    return events[findNeighbours(std::span<const CursorEvent>(events), time).lower].cursorImageId;
}

std::vector<CursorRenderer::ClickEffectState> CursorRenderer::clickEffects(double time) const {
    std::vector<ClickEffectState> effects;
    if (!settings.showClickEffect) {
        return effects;
    }
    for (const CursorEvent& event : clicks.between(time - kClickEffectDuration, time)) {
        const double age = time - event.timestamp;
        if (age >= 0 && age < kClickEffectDuration) {
            effects.push_back({{event.x, event.y}, age / kClickEffectDuration});
        }
    }
    return effects;
}

std::span<const CursorEvent> CursorRenderer::recentKeyPresses(double time) const {
    return keyPresses.between(time - settings.keystrokeDisplayDuration, time);
}

} // namespace tavi
