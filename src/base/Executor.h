#pragma once

#include <functional>

namespace tavi {

/// Where a result is handed over: the main thread, as seen from a core folder.
class Executor {
public:
    virtual ~Executor() = default;

    /// Queues `block` to run later on the executor's thread, in order. Any thread.
    virtual void post(std::function<void()> block) = 0;
};

} // namespace tavi
