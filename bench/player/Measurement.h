#pragma once

#include "base/Clock.h"
#include "base/Executor.h"

#include <condition_variable>
#include <deque>
#include <functional>
#include <mutex>
#include <string>
#include <vector>

namespace tavi::bench {

/// The program's main thread: runs what players post.
class MainLoop final : public Executor {
public:
    void post(std::function<void()> block) override;

    /// Runs blocks until `condition` holds, asked after each.
    void runUntil(const std::function<bool()>& condition);

private:
    std::mutex m_mutex;
    std::condition_variable m_posted;
    std::deque<std::function<void()>> m_blocks;
};

/// Host seconds.
double now();

/// Processor seconds of this process so far.
double processorSeconds();

/// "name: n, median, 95th of a hundred, worst", in milliseconds.
void print(const std::string& name, std::vector<double> seconds);

/// "name: mean, 95th of a hundred, worst"; nothing of no values.
void printMean(const std::string& name, std::vector<double> values);

} // namespace tavi::bench
