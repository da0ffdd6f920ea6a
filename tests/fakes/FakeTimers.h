#pragma once

#include "base/Timers.h"

#include <algorithm>
#include <vector>

namespace tavi {

/// Timers whose ticks the test gives.
class FakeTimers final : public Timers {
public:
    std::unique_ptr<Timer> repeat(double interval, std::function<void()> tick) override {
        auto timer = std::make_unique<FakeTimer>(*this, interval, std::move(tick));
        m_timers.push_back(timer.get());
        return timer;
    }

    /// One tick of each timer with that interval.
    void tick(double interval) {
        const auto timers = m_timers;
        for (FakeTimer* timer : timers) {
            if (isRunning(timer) && timer->interval == interval) {
                const auto tick = timer->tick; // the timer may go meanwhile
                tick();
            }
        }
    }

    /// The intervals of the timers that run, in the order of their start.
    std::vector<double> running() const {
        std::vector<double> intervals;
        for (const FakeTimer* timer : m_timers) {
            intervals.push_back(timer->interval);
        }
        return intervals;
    }

private:
    class FakeTimer final : public Timer {
    public:
        FakeTimer(FakeTimers& owner, double seconds, std::function<void()> block)
            : interval(seconds),
              tick(std::move(block)),
              m_owner(owner) {}
        ~FakeTimer() override { std::erase(m_owner.m_timers, this); }

        double interval;
        std::function<void()> tick;

    private:
        FakeTimers& m_owner;
    };

    bool isRunning(const FakeTimer* timer) const {
        return std::find(m_timers.begin(), m_timers.end(), timer) != m_timers.end();
    }

    std::vector<FakeTimer*> m_timers;
};

} // namespace tavi
