#include "platform/portal/DesktopWakeLocks.h"

#include "platform/portal/WakeAttempt.h"

#include <utility>

namespace tavi {

namespace {

class DesktopWakeLock final : public WakeLock {
public:
    explicit DesktopWakeLock(WakeAttempt* attempt) : m_attempt(attempt) {}
    ~DesktopWakeLock() override { m_attempt->release(); }
    DesktopWakeLock(const DesktopWakeLock&) = delete;
    DesktopWakeLock& operator=(const DesktopWakeLock&) = delete;

private:
    WakeAttempt* m_attempt; ///< Ends itself when it is released.
};

} // namespace

std::unique_ptr<WakeLock> DesktopWakeLocks::acquire(const std::string& reason, Told told) {
    auto* attempt =
        new WakeAttempt(m_session, m_system, QString::fromStdString(reason), std::move(told));
    attempt->askPortal();
    return std::make_unique<DesktopWakeLock>(attempt);
}

} // namespace tavi
