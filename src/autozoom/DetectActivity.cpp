#include "autozoom/UnifiedAutoZoom.h"

namespace tavi::UnifiedAutoZoom {

namespace {

constexpr double kTypingPause = 0.8;         ///< Seconds; a longer one ends a typing run.
constexpr std::size_t kMinimumTypingRun = 3; ///< Keys; shorter runs count as single keys.

constexpr double kPressWeight = 3.0;
constexpr double kScrollOrKeyWeight = 1.0;

/// 0 for what is no activity.
double weight(CursorEventType type) {
    switch (type) {
    case CursorEventType::leftClick:
    case CursorEventType::rightClick:
    case CursorEventType::leftMouseDown:
        return kPressWeight;
    case CursorEventType::scroll:
    case CursorEventType::keyDown:
        return kScrollOrKeyWeight;
    case CursorEventType::move:
    case CursorEventType::leftMouseUp:
        return 0;
    }
    return 0;
}

/// A weighted mean of positions in the making.
struct WeightedCentre {
    double x = 0;
    double y = 0;
    double weight = 0;

    void add(const InteractionEvent& event, double w) {
        x += event.x * w;
        y += event.y * w;
        weight += w;
    }
};

/// A stretch of key presses without a long pause: positions first..last-1 of a
/// list of keys.
struct TypingRun {
    std::size_t first = 0;
    std::size_t last = 0;
};

std::vector<std::size_t> keyPositions(std::span<const InteractionEvent> run) {
    std::vector<std::size_t> keys;
    for (std::size_t i = 0; i < run.size(); ++i) {
        if (run[i].type == CursorEventType::keyDown) {
            keys.push_back(i);
        }
    }
    return keys;
}

std::vector<TypingRun> findTypingRuns(std::span<const InteractionEvent> run,
                                      const std::vector<std::size_t>& keys) {
    std::vector<TypingRun> runs;
    if (keys.size() < kMinimumTypingRun) {
        return runs;
    }
    std::size_t start = 0;
    for (std::size_t i = 1; i <= keys.size(); ++i) {
        const bool ends =
            i == keys.size() || run[keys[i]].timestamp - run[keys[i - 1]].timestamp > kTypingPause;
        if (!ends) {
            continue;
        }
        if (i - start >= kMinimumTypingRun) {
            runs.push_back({start, i});
        }
        start = i;
    }
    return runs;
}

std::vector<InteractionEvent> interactions(std::span<const CursorEvent> events,
                                           const Inputs& inputs) {
    std::vector<InteractionEvent> kept;
    for (const CursorEvent& event : events) {
        if (weight(event.eventType) > 0) {
            const Point position = inputs.position(event);
            kept.push_back({event.timestamp, position.x, position.y, event.eventType});
        }
    }
    return kept;
}

} // namespace

std::optional<ActivitySegment> summarizeActivity(std::span<const InteractionEvent> run) {
    if (run.empty()) {
        return std::nullopt;
    }
    const std::vector<std::size_t> keys = keyPositions(run);
    const std::vector<TypingRun> typing = findTypingRuns(run, keys);
    std::vector<bool> consumed(run.size(), false);
    for (const TypingRun& r : typing) {
        for (std::size_t i = r.first; i < r.last; ++i) {
            consumed[keys[i]] = true;
        }
    }
    WeightedCentre centre;
    for (std::size_t i = 0; i < run.size(); ++i) {
        if (!consumed[i]) {
            centre.add(run[i], weight(run[i].type));
        }
    }
    for (const TypingRun& r : typing) {
        centre.add(run[keys[r.first]], static_cast<double>(r.last - r.first));
    }
    if (!(centre.weight > 0)) {
        return std::nullopt;
    }
    return ActivitySegment{run.front().timestamp, run.back().timestamp, centre.x / centre.weight,
                           centre.y / centre.weight};
}

std::vector<ActivitySegment> detectActivity(std::span<const CursorEvent> events,
                                            const Inputs& inputs) {
    const double activityGap = Thresholds(inputs.aggressiveness).activityGap;
    const std::vector<InteractionEvent> kept = interactions(events, inputs);
    std::vector<ActivitySegment> segments;
    std::size_t runStart = 0;
    for (std::size_t i = 1; i <= kept.size(); ++i) {
        const bool ends =
            i == kept.size() || kept[i].timestamp - kept[i - 1].timestamp > activityGap;
        if (!ends) {
            continue;
        }
        const auto run = std::span(kept).subspan(runStart, i - runStart);
        if (const auto segment = summarizeActivity(run)) {
            segments.push_back(*segment);
        }
        runStart = i;
    }
    return segments;
}

} // namespace tavi::UnifiedAutoZoom
