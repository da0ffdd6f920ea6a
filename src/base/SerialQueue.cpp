#include "base/SerialQueue.h"

#include <array>
#include <cassert>
#include <ctime>
#include <future>
#include <poll.h>
#include <pthread.h>
#include <sys/eventfd.h>
#include <unistd.h>

namespace tavi {

namespace {

constexpr std::int64_t kNanoseconds = 1'000'000'000;

} // namespace

SerialQueue::SerialQueue(std::string label)
    : m_label(std::move(label)),
      m_bell(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {
    m_thread = std::thread([this] { run(); });
    pthread_setname_np(m_thread.native_handle(), m_label.substr(0, 15).c_str());
}

SerialQueue::~SerialQueue() {
    bool isPolling = false;
    {
        const std::lock_guard lock(m_mutex);
        m_stopping = true;
        isPolling = m_isPolling;
    }
    wake(isPolling);
    m_thread.join();
    close(m_bell);
}

void SerialQueue::wake(bool isPolling) {
    if (isPolling) {
        eventfd_write(m_bell, 1);
    } else {
        m_wake.notify_one();
    }
}

void SerialQueue::setSource(Source source) {
    sync([&] {
        m_source = std::move(source);
        m_wait = {.time = 0}; // which is over
    });
}

void SerialQueue::post(std::function<void()> block) {
    bool isPolling = false;
    {
        const std::lock_guard lock(m_mutex);
        m_blocks.push_back(std::move(block));
        isPolling = m_isPolling;
    }
    wake(isPolling);
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
        if (!m_blocks.empty()) {
            runBlock(lock);
        } else if (m_stopping) {
            return;
        } else if (m_source) {
            runSource(lock);
        } else {
            m_wake.wait(lock, [this] { return m_stopping || !m_blocks.empty(); });
        }
    }
}

void SerialQueue::runBlock(std::unique_lock<std::mutex>& lock) {
    const auto block = std::move(m_blocks.front());
    m_blocks.pop_front();
    lock.unlock();
    block();
    lock.lock();
}

void SerialQueue::runSource(std::unique_lock<std::mutex>& lock) {
    m_isPolling = true;
    lock.unlock();
    if (pollForSource()) {
        m_wait = m_source();
    }
    lock.lock();
    m_isPolling = false;
}

/// Sleeps until what the source waits for has come, which gives true, or the bell rings.
bool SerialQueue::pollForSource() {
    timespec pause{};
    if (m_wait.time) {
        timespec now{};
        clock_gettime(CLOCK_MONOTONIC, &now);
        const std::int64_t left =
            *m_wait.time - (std::int64_t{now.tv_sec} * kNanoseconds + now.tv_nsec);
        if (left <= 0) {
            return true;
        }
        pause = {static_cast<time_t>(left / kNanoseconds), static_cast<long>(left % kNanoseconds)};
    }
    std::array<pollfd, 2> waits{pollfd{m_bell, POLLIN, 0}, pollfd{m_wait.descriptor, POLLIN, 0}};
    const int count = ppoll(waits.data(), waits.size(), m_wait.time ? &pause : nullptr, nullptr);
    eventfd_t rings = 0;
    if (waits[0].revents != 0) {
        eventfd_read(m_bell, &rings);
    }
    return count == 0 || waits[1].revents != 0;
}

} // namespace tavi
