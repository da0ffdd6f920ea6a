#include "platform/portal/GnomeDesktop.h"

#include "platform/pipewire/PipeWireGraph.h"

#include <QDBusObjectPath>
#include <QDBusVariant>
#include <fmt/format.h>
#include <gtest/gtest.h>

#include <chrono>
#include <set>
#include <thread>

namespace tavi::test {

namespace {

constexpr const char* kDisplay = "wayland-9";
const QString kConnection = QStringLiteral("hand-of-the-test");
const QString kRemote = QStringLiteral("org.gnome.Mutter.RemoteDesktop");
const QString kCast = QStringLiteral("org.gnome.Mutter.ScreenCast");
constexpr int kLeftButton = 272; // as the kernel numbers it

void pause(int milliseconds) {
    std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds));
}

QString pathIn(const QVariantList& reply) {
    return reply.value(0).value<QDBusObjectPath>().path();
}

/// The nodes of PipeWire that pictures come from.
std::set<std::uint32_t> videoNodes() {
    struct Nobody final : PipeWireGraph::Observer {
    } nobody;
    PipeWireGraph graph("nodes", nobody);
    std::set<std::uint32_t> found;
    if (graph.connect()) {
        const PipeWireGraph::Lock lock(graph);
        for (const auto& [id, node] : graph.nodes()) {
            if (node.mediaClass == "Stream/Output/Video") {
                found.insert(id);
            }
        }
    }
    return found;
}

} // namespace

GnomeDesktop::GnomeDesktop(Portal portal)
    : PrivateDesktop("GNOME", kDisplay),
      m_hand(QDBusConnection::connectToBus(QDBusConnection::SessionBus, kConnection)) {
    m_compositor = launch({"mutter", "--headless", "--no-x11", "--wayland-display", kDisplay,
                           "--virtual-monitor", fmt::format("{}x{}@60", kWidth, kHeight)},
                          {{"WAYLAND_DISPLAY", ""}});
    EXPECT_TRUE(waitForService(kRemote)) << "mutter does not start: " << log("mutter");
    EXPECT_TRUE(waitForService(kCast)) << "mutter does not start: " << log("mutter");
    // The programs' own runtime folder may be another.
    setenv("WAYLAND_DISPLAY", (m_folder / "run" / kDisplay).c_str(), 1);
    if (portal == Portal::ofGnome) {
        startPortal();
    }
    takeTheMouse();
}

void GnomeDesktop::startPortal() {
    launch({"/usr/libexec/xdg-permission-store"});
    launch({"/usr/libexec/xdg-desktop-portal-gnome"});
    EXPECT_TRUE(waitForService(QStringLiteral("org.freedesktop.impl.portal.desktop.gnome")))
        << "GNOME's portal does not start: " << log("xdg-desktop-portal-gnome");
    launch({"/usr/libexec/xdg-desktop-portal"});
    EXPECT_TRUE(waitForPortal()) << "the portal does not start: " << log("xdg-desktop-portal");
}

void GnomeDesktop::openTerminal(int perSecond) {
    launchTerminal({"--maximized"}, perSecond);
}

void GnomeDesktop::openTerminal(int width, int height) {
    launchTerminal({fmt::format("--window-size-pixels={}x{}", width, height)}, 10);
}

void GnomeDesktop::launchTerminal(const std::vector<std::string>& options, int perSecond) {
    std::vector<std::string> command{"foot", "-o", "csd.preferred=none", "-o",
                                     fmt::format("colors.background={:06x}", kColour)};
    command.insert(command.end(), options.begin(), options.end());
    // Waits on a pipe that nobody writes to: a program for each line would cost more.
    const std::string script = fmt::format(
        "exec 3<> <(:); while :; do echo $SRANDOM; read -rt {:.3f} -u 3; done", 1.0 / perSecond);
    command.insert(command.end(), {"bash", "-c", script});
    m_terminal = launch(command);
}

void GnomeDesktop::closeTerminal() {
    end(m_terminal);
}

GnomeDesktop::~GnomeDesktop() {
    QDBusConnection::disconnectFromBus(kConnection);
}

QVariantList GnomeDesktop::call(const QString& service, const QString& path,
                                const QString& interface, const QString& method,
                                const QVariantList& arguments) {
    const auto reply = ask(service, path, interface, method, arguments);
    EXPECT_EQ(reply.type(), QDBusMessage::ReplyMessage)
        << method.toStdString() << ": " << reply.errorMessage().toStdString();
    return reply.arguments();
}

QDBusMessage GnomeDesktop::ask(const QString& service, const QString& path,
                               const QString& interface, const QString& method,
                               const QVariantList& arguments) const {
    auto message = QDBusMessage::createMethodCall(service, path, interface, method);
    message.setArguments(arguments);
    return m_hand.call(message);
}

void GnomeDesktop::takeTheMouse() {
    const QString session = QStringLiteral(".Session");
    m_session = pathIn(call(kRemote, QStringLiteral("/org/gnome/Mutter/RemoteDesktop"), kRemote,
                            QStringLiteral("CreateSession")));
    const QVariant id =
        call(kRemote, m_session, QStringLiteral("org.freedesktop.DBus.Properties"),
             QStringLiteral("Get"), {kRemote + session, QStringLiteral("SessionId")})
            .value(0)
            .value<QDBusVariant>()
            .variant();
    const QVariantMap options{{QStringLiteral("remote-desktop-session-id"), id}};
    const QString cast = pathIn(call(kCast, QStringLiteral("/org/gnome/Mutter/ScreenCast"), kCast,
                                     QStringLiteral("CreateSession"), {options}));
    m_stream = pathIn(call(kCast, cast, kCast + session, QStringLiteral("RecordMonitor"),
                           {QStringLiteral("Meta-0"), QVariantMap()}));
    call(kRemote, m_session, kRemote + session, QStringLiteral("Start"));
}

std::uint32_t GnomeDesktop::castWindow() {
    const QString session = QStringLiteral(".Session");
    const auto before = videoNodes();
    m_cast = pathIn(call(kCast, QStringLiteral("/org/gnome/Mutter/ScreenCast"), kCast,
                         QStringLiteral("CreateSession"), {QVariantMap()}));
    constexpr uint kMetadata = 2;
    const QVariantMap options{{QStringLiteral("cursor-mode"), kMetadata}};
    EXPECT_TRUE(waitFor(
        [&] {
            return ask(kCast, m_cast, kCast + session, QStringLiteral("RecordWindow"), {options})
                       .type() == QDBusMessage::ReplyMessage;
        },
        60))
        << "no window gets the focus: " << log("foot");
    call(kCast, m_cast, kCast + session, QStringLiteral("Start"));
    std::uint32_t node = 0;
    EXPECT_TRUE(waitFor(
        [&] {
            for (const std::uint32_t id : videoNodes()) {
                node = before.count(id) == 0 ? id : node;
            }
            return node != 0;
        },
        60))
        << log("mutter");
    return node;
}

void GnomeDesktop::stopCast() {
    call(kCast, m_cast, kCast + QStringLiteral(".Session"), QStringLiteral("Stop"));
}

void GnomeDesktop::movePointer(double x, double y) {
    call(kRemote, m_session, kRemote + QStringLiteral(".Session"),
         QStringLiteral("NotifyPointerMotionAbsolute"), {m_stream, x, y});
}

void GnomeDesktop::click(double x, double y) {
    movePointer(x, y);
    pause(100);
    for (const bool isDown : {true, false}) {
        call(kRemote, m_session, kRemote + QStringLiteral(".Session"),
             QStringLiteral("NotifyPointerButton"), {kLeftButton, isDown});
        pause(50);
    }
}

/// The dialog stands in the middle: its first row, then its button "Share".
void GnomeDesktop::answerDialog() {
    click(kWidth / 2.0, kHeight / 2.0 + 26);
    pause(300);
    click(kWidth / 2.0 + 207, kHeight / 2.0 - 127);
}

void GnomeDesktop::endSession() {
    end(m_compositor);
}

std::filesystem::path GnomeDesktop::tokenFile() const {
    return m_folder / "home/.local/state/tavlin/screencast-tokens";
}

} // namespace tavi::test
