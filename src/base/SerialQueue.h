#pragma once

#include <condition_variable>
#include <cstdint>
#include <deque>
#include <functional>
#include <mutex>
#include <optional>
#include <string>
#include <thread>

namespace tavi {

/// Runs blocks one at a time, in the order they came, on a thread of its own.
///
/// Threads: post() and sync() from any thread, sync() not from the queue itself
/// (it would wait for itself; asserted).
/// The destructor runs every block posted so far, then joins the thread.
class SerialQueue {
public:
    /// `label` names the thread for debuggers (cut to 15 bytes by the kernel).
    explicit SerialQueue(std::string label);
    ~SerialQueue();

    SerialQueue(const SerialQueue&) = delete;
    SerialQueue& operator=(const SerialQueue&) = delete;

    const std::string& label() const { return m_label; }

    /// What a source waits for: whichever comes first; with neither, for nothing.
    struct Wait {
        int descriptor = -1;              ///< To be readable.
        std::optional<std::int64_t> time; ///< On CLOCK_MONOTONIC, in nanoseconds.
    };
    /// Does what is due and says what to wait for next.
    using Source = std::function<Wait()>;

    /// Has the queue call `source` between its blocks: once now, and then whenever what it
    /// waits for has come. Blocks that are queued go first. Replaces the one before, which
    /// isn't called any more when this returns; null takes it away. Waits as sync() does.
    void setSource(Source source);

    /// Queues `block`. Never blocks on work of the queue.
    void post(std::function<void()> block);

    /// Runs `block` on the queue after everything posted before and waits for it.
    void sync(const std::function<void()>& block);

    /// True on the queue's own thread.
    bool isCurrent() const { return std::this_thread::get_id() == m_thread.get_id(); }

private:
    void run();
    void runBlock(std::unique_lock<std::mutex>& lock);
    void runSource(std::unique_lock<std::mutex>& lock);
    void wake(bool isPolling);
    bool pollForSource();

    std::string m_label;
    std::mutex m_mutex;
    std::condition_variable m_wake;
    std::deque<std::function<void()>> m_blocks;
    bool m_stopping = false;
    bool m_isPolling = false; ///< The thread waits for its source and the bell, not for m_wake.
    int m_bell;
    Source m_source; ///< The thread's own, as the next.
    Wait m_wait;
    std::thread m_thread;
};

} // namespace tavi
