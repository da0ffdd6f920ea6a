#include "support/PrivateBus.h"

#include <QCoreApplication>
#include <QDBusMessage>
#include <QElapsedTimer>
#include <gtest/gtest.h>

#include <utility>

namespace tavi::test {

bool waitPatiently(const std::function<bool()>& condition) {
    constexpr int kPatience = 60'000; // milliseconds
    QElapsedTimer timer;
    timer.start();
    while (!condition()) {
        if (timer.elapsed() > kPatience) {
            return false;
        }
        QCoreApplication::processEvents(QEventLoop::AllEvents | QEventLoop::WaitForMoreEvents, 100);
    }
    return true;
}

FakeDesktopService::FakeDesktopService(QDBusConnection bus, const QString& name,
                                       const QString& path, QString introspection, Answer answer,
                                       QDBusConnection::VirtualObjectRegisterOption paths)
    : m_bus(std::move(bus)),
      m_name(name),
      m_path(path),
      m_introspection(std::move(introspection)),
      m_answer(std::move(answer)) {
    EXPECT_TRUE(m_bus.registerVirtualObject(path, this, paths));
    EXPECT_TRUE(m_bus.registerService(name));
}

FakeDesktopService::~FakeDesktopService() {
    m_bus.unregisterService(m_name);
    m_bus.unregisterObject(m_path);
}

bool FakeDesktopService::handleMessage(const QDBusMessage& message, const QDBusConnection& bus) {
    if (message.interface() == QLatin1String("org.freedesktop.DBus.Introspectable")) {
        return false; // answered by introspect()
    }
    m_calls.push_back(message);
    bus.send(message.createReply(m_answer(message)));
    return true;
}

QDBusMessage FakeDesktopService::lastCall(const QString& method) const {
    for (auto call = m_calls.rbegin(); call != m_calls.rend(); ++call) {
        if (call->member() == method) {
            return *call;
        }
    }
    return {};
}

namespace {

/// What runs the main loop, where the test program has none.
void ensureApplication() {
    static int count = 1;
    static char name[] = "test";
    static char* arguments[] = {name, nullptr};
    if (QCoreApplication::instance() == nullptr) {
        static const QCoreApplication application(count, arguments);
    }
}

} // namespace

QDBusConnection connectPatiently(const QString& address, const QString& name) {
    auto connection = QDBusConnection::connectToBus(address, name);
    EXPECT_TRUE(waitPatiently([&] {
        if (!connection.isConnected()) {
            QDBusConnection::disconnectFromBus(name);
            connection = QDBusConnection::connectToBus(address, name);
        }
        return connection.isConnected();
    }));
    return connection;
}

PrivateBus::PrivateBus() {
    ensureApplication();
    // Makes Qt fork: the thread sanitizer watches nothing any more after a vfork.
    m_daemon.setChildProcessModifier([] {});
    m_daemon.start(QStringLiteral("dbus-daemon"),
                   {QStringLiteral("--session"), QStringLiteral("--nofork"),
                    QStringLiteral("--nopidfile"), QStringLiteral("--address=") + address()});
    EXPECT_TRUE(m_daemon.waitForStarted(30'000)) << "dbus-daemon does not start";
    EXPECT_TRUE(waitPatiently([this] { return std::filesystem::exists(m_folder / "bus"); }));
}

PrivateBus::~PrivateBus() {
    for (const QString& name : m_connections) {
        QDBusConnection::disconnectFromBus(name);
    }
    m_daemon.kill();
    m_daemon.waitForFinished();
}

QString PrivateBus::address() const {
    return QStringLiteral("unix:path=") + QString::fromStdString((m_folder / "bus").string());
}

QDBusConnection PrivateBus::connect() {
    const QString name = QStringLiteral("%1#%2").arg(address()).arg(m_connections.size());
    m_connections << name;
    return connectPatiently(address(), name);
}

} // namespace tavi::test
