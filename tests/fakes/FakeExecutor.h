#pragma once

#include "base/Executor.h"

#include <deque>
#include <mutex>

namespace tavi {

/// A main thread whose blocks run when the test says so.
class FakeExecutor final : public Executor {
public:
    void post(std::function<void()> block) override {
        const std::lock_guard lock(m_mutex);
        m_blocks.push_back(std::move(block));
    }

    /// Runs everything posted so far, and what that posts.
    void runAll() {
        for (;;) {
            std::function<void()> block;
            {
                const std::lock_guard lock(m_mutex);
                if (m_blocks.empty()) {
                    return;
                }
                block = std::move(m_blocks.front());
                m_blocks.pop_front();
            }
            block();
        }
    }

    std::size_t waiting() const {
        const std::lock_guard lock(m_mutex);
        return m_blocks.size();
    }

private:
    mutable std::mutex m_mutex;
    std::deque<std::function<void()>> m_blocks;
};

} // namespace tavi
