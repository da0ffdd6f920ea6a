#include "project/TrimState.h"

#include <algorithm>

namespace tavi {

std::vector<TimeRange> keptRanges(const TrimState& trim, double duration) {
    const double effectiveOut = trim.outPoint.value_or(duration);
    std::vector<TimeRange> cuts = trim.cutSegments;
    std::stable_sort(cuts.begin(), cuts.end(),
                     [](const TimeRange& a, const TimeRange& b) { return a.start < b.start; });
    std::vector<TimeRange> kept;
    double cursor = trim.inPoint;
    for (const TimeRange& cut : cuts) {
        const double clippedStart = std::max(cut.start, trim.inPoint);
        const double clippedEnd = std::min(effectiveOut, cut.end);
        if (!(clippedStart < clippedEnd)) {
            continue;
        }
        if (cursor < clippedStart) {
            kept.push_back({Uuid::make(), cursor, clippedStart});
        }
        cursor = std::max(cursor, clippedEnd);
    }
    if (cursor < effectiveOut) {
        kept.push_back({Uuid::make(), cursor, effectiveOut});
    }
    return kept;
}

std::optional<double> outputTime(const TrimState& trim, double time, double duration) {
    return outputTime(keptRanges(trim, duration), time);
}

std::optional<double> outputTime(const std::vector<TimeRange>& ranges, double time) {
    double elapsed = 0;
    for (const TimeRange& range : ranges) {
        if (range.start <= time && time < range.end) {
            return elapsed + (time - range.start);
        }
        elapsed += range.end - range.start;
    }
    return std::nullopt;
}

double totalLength(const std::vector<TimeRange>& ranges) {
    double length = 0;
    for (const TimeRange& range : ranges) {
        length += range.end - range.start;
    }
    return length;
}

} // namespace tavi
