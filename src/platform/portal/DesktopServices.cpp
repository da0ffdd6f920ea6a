#include "platform/portal/DesktopServices.h"

#include <QDBusMessage>
#include <QDBusReply>
#include <QDBusVariant>
#include <QStringList>

namespace tavi {

namespace {

constexpr int kPatienceMs = 2000;

} // namespace

bool hasStatusItemHost(const QDBusConnection& session) {
    const QString watcher = QStringLiteral("org.kde.StatusNotifierWatcher");
    auto call = QDBusMessage::createMethodCall(watcher, QStringLiteral("/StatusNotifierWatcher"),
                                               QStringLiteral("org.freedesktop.DBus.Properties"),
                                               QStringLiteral("Get"));
    call << watcher << QStringLiteral("IsStatusNotifierHostRegistered");
    const QDBusReply<QDBusVariant> answer = session.call(call, QDBus::Block, kPatienceMs);
    return answer.isValid() && answer.value().variant().toBool();
}

bool hasNotificationButtons(const QDBusConnection& session) {
    const QString service = QStringLiteral("org.freedesktop.Notifications");
    const auto call =
        QDBusMessage::createMethodCall(service, QStringLiteral("/org/freedesktop/Notifications"),
                                       service, QStringLiteral("GetCapabilities"));
    const QDBusReply<QStringList> answer = session.call(call, QDBus::Block, kPatienceMs);
    return answer.isValid() && answer.value().contains(QStringLiteral("actions"));
}

} // namespace tavi
