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

    /// Runs at each call, before it does anything; asks nothing of the log.
    std::function<void()> whenNoted;

private:
    mutable std::mutex m_mutex;
    std::vector<std::string> m_calls;
};

} // namespace tavi
