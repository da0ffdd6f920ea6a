#include "editor/TrimEdits.h"

#include <algorithm>
#include <ranges>

namespace tavi::TrimEdits {

namespace {

constexpr double kShortestCut = 1.0 / 30; ///< Seconds: one frame of a slow video.

std::vector<TimeRange> sortedByStart(std::vector<TimeRange> ranges) {
    std::ranges::stable_sort(ranges, {}, &TimeRange::start);
    return ranges;
}

std::vector<TimeRange> merged(std::vector<TimeRange> ranges) {
    std::vector<TimeRange> out;
    for (const TimeRange& range : sortedByStart(std::move(ranges))) {
        if (!out.empty() && range.start <= out.back().end) {
            out.back().end = std::max(out.back().end, range.end);
        } else {
            out.push_back(range);
        }
    }
    return out;
}

} // namespace

double end(const TrimState& trim, double duration) {
    return trim.outPoint.value_or(duration);
}

void setTrimIn(TrimState& trim, double time) {
    trim.inPoint = std::max(time, 0.0);
    if (trim.outPoint && *trim.outPoint <= trim.inPoint) {
        trim.outPoint.reset();
    }
}

bool setTrimOut(TrimState& trim, double time, double duration) {
    const double outPoint = std::min(time, duration);
    if (outPoint <= trim.inPoint) {
        return false;
    }
    trim.outPoint = outPoint;
    return true;
}

bool addCut(TrimState& trim, double from, double to) {
    const auto [start, end] = std::minmax(from, to);
    if (!(end - start > kShortestCut)) {
        return false;
    }
    trim.cutSegments.push_back({Uuid::make(), start, end});
    trim.cutSegments = merged(std::move(trim.cutSegments));
    return true;
}

std::optional<double> endOfCutAt(const TrimState& trim, double time) {
    for (const TimeRange& cut : sortedByStart(trim.cutSegments)) {
        if (cut.start <= time && time < cut.end) {
            return cut.end;
        }
    }
    return std::nullopt;
}

} // namespace tavi::TrimEdits
