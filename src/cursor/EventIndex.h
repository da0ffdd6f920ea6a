#pragma once

#include "project/CursorEvent.h"

#include <span>
#include <vector>

namespace tavi {

/// Some events of a log, in log order, ready for many questions about short
/// stretches of time: an hour of pointer movement is not scanned for every frame.
class EventIndex {
public:
    EventIndex() = default;

    /// `events` may be in any order of time.
    explicit EventIndex(std::vector<CursorEvent> events);

    /// The shortest stretch of the list that holds every event with a timestamp
    /// in `from`..`to`, both included. It may hold others where the list is not
    /// in order of time. Logarithmic in the number of events.
    std::span<const CursorEvent> between(double from, double to) const;

private:
    std::vector<CursorEvent> m_events;
    std::vector<double> m_latestSoFar; ///< Of each event and all before it.
    std::vector<double> m_earliestYet; ///< Of each event and all after it.
};

} // namespace tavi
