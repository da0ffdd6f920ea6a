#include "support/PrivateBus.h"

#include "support/Sockets.h"

#include <QCoreApplication>
#include <QDBusMessage>
#include <QElapsedTimer>
#include <gtest/gtest.h>

#include <csignal>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>
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

/// Forked here, since QProcess makes a child of the kind after which the thread sanitizer lets this
/// process start no more threads.
pid_t startDaemon(const std::string& place) {
    const pid_t pid = fork();
    if (pid == 0) {
        prctl(PR_SET_PDEATHSIG, SIGKILL);
        execlp("dbus-daemon", "dbus-daemon", "--session", "--nofork", "--nopidfile", place.c_str(),
               nullptr);
        _exit(127);
    }
    return pid;
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
    m_daemon = startDaemon("--address=" + address().toStdString());
    EXPECT_TRUE(waitPatiently([this] { return isListenedTo(m_folder / "bus"); }))
        << "dbus-daemon does not start";
}

PrivateBus::~PrivateBus() {
    for (const QString& name : m_connections) {
        QDBusConnection::disconnectFromBus(name);
    }
    if (m_daemon > 0) {
        kill(m_daemon, SIGKILL);
        waitpid(m_daemon, nullptr, 0);
    }
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
