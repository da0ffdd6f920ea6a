#pragma once

#include "base/Executor.h"
#include "base/SerialQueue.h"

#include <string>
#include <utility>

namespace tavi {

/// A background thread that runs blocks in order. The destructor runs what was posted.
class QueueExecutor final : public Executor {
public:
    explicit QueueExecutor(std::string label) : m_queue(std::move(label)) {}

    void post(std::function<void()> block) override { m_queue.post(std::move(block)); }

private:
    SerialQueue m_queue;
};

} // namespace tavi
