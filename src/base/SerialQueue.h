#pragma once

#include <condition_variable>
#include <deque>
#include <functional>
#include <mutex>
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

    /// Queues `block`. Never blocks on work of the queue.
    void post(std::function<void()> block);

    /// Runs `block` on the queue after everything posted before and waits for it.
    void sync(const std::function<void()>& block);

    /// True on the queue's own thread.
    bool isCurrent() const { return std::this_thread::get_id() == m_thread.get_id(); }

private:
    void run();

    std::string m_label;
    std::mutex m_mutex;
    std::condition_variable m_wake;
    std::deque<std::function<void()>> m_blocks;
    bool m_stopping = false;
    std::thread m_thread;
};

} // namespace tavi
