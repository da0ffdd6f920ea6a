#pragma once

#include "base/Executor.h"

namespace tavi {

/// Hands blocks to the Qt loop of the main thread; they wait until it runs. Needs a
/// QCoreApplication.
class QtExecutor final : public Executor {
public:
    void post(std::function<void()> block) override;
};

} // namespace tavi
