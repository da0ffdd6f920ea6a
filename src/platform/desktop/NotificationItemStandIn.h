#pragma once

#include "capture/StatusItem.h"

#include <QDBusConnection>
#include <QObject>
#include <QString>

#include <functional>

namespace tavi {

/// A notification of the desktop with the action "Stop", in place of an item in the tray.
///
/// The desktop may put it away after a while and keeps it in its list, where it has one. The title
/// is not kept up to date, since each change would show it anew. Thread: main.
class NotificationItemStandIn final : public QObject, public StatusItem {
    Q_OBJECT

public:
    NotificationItemStandIn(const StatusItemLook& look, std::function<void()> onClick);
    ~NotificationItemStandIn() override;

    void setTitle(const std::string&) override {}

private slots:
    void shown(uint id);
    void actionInvoked(uint id, const QString& action);

private:
    void close(uint id);

    QDBusConnection m_bus = QDBusConnection::sessionBus();
    std::function<void()> m_onClick;
    uint m_id = 0; ///< 0 until the desktop has told it.
};

} // namespace tavi
