#include "cursor/EventIndex.h"

#include <algorithm>

namespace tavi {

EventIndex::EventIndex(std::vector<CursorEvent> events) : m_events(std::move(events)) {
    m_latestSoFar.reserve(m_events.size());
    for (const CursorEvent& event : m_events) {
        m_latestSoFar.push_back(m_latestSoFar.empty()
                                    ? event.timestamp
                                    : std::max(m_latestSoFar.back(), event.timestamp));
    }
    m_earliestYet.resize(m_events.size());
    for (std::size_t i = m_events.size(); i-- > 0;) {
        const double time = m_events[i].timestamp;
        m_earliestYet[i] = i + 1 < m_events.size() ? std::min(time, m_earliestYet[i + 1]) : time;
    }
}

std::span<const CursorEvent> EventIndex::between(double from, double to) const {
    // Both lists only rise, whatever the order of the events.
    const auto first = std::lower_bound(m_latestSoFar.begin(), m_latestSoFar.end(), from);
    const auto end = std::upper_bound(m_earliestYet.begin(), m_earliestYet.end(), to);
    const auto begin = static_cast<std::size_t>(first - m_latestSoFar.begin());
    const auto stop = static_cast<std::size_t>(end - m_earliestYet.begin());
    if (begin >= stop) {
        return {};
    }
    return std::span(m_events).subspan(begin, stop - begin);
}

} // namespace tavi
