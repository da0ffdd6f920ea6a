#pragma once

#include <functional>
#include <mutex>
#include <string>
#include <vector>

namespace tavi {

/// What was asked of one or several fakes, in order. Any thread.
class CallLog {
public:
    void note(const std::string& call) {
        const std::lock_guard lock(m_mutex);
        m_calls.push_back(call);
        if (whenNoted) {
            whenNoted();
        }
    }

    std::vector<std::string> calls() const {
        const std::lock_guard lock(m_mutex);
        return m_calls;
    }

    /// The calls since the last time this was asked.
    std::vector<std::string> newCalls() {
        const std::lock_guard lock(m_mutex);
        std::vector<std::string> added(m_calls.begin() + static_cast<std::ptrdiff_t>(m_seen),
                                       m_calls.end());
        m_seen = m_calls.size();
        return added;
    }

    /// Runs at each call, before it does anything; asks nothing of the log.
    std::function<void()> whenNoted;

private:
    mutable std::mutex m_mutex;
    std::vector<std::string> m_calls;
    std::size_t m_seen = 0;
};

} // namespace tavi
