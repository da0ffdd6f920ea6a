#pragma once

#include <QDBusConnection>

namespace tavi {

/// True when a panel of the desktop shows status items (org.kde.StatusNotifierWatcher with a
/// host). Blocks until the bus answers, two seconds at most.
bool hasStatusItemHost(const QDBusConnection& session);

/// True when the desktop's notifications can have a button. Blocks likewise.
bool hasNotificationButtons(const QDBusConnection& session);

} // namespace tavi
