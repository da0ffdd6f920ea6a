#pragma once

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
    }

    std::vector<std::string> calls() const {
        const std::lock_guard lock(m_mutex);
        return m_calls;
    }

private:
    mutable std::mutex m_mutex;
    std::vector<std::string> m_calls;
};

} // namespace tavi
