#include "cursor/CursorRenderer.h"

#include <span>

namespace tavi {

namespace {

/// Two neighbours in a log around a moment, and where the moment lies between them.
struct Neighbours {
    std::size_t lower = 0;
    std::size_t upper = 0;
    double fraction = 0; ///< 0 at `lower`, 1 at `upper`; 0 where both have one time.
};

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
        (items[middle].timestamp <= time ? low : high) = middle;
    }
    const double gap = items[high].timestamp - items[low].timestamp;
    if (!(gap > 0)) {
        return {low, low, 0};
    }
    return {low, high, (time - items[low].timestamp) / gap};
}

template<typename Item>
Point interpolate(std::span<const Item> items, double time) {
    const Neighbours n = findNeighbours(items, time);
    const Item& a = items[n.lower];
    const Item& b = items[n.upper];
    return {a.x + (b.x - a.x) * n.fraction, a.y + (b.y - a.y) * n.fraction};
}

bool isClick(CursorEventType type) {
    return type == CursorEventType::leftClick || type == CursorEventType::rightClick;
}

} // namespace

CursorRenderer CursorRenderer::make(std::vector<CursorEvent> events, double videoHeight,
                                    const CursorSettings& settings,
                                    std::vector<PixelBufferPtr> cursorImages,
                                    std::vector<CursorImageInfo> cursorImageInfos) {
    CursorRenderer renderer;
    renderer.smoothedSamples = smoothCursorEvents(events, settings.smoothingPreset, videoHeight);
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
    for (const CursorEvent& event : events) {
        const double age = time - event.timestamp;
        if (isClick(event.eventType) && age >= 0 && age < kClickEffectDuration) {
            effects.push_back({{event.x, event.y}, age / kClickEffectDuration});
        }
    }
    return effects;
}

} // namespace tavi
