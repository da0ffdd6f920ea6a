#pragma once

#include "capture/WakeLock.h"

namespace tavi {

/// Wake locks that are counted.
class FakeWakeLocks final : public WakeLocks {
public:
    std::unique_ptr<WakeLock> acquire(const std::string& reason) override {
        ++acquired;
        lastReason = reason;
        return std::make_unique<Lock>(held);
    }

    int acquired = 0; ///< Ever.
    int held = 0;     ///< Now.
    std::string lastReason;

private:
    class Lock final : public WakeLock {
    public:
        explicit Lock(int& held) : m_held(held) { ++m_held; }
        ~Lock() override { --m_held; }
        Lock(const Lock&) = delete;
        Lock& operator=(const Lock&) = delete;

    private:
        int& m_held;
    };
};

} // namespace tavi
