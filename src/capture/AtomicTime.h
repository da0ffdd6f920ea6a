#pragma once

#include "base/MediaTime.h"

#include <atomic>
#include <limits>
#include <optional>

namespace tavi {

/// A moment of the host clock that one thread stores and another one reads;
/// absent until it is stored. Any thread.
class AtomicTime {
public:
    /// To the nanosecond.
    void store(MediaTime time) { m_value = time.rescaled(MediaTime::kNanoseconds).value; }
    void clear() { m_value = kAbsent; }

    std::optional<MediaTime> load() const {
        const std::int64_t value = m_value;
        return value == kAbsent ? std::nullopt : std::optional(MediaTime::fromNanoseconds(value));
    }

private:
    static constexpr std::int64_t kAbsent = std::numeric_limits<std::int64_t>::min();

    std::atomic<std::int64_t> m_value = kAbsent;
};

} // namespace tavi
