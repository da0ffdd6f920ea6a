#include "render/OutputTimeline.h"

#include <algorithm>
#include <optional>

namespace tavi {

namespace {

/// outputTime() for many moments that mostly run forward: remembers the range of
/// the last answer, so a log in order costs one comparison an event.
class OutputClock {
public:
    explicit OutputClock(const OutputTimeline& timeline) : m_timeline(timeline) {}

    std::optional<double> at(double time) {
        const auto& ranges = m_timeline.ranges;
        if (m_index < ranges.size() && contains(m_index, time)) {
            return map(m_index, time);
        }
        for (std::size_t i = 0; i < ranges.size(); ++i) {
            if (contains(i, time)) {
                m_index = i;
                return map(i, time);
            }
        }
        return std::nullopt;
    }

private:
    bool contains(std::size_t i, double time) const {
        return m_timeline.ranges[i].start <= time && time < m_timeline.ranges[i].end;
    }
    double map(std::size_t i, double time) const {
        return m_timeline.outputOffsets[i] + (time - m_timeline.ranges[i].start);
    }

    const OutputTimeline& m_timeline;
    std::size_t m_index = 0;
};

/// Moves the items whose time survives and drops the others. `time` is the
/// member that holds it.
template<typename Item>
std::vector<Item> moved(const std::vector<Item>& items, double Item::*time, OutputClock& clock) {
    std::vector<Item> out;
    out.reserve(items.size());
    for (const Item& item : items) {
        if (const auto t = clock.at(item.*time)) {
            out.push_back(item);
            out.back().*time = *t;
        }
    }
    return out;
}

std::vector<ZoomKeyframe> movedKeyframes(const std::vector<ZoomKeyframe>& keyframes,
                                         OutputClock& clock) {
    std::vector<ZoomKeyframe> out;
    for (const ZoomKeyframe& keyframe : keyframes) {
        const auto start = clock.at(keyframe.timestamp);
        const auto end = clock.at(keyframe.endTime);
        if (!start || !end) {
            continue;
        }
        ZoomKeyframe& survivor = out.emplace_back(keyframe);
        survivor.timestamp = *start;
        survivor.endTime = *end;
        survivor.waypoints = moved(keyframe.waypoints, &ZoomWaypoint::time, clock);
        survivor.zoomCurve = moved(keyframe.zoomCurve, &ZoomCurvePoint::time, clock);
    }
    return out;
}

void setRanges(OutputTimeline& timeline, std::vector<TimeRange> ranges) {
    timeline.ranges = std::move(ranges);
    double offset = 0;
    for (const TimeRange& range : timeline.ranges) {
        timeline.outputOffsets.push_back(offset);
        offset += range.end - range.start;
    }
}

} // namespace

OutputTimeline makeOutputTimeline(const EditProject& project, double duration) {
    OutputTimeline timeline;
    if (project.trimState.isUntrimmed()) {
        if (duration > 0) {
            setRanges(timeline, {{Uuid::make(), 0, duration}});
        }
        timeline.keyframes = project.keyframes;
        timeline.cursorEvents = project.cursorEvents;
        return timeline;
    }
    setRanges(timeline, keptRanges(project.trimState, duration));
    OutputClock clock(timeline);
    timeline.keyframes = movedKeyframes(project.keyframes, clock);
    timeline.cursorEvents = moved(project.cursorEvents, &CursorEvent::timestamp, clock);
    return timeline;
}

} // namespace tavi
