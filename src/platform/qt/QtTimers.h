#pragma once

#include "base/Timers.h"

namespace tavi {

/// Timers of the Qt loop of the thread that asks for them.
class QtTimers final : public Timers {
public:
    std::unique_ptr<Timer> repeat(double interval, std::function<void()> tick) override;
};

} // namespace tavi
