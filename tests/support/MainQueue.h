#pragma once

#include "base/Executor.h"

#include <chrono>
#include <condition_variable>
#include <deque>
#include <mutex>

namespace tavi::test {

/// The test's thread as the main thread: blocks run while it waits for something.
class MainQueue final : public Executor {
public:
    void post(std::function<void()> block) override {
        {
            const std::lock_guard lock(m_mutex);
            m_blocks.push_back(std::move(block));
        }
        m_posted.notify_all();
    }

    /// Runs blocks until `condition` holds, which is looked at after each and every few
    /// milliseconds; false when it doesn't within `seconds`.
    bool runUntil(const std::function<bool()>& condition, double seconds = 60) {
        const auto end = Time::now() + std::chrono::duration<double>(seconds);
        while (!condition()) {
            if (Time::now() > end) {
                return false;
            }
            runOne();
        }
        return true;
    }

    /// Runs blocks for a while.
    void runFor(double seconds) {
        runUntil([] { return false; }, seconds);
    }

    /// Forgets what was posted.
    void clear() {
        const std::lock_guard lock(m_mutex);
        m_blocks.clear();
    }

private:
    using Time = std::chrono::steady_clock;

    void runOne() {
        std::unique_lock lock(m_mutex);
        if (!m_posted.wait_for(lock, std::chrono::milliseconds(2),
                               [this] { return !m_blocks.empty(); })) {
            return;
        }
        const auto block = std::move(m_blocks.front());
        m_blocks.pop_front();
        lock.unlock();
        block();
    }

    std::mutex m_mutex;
    std::condition_variable m_posted;
    std::deque<std::function<void()>> m_blocks;
};

} // namespace tavi::test
