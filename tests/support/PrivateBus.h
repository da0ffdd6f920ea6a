#pragma once

#include "support/TemporaryFolder.h"

#include <QDBusConnection>
#include <QDBusVirtualObject>

#include <functional>
#include <sys/types.h>
#include <vector>

namespace tavi::test {

/// Runs the main loop until `condition` holds; false after a minute without.
bool waitPatiently(const std::function<bool()>& condition);

/// A connection to the bus at `address`, which may just be starting: its socket is there a moment
/// before anyone listens.
QDBusConnection connectPatiently(const QString& address, const QString& name);

/// A message bus of its own, ended with the object.
class PrivateBus {
public:
    PrivateBus();
    ~PrivateBus();
    PrivateBus(const PrivateBus&) = delete;
    PrivateBus& operator=(const PrivateBus&) = delete;

    QString address() const;

    /// A connection of its own, as another program would have; closed with the bus.
    QDBusConnection connect();

private:
    TemporaryFolder m_folder;
    pid_t m_daemon = -1;
    QStringList m_connections;
};

/// A service of a desktop, on the session's bus: notes the calls and answers them.
class FakeDesktopService final : public QDBusVirtualObject {
public:
    using Answer = std::function<QVariantList(const QDBusMessage&)>;

    /// `introspection` tells the interfaces at `path`; with SubPath the objects below it are
    /// the service's as well.
    FakeDesktopService(
        QDBusConnection bus, const QString& name, const QString& path, QString introspection,
        Answer answer,
        QDBusConnection::VirtualObjectRegisterOption paths = QDBusConnection::SingleNode);
    ~FakeDesktopService() override;

    QString introspect(const QString&) const override { return m_introspection; }
    bool handleMessage(const QDBusMessage& message, const QDBusConnection& bus) override;

    /// The last call of a method; of no type where none came.
    QDBusMessage lastCall(const QString& method) const;

private:
    QDBusConnection m_bus;
    QString m_name;
    QString m_path;
    QString m_introspection;
    Answer m_answer;
    std::vector<QDBusMessage> m_calls;
};

} // namespace tavi::test
