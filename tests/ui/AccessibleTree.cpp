#include "AccessibleTree.h"

#include "support/TemporaryFolder.h"

#include <QDBusArgument>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusReply>
#include <QDBusVariant>
#include <QTest>
#include <gtest/gtest.h>

namespace tavi::test {

namespace {

constexpr auto kAccessible = "org.a11y.atspi.Accessible";
constexpr auto kRoot = "/org/a11y/atspi/accessible/root";
constexpr int kPatience = 60'000; // milliseconds

// Numbers of the protocol.
constexpr uint kScreenCoordinates = 0; // Qt 6.4 gives wrong sizes in those of a window
constexpr int kStateChecked = 4;
constexpr int kStateFocused = 12;
constexpr int kStateShowing = 25;

bool has(quint64 states, int state) {
    return (states >> state & 1) != 0;
}

/// A bus that starts nothing by itself: no portal of the machine answers in its user's stead.
std::string configurationOf(const QString& address) {
    return "<busconfig><type>session</type><listen>" + address.toStdString() +
           R"(</listen><policy context="default"><allow send_destination="*" eavesdrop="true"/>)"
           R"(<allow eavesdrop="true"/><allow own="*"/></policy></busconfig>)";
}

} // namespace

bool AccessibleItem::isChecked() const {
    return has(states, kStateChecked);
}

bool AccessibleItem::isFocused() const {
    return has(states, kStateFocused);
}

AccessibleTree::AccessibleTree(const QString& folder)
    : m_address(QStringLiteral("unix:path=%1/bus").arg(folder)) {
    const QString configuration = folder + QStringLiteral("/bus.conf");
    writeFile(configuration.toStdString(), configurationOf(m_address));
    m_daemon.start(QStringLiteral("dbus-daemon"),
                   {QStringLiteral("--nofork"), QStringLiteral("--nopidfile"),
                    QStringLiteral("--print-address"),
                    QStringLiteral("--config-file=") + configuration});
    EXPECT_TRUE(m_daemon.waitForReadyRead(kPatience)) << "no bus";
    m_bus = QDBusConnection::connectToBus(m_address, m_address);
    EXPECT_TRUE(m_bus.isConnected());
    m_service = std::make_unique<FakeDesktopService>(
        m_bus, QStringLiteral("org.a11y.Bus"), QStringLiteral("/org/a11y/bus"), QString(),
        [this](const QDBusMessage& message) {
            return message.member() == QLatin1String("GetAddress")
                       ? QVariantList{m_address}
                       : QVariantList{QVariant::fromValue(QDBusVariant(true))};
        });
}

AccessibleTree::~AccessibleTree() {
    m_service.reset();
    QDBusConnection::disconnectFromBus(m_bus.name());
    m_daemon.terminate();
    m_daemon.waitForFinished(kPatience);
}

std::optional<AccessibleTree::Path> AccessibleTree::root() const {
    const QStringList names = m_bus.interface()->registeredServiceNames();
    for (const QString& name : names) {
        const Path path{name, QLatin1String(kRoot)};
        if (name.startsWith(u':') && name != m_bus.baseService() && !childrenOf(path).empty()) {
            return path;
        }
    }
    return std::nullopt;
}

std::optional<AccessibleItem> AccessibleTree::find(const std::function<bool(const QString&)>& suits,
                                                   const QString& role, int number) const {
    const auto path = root();
    Search search{suits, role, number, {}};
    for (const Path& window : path ? childrenOf(*path) : std::vector<Path>()) {
        search.origin = areaOf(window).topLeft();
        if (auto found = findBelow(window, search)) {
            return found;
        }
    }
    return std::nullopt;
}

std::optional<AccessibleItem> AccessibleTree::findBelow(const Path& path, Search& search) const {
    const quint64 states = statesOf(path);
    if (!has(states, kStateShowing)) {
        return std::nullopt;
    }
    if (const QString name = nameOf(path); search.suits(name)) {
        const QString role = call(path, kAccessible, "GetRoleName").value(0).toString();
        if ((search.role.isEmpty() || search.role == role) && search.number-- == 0) {
            return AccessibleItem{name, role, areaOf(path).translated(-search.origin), states};
        }
    }
    for (const Path& child : childrenOf(path)) {
        if (auto found = findBelow(child, search)) {
            return found;
        }
    }
    return std::nullopt;
}

QString AccessibleTree::nameOf(const Path& path) const {
    const auto name = call(path, "org.freedesktop.DBus.Properties", "Get",
                           {QLatin1String(kAccessible), QStringLiteral("Name")});
    return name.value(0).value<QDBusVariant>().variant().toString();
}

quint64 AccessibleTree::statesOf(const Path& path) const {
    QList<uint> words;
    const auto states = call(path, kAccessible, "GetState");
    if (!states.isEmpty()) {
        states[0].value<QDBusArgument>() >> words;
    }
    return words.value(0) | quint64(words.value(1)) << 32;
}

QRect AccessibleTree::areaOf(const Path& path) const {
    QRect area;
    const auto answer = call(path, "org.a11y.atspi.Component", "GetExtents", {kScreenCoordinates});
    if (!answer.isEmpty()) {
        answer[0].value<QDBusArgument>() >> area;
    }
    return area;
}

std::vector<AccessibleTree::Path> AccessibleTree::childrenOf(const Path& path) const {
    std::vector<Path> children;
    const QVariantList answer = call(path, kAccessible, "GetChildren");
    if (answer.isEmpty()) {
        return children;
    }
    const auto list = answer[0].value<QDBusArgument>();
    for (list.beginArray(); !list.atEnd();) {
        QString program;
        QDBusObjectPath object;
        list.beginStructure();
        list >> program >> object;
        list.endStructure();
        children.emplace_back(program, object.path());
    }
    list.endArray();
    return children;
}

QVariantList AccessibleTree::call(const Path& path, const char* interface, const char* method,
                                  const QVariantList& arguments) const {
    auto message = QDBusMessage::createMethodCall(path.first, path.second, QLatin1String(interface),
                                                  QLatin1String(method));
    message.setArguments(arguments);
    const QDBusMessage answer = m_bus.call(message, QDBus::Block, kPatience);
    return answer.type() == QDBusMessage::ReplyMessage ? answer.arguments() : QVariantList();
}

} // namespace tavi::test
