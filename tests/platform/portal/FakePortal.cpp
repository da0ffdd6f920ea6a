#include "platform/portal/FakePortal.h"

#include "platform/pipewire/PipeWireTestServer.h"

#include <QDBusArgument>
#include <QDBusMetaType>
#include <QDBusObjectPath>
#include <QDBusUnixFileDescriptor>
#include <QRandomGenerator>
#include <gtest/gtest.h>

#include <csignal>
#include <cstdlib>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

/// One stream of a portal: (ua{sv}).
struct Stream {
    uint node = 0;
    QVariantMap facts;
};

QDBusArgument& operator<<(QDBusArgument& to, const Stream& stream) {
    to.beginStructure();
    to << stream.node << stream.facts;
    to.endStructure();
    return to;
}

const QDBusArgument& operator>>(const QDBusArgument& from, Stream& stream) {
    from.beginStructure();
    from >> stream.node >> stream.facts;
    from.endStructure();
    return from;
}

/// (ii).
struct Pair {
    int first = 0;
    int second = 0;
};

QDBusArgument& operator<<(QDBusArgument& to, const Pair& pair) {
    to.beginStructure();
    to << pair.first << pair.second;
    to.endStructure();
    return to;
}

const QDBusArgument& operator>>(const QDBusArgument& from, Pair& pair) {
    from.beginStructure();
    from >> pair.first >> pair.second;
    from.endStructure();
    return from;
}

} // namespace

Q_DECLARE_METATYPE(Stream)
Q_DECLARE_METATYPE(Pair)

namespace tavi::test {

namespace {

const QString kService = QStringLiteral("org.freedesktop.portal.Desktop");
const QString kPath = QStringLiteral("/org/freedesktop/portal/desktop");
constexpr const char* kBus = "DBUS_SESSION_BUS_ADDRESS";

QVariantMap optionsOf(const QDBusMessage& message) {
    return qdbus_cast<QVariantMap>(message.arguments().last());
}

QVariantMap factsOf(const Rect& place) {
    if (place.width == 0) {
        return {};
    }
    const auto pair = [](double first, double second) {
        return QVariant::fromValue(Pair{static_cast<int>(first), static_cast<int>(second)});
    };
    return {{QStringLiteral("position"), pair(place.x, place.y)},
            {QStringLiteral("size"), pair(place.width, place.height)}};
}

QString clientPath(const QString& kind, QString client, const QString& token) {
    client.remove(0, 1).replace(u'.', u'_');
    return QStringLiteral("%1/%2/%3/%4").arg(kPath, kind, client, token);
}

} // namespace

/// A bus that starts no programs of its own accord.
TestBus::TestBus() {
    const std::string address = "unix:path=" + socket().string();
    setenv(kBus, address.c_str(), 1);
    const auto configuration = socket().parent_path() / "bus.conf";
    writeFile(configuration, "<busconfig><type>session</type><listen>" + address +
                                 "</listen><auth>EXTERNAL</auth><policy context=\"default\">"
                                 "<allow send_destination=\"*\" eavesdrop=\"true\"/>"
                                 "<allow eavesdrop=\"true\"/><allow own=\"*\"/>"
                                 "</policy></busconfig>");
    m_pid = fork();
    if (m_pid == 0) {
        prctl(PR_SET_PDEATHSIG, SIGKILL);
        const std::string argument = "--config-file=" + configuration.string();
        execlp("dbus-daemon", "dbus-daemon", argument.c_str(), "--nofork", "--nopidfile", nullptr);
        _exit(127);
    }
    const QString probe = QStringLiteral("probe-of-the-bus");
    EXPECT_TRUE(waitFor([&] {
        const auto bus = QDBusConnection::connectToBus(QString::fromStdString(address), probe);
        const bool isConnected = bus.isConnected();
        QDBusConnection::disconnectFromBus(probe);
        return isConnected;
    })) << "dbus-daemon does not start";
}

TestBus::~TestBus() {
    kill(m_pid, SIGKILL);
    waitpid(m_pid, nullptr, 0);
    std::filesystem::remove(socket());
}

std::filesystem::path TestBus::socket() {
    static const TemporaryFolder folder;
    return folder / "bus";
}

FakePortal::FakePortal(Script script)
    : m_script(std::move(script)),
      m_name(QStringLiteral("fake-portal-%1").arg(QRandomGenerator::global()->generate64())),
      m_bus(QDBusConnection::connectToBus(QDBusConnection::SessionBus, m_name)) {
    qDBusRegisterMetaType<Pair>();
    qDBusRegisterMetaType<Stream>();
    qDBusRegisterMetaType<QList<Stream>>();
    // The library's part of an object is made on the object's thread, or never freed.
    EXPECT_TRUE(m_bus.registerVirtualObject(kPath, this, QDBusConnection::SubPath));
    moveToThread(&m_thread);
    m_thread.start();
    EXPECT_TRUE(m_bus.registerService(kService)) << m_bus.lastError().message().toStdString();
}

FakePortal::~FakePortal() {
    leave();
    m_thread.quit();
    m_thread.wait();
}

void FakePortal::leave() {
    m_bus.unregisterService(kService);
    m_bus.unregisterObject(kPath);
    QDBusConnection::disconnectFromBus(m_name);
}

std::vector<QVariantMap> FakePortal::selections() const {
    const std::lock_guard lock(m_mutex);
    return m_selections;
}

std::vector<std::string> FakePortal::calls() const {
    const std::lock_guard lock(m_mutex);
    return m_calls;
}

int FakePortal::closedSessions() const {
    const std::lock_guard lock(m_mutex);
    return m_closedSessions;
}

int FakePortal::closedRequests() const {
    const std::lock_guard lock(m_mutex);
    return m_closedRequests;
}

void FakePortal::endSession() {
    const std::lock_guard lock(m_mutex);
    auto signal = QDBusMessage::createTargetedSignal(
        m_client, m_session, QStringLiteral("org.freedesktop.portal.Session"),
        QStringLiteral("Closed"));
    signal.setArguments({QVariantMap()});
    m_bus.send(signal);
}

bool FakePortal::handleMessage(const QDBusMessage& message, const QDBusConnection&) {
    const std::lock_guard lock(m_mutex);
    handleCall(message);
    return true;
}

void FakePortal::handleCall(const QDBusMessage& message) {
    const QString method = message.member();
    m_calls.push_back(method.toStdString());
    if (method == QStringLiteral("GetAll")) {
        properties(message);
    } else if (method == QStringLiteral("CreateSession")) {
        m_client = message.service();
        const QString token =
            optionsOf(message).value(QStringLiteral("session_handle_token")).toString();
        m_session = clientPath(QStringLiteral("session"), m_client, token);
        respond(message, 0, {{QStringLiteral("session_handle"), m_session}});
    } else if (method == QStringLiteral("SelectSources")) {
        const QVariantMap options = optionsOf(message);
        m_selections.push_back(options);
        const bool isRejected =
            !m_script.rejectedToken.empty() &&
            options.value(QStringLiteral("restore_token")).toString().toStdString() ==
                m_script.rejectedToken;
        respond(message, isRejected ? 2 : 0, {});
    } else if (method == QStringLiteral("Start")) {
        start(message);
    } else if (method == QStringLiteral("OpenPipeWireRemote")) {
        openRemote(message);
    } else if (method == QStringLiteral("Close")) {
        ++(message.path().contains(QStringLiteral("/session/")) ? m_closedSessions
                                                                : m_closedRequests);
        m_bus.send(message.createReply());
    }
}

void FakePortal::properties(const QDBusMessage& message) {
    QVariantMap all{{QStringLiteral("version"), m_script.version},
                    {QStringLiteral("AvailableSourceTypes"), m_script.sourceTypes}};
    if (m_script.version >= 2) {
        all[QStringLiteral("AvailableCursorModes")] = m_script.cursorModes;
    }
    m_bus.send(message.createReply(all));
}

void FakePortal::start(const QDBusMessage& message) {
    if (m_script.isDialogOpen) {
        const QString path =
            clientPath(QStringLiteral("request"), m_client,
                       optionsOf(message).value(QStringLiteral("handle_token")).toString());
        m_bus.send(message.createReply(QVariant::fromValue(QDBusObjectPath(path))));
        return;
    }
    const PortalAnswer answer =
        m_script.answer ? m_script.answer(m_selections.back()) : PortalAnswer{0, "next"};
    QVariantMap results;
    if (answer.code == 0) {
        results[QStringLiteral("streams")] =
            QVariant::fromValue(QList<Stream>{{m_script.node, factsOf(answer.place)}});
        if (!answer.token.empty()) {
            results[QStringLiteral("restore_token")] = QString::fromStdString(answer.token);
        }
    }
    respond(message, answer.code, results);
}

void FakePortal::respond(const QDBusMessage& message, uint code, const QVariantMap& results) {
    const QString token = m_script.hasOwnPaths
                              ? QStringLiteral("own%1").arg(++m_requests)
                              : optionsOf(message).value(QStringLiteral("handle_token")).toString();
    const QString path = clientPath(QStringLiteral("request"), m_client, token);
    if (m_script.timing == Timing::beforeReply) {
        emitResponse(message, path, code, results);
    }
    m_bus.send(message.createReply(QVariant::fromValue(QDBusObjectPath(path))));
    if (m_script.timing == Timing::afterReply) {
        emitResponse(message, path, code, results);
    }
}

void FakePortal::emitResponse(const QDBusMessage& message, const QString& path, uint code,
                              const QVariantMap& results) {
    auto signal = QDBusMessage::createTargetedSignal(
        message.service(), path, QStringLiteral("org.freedesktop.portal.Request"),
        QStringLiteral("Response"));
    signal.setArguments({code, results});
    m_bus.send(signal);
}

void FakePortal::openRemote(const QDBusMessage& message) {
    if (!m_script.openRemote) {
        m_bus.send(message.createErrorReply(QDBusError::AccessDenied, QStringLiteral("no stream")));
        return;
    }
    const int opened = m_script.openRemote();
    // A copy goes: what Qt closes the thread sanitizer takes for open.
    m_bus.send(message.createReply(QVariant::fromValue(QDBusUnixFileDescriptor(opened))));
    ::close(opened);
}

} // namespace tavi::test
