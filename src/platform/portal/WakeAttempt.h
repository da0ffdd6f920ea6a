#pragma once

#include "platform/portal/DesktopWakeLocks.h"

#include <QDBusConnection>
#include <QDBusUnixFileDescriptor>
#include <QObject>
#include <QString>
#include <QVariantMap>

#include <functional>

class QDBusMessage;

namespace tavi {

/// One lock and its way from service to service. It lives on after its lock until the call that
/// is under way has been answered, to take back what it was given; then it ends itself.
class WakeAttempt final : public QObject {
    Q_OBJECT

public:
    WakeAttempt(QDBusConnection session, QDBusConnection system, QString reason,
                DesktopWakeLocks::Told told);

    /// Begins.
    void askPortal();

    /// Nothing is wanted any more; the object is not to be used afterwards.
    void release();

private slots:
    void portalResponded(uint response, const QVariantMap&);

private:
    void askScreenSaver();
    void askLogind();
    void send(QDBusConnection& bus, const QDBusMessage& call,
              std::function<void(const QDBusMessage&)> next);
    void have(WakeService service);
    void letGo();

    QDBusConnection m_session;
    QDBusConnection m_system;
    QString m_reason;
    DesktopWakeLocks::Told m_told;
    bool m_isReleased = false;
    bool m_isPortalUnable = false;
    int m_pending = 0;
    WakeService m_service = WakeService::nobody; ///< The one that keeps the session awake.
    QString m_request;
    uint m_cookie = 0;
    QDBusUnixFileDescriptor m_held;
};

} // namespace tavi
