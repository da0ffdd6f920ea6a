#pragma once

#include "base/Clock.h"

#include <atomic>

namespace tavi {

/// Both clocks, moved by hand. Any thread.
class FakeClock final : public Clock {
public:
    Date now() const override { return {m_now}; }
    MediaTime hostTime() const override { return MediaTime::fromNanoseconds(m_hostNanoseconds); }

    void setNow(double sinceReference) { m_now = sinceReference; }
    void setHostTime(double seconds) {
        m_hostNanoseconds = static_cast<std::int64_t>(seconds * 1e9);
    }

    /// Moves both.
    void advance(double seconds) {
        m_now = m_now + seconds;
        m_hostNanoseconds += static_cast<std::int64_t>(seconds * 1e9);
    }

private:
    std::atomic<double> m_now = 800'000'000;
    std::atomic<std::int64_t> m_hostNanoseconds = 50'000'000'000;
};

} // namespace tavi
