#include "player/Measurement.h"

#include <fmt/format.h>

#include <algorithm>
#include <chrono>
#include <ctime>
#include <numeric>

namespace tavi::bench {

namespace {

double read(clockid_t clock) {
    timespec time{};
    clock_gettime(clock, &time);
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * 1e-9;
}

} // namespace

void MainLoop::post(std::function<void()> block) {
    {
        const std::lock_guard lock(m_mutex);
        m_blocks.push_back(std::move(block));
    }
    m_posted.notify_all();
}

void MainLoop::runUntil(const std::function<bool()>& condition) {
    while (!condition()) {
        std::unique_lock lock(m_mutex);
        if (m_posted.wait_for(lock, std::chrono::milliseconds(10),
                              [this] { return !m_blocks.empty(); })) {
            const auto block = std::move(m_blocks.front());
            m_blocks.pop_front();
            lock.unlock();
            block();
        }
    }
}

double now() {
    return read(CLOCK_MONOTONIC);
}

double processorSeconds() {
    return read(CLOCK_PROCESS_CPUTIME_ID);
}

void print(const std::string& name, std::vector<double> seconds) {
    std::sort(seconds.begin(), seconds.end());
    const auto at = [&](double share) {
        const auto n = static_cast<double>(seconds.size() - 1);
        return seconds[static_cast<std::size_t>(share * n)] * 1e3;
    };
    fmt::print("{}: {} times, median {:.1f} ms, 95 of 100 below {:.1f} ms, worst {:.1f} ms\n", name,
               seconds.size(), at(0.5), at(0.95), at(1));
}

void printMean(const std::string& name, std::vector<double> values) {
    if (values.empty()) {
        return;
    }
    std::sort(values.begin(), values.end());
    const auto n = static_cast<double>(values.size());
    fmt::print("{}: mean {:.2f}, 95 of 100 below {:.2f}, worst {:.2f}\n", name,
               std::accumulate(values.begin(), values.end(), 0.0) / n,
               values[static_cast<std::size_t>(0.95 * (n - 1))], values.back());
}

} // namespace tavi::bench
