#include "platform/desktop/NotificationItemStandIn.h"

#include <QCoreApplication>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QPointer>
#include <QVariantMap>

#include <utility>

namespace tavi {

namespace {

constexpr auto kService = "org.freedesktop.Notifications";
constexpr auto kPath = "/org/freedesktop/Notifications";

QDBusMessage call(const char* method) {
    return QDBusMessage::createMethodCall(QLatin1String(kService), QLatin1String(kPath),
                                          QLatin1String(kService), QLatin1String(method));
}

struct Texts {
    Q_DECLARE_TR_FUNCTIONS(StatusItem)
};

QDBusMessage notification(const StatusItemLook& look) {
    QDBusMessage notify = call("Notify");
    const QStringList actions{QStringLiteral("stop"), Texts::tr("Stop")};
    const QVariantMap hints{{QStringLiteral("resident"), true},
                            {QStringLiteral("desktop-entry"), QStringLiteral("tavlin")}};
    constexpr int kDesktopDecides = -1;
    notify.setArguments({QStringLiteral("Tavlin"), 0u, QStringLiteral("tavlin"),
                         QString::fromStdString(look.accessibilityText),
                         Texts::tr("Stop it here, or with \"tavi stop\" in a terminal."), actions,
                         hints, kDesktopDecides});
    return notify;
}

} // namespace

NotificationItemStandIn::NotificationItemStandIn(const StatusItemLook& look,
                                                 std::function<void()> onClick)
    : m_onClick(std::move(onClick)) {
    m_bus.connect(QLatin1String(kService), QLatin1String(kPath), QLatin1String(kService),
                  QStringLiteral("ActionInvoked"), this, SLOT(actionInvoked(uint, QString)));
    auto* watcher = new QDBusPendingCallWatcher(m_bus.asyncCall(notification(look)));
    // The answer may come when the item is gone; the notification goes then as well.
    connect(watcher, &QDBusPendingCallWatcher::finished, watcher,
            [self = QPointer(this), bus = m_bus](QDBusPendingCallWatcher* answer) {
                const QDBusPendingReply<uint> id = *answer;
                if (self && id.isValid()) {
                    self->shown(id);
                } else if (id.isValid()) {
                    auto close = call("CloseNotification");
                    close << id.value();
                    bus.asyncCall(close);
                }
                answer->deleteLater();
            });
}

NotificationItemStandIn::~NotificationItemStandIn() {
    if (m_id != 0) {
        close(m_id);
    }
}

void NotificationItemStandIn::shown(uint id) {
    m_id = id;
}

void NotificationItemStandIn::actionInvoked(uint id, const QString& action) {
    if (id == m_id && m_id != 0 && action == QLatin1String("stop")) {
        const auto onClick = m_onClick; // the call may destroy this
        onClick();
    }
}

void NotificationItemStandIn::close(uint id) {
    auto message = call("CloseNotification");
    message << id;
    m_bus.asyncCall(message);
}

} // namespace tavi
