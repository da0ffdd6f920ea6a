#pragma once

#include "capture/WakeLock.h"

#include <QDBusConnection>

#include <functional>

namespace tavi {

/// Who keeps a session awake for a program.
enum class WakeService {
    portal,      ///< org.freedesktop.portal.Inhibit: no idleness, no sleep.
    screenSaver, ///< org.freedesktop.ScreenSaver, of desktops and screen savers.
    logind,      ///< org.freedesktop.login1 of the system: no sleep by itself.
    nobody,
};

/// Keeps the session awake by the first service that agrees, in the order of WakeService.
///
/// All of them let go by themselves when the program's connection ends. Thread: main.
class DesktopWakeLocks final : public WakeLocks {
public:
    /// What became of an acquire(), a moment after it.
    using Told = std::function<void(WakeService)>;

    explicit DesktopWakeLocks(QDBusConnection session = QDBusConnection::sessionBus(),
                              QDBusConnection system = QDBusConnection::systemBus())
        : m_session(std::move(session)),
          m_system(std::move(system)) {}

    std::unique_ptr<WakeLock> acquire(const std::string& reason) override {
        return acquire(reason, {});
    }
    std::unique_ptr<WakeLock> acquire(const std::string& reason, Told told);

private:
    QDBusConnection m_session;
    QDBusConnection m_system;
};

} // namespace tavi
