#pragma once

#include "base/Executor.h"

namespace tavi {

/// Hands blocks to the Qt loop of the main thread; they wait until it runs, for ever where it
/// never does. Made on the main thread; posted to from any.
class QtExecutor final : public Executor {
public:
    QtExecutor();

    void post(std::function<void()> block) override;
};

} // namespace tavi
