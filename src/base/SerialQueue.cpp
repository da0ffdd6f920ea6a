#include "base/SerialQueue.h"

#include <cassert>
#include <future>
#include <pthread.h>

namespace tavi {

SerialQueue::SerialQueue(std::string label) : m_label(std::move(label)) {
    m_thread = std::thread([this] { run(); });
    pthread_setname_np(m_thread.native_handle(), m_label.substr(0, 15).c_str());
}

SerialQueue::~SerialQueue() {
    {
        const std::lock_guard lock(m_mutex);
        m_stopping = true;
    }
    m_wake.notify_one();
    m_thread.join();
}

void SerialQueue::post(std::function<void()> block) {
    {
        const std::lock_guard lock(m_mutex);
        m_blocks.push_back(std::move(block));
    }
    m_wake.notify_one();
}

void SerialQueue::sync(const std::function<void()>& block) {
    assert(!isCurrent());
    std::promise<void> done;
    post([&] {
        block();
        done.set_value();
    });
    done.get_future().wait();
}

void SerialQueue::run() {
    std::unique_lock lock(m_mutex);
    for (;;) {
        m_wake.wait(lock, [this] { return m_stopping || !m_blocks.empty(); });
        if (m_blocks.empty()) {
            return;
        }
        const auto block = std::move(m_blocks.front());
        m_blocks.pop_front();
        lock.unlock();
        block();
        lock.lock();
    }
}

} // namespace tavi
