#include "platform/portal/DesktopWakeLocks.h"

#include "platform/portal/WakeAttempt.h"

#include <QPointer>

#include <utility>

namespace tavi {

namespace {

class DesktopWakeLock final : public WakeLock {
public:
    explicit DesktopWakeLock(WakeAttempt* attempt) : m_attempt(attempt) {}
    ~DesktopWakeLock() override {
        if (m_attempt) {
            m_attempt->release();
        }
    }
    DesktopWakeLock(const DesktopWakeLock&) = delete;
    DesktopWakeLock& operator=(const DesktopWakeLock&) = delete;

private:
    QPointer<WakeAttempt> m_attempt; ///< Ends itself when it is released, or with the program.
};

} // namespace

std::unique_ptr<WakeLock> DesktopWakeLocks::acquire(const std::string& reason, Told told) {
    auto* attempt =
        new WakeAttempt(m_session, m_system, QString::fromStdString(reason), std::move(told));
    attempt->askPortal();
    return std::make_unique<DesktopWakeLock>(attempt);
}

} // namespace tavi
