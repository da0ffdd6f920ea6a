#pragma once

#include <functional>
#include <memory>

namespace tavi {

/// Timers of the main thread. One thread: the one whose loop runs the ticks.
class Timers {
public:
    /// A timer that runs. No tick comes after it is destroyed, which its own tick may do.
    class Timer {
    public:
        virtual ~Timer() = default;
    };

    virtual ~Timers() = default;

    /// Calls `tick` every `interval` seconds, the first time when one interval is over. Ticks that
    /// are late are not made up for.
    virtual std::unique_ptr<Timer> repeat(double interval, std::function<void()> tick) = 0;
};

} // namespace tavi
