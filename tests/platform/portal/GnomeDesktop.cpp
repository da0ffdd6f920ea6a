#include "platform/portal/GnomeDesktop.h"

#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QDBusVariant>
#include <fmt/format.h>
#include <gtest/gtest.h>

#include <chrono>
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

} // namespace

GnomeDesktop::GnomeDesktop()
    : PrivateDesktop("GNOME", kDisplay),
      m_hand(QDBusConnection::connectToBus(QDBusConnection::SessionBus, kConnection)) {
    m_compositor = launch({"mutter", "--headless", "--no-x11", "--wayland-display", kDisplay,
                           "--virtual-monitor", fmt::format("{}x{}@60", kWidth, kHeight)},
                          {{"WAYLAND_DISPLAY", ""}});
    EXPECT_TRUE(waitForService(kRemote)) << "mutter does not start: " << log("mutter");
    EXPECT_TRUE(waitForService(kCast)) << "mutter does not start: " << log("mutter");
    launch({"/usr/libexec/xdg-permission-store"});
    launch({"/usr/libexec/xdg-desktop-portal-gnome"});
    EXPECT_TRUE(waitForService(QStringLiteral("org.freedesktop.impl.portal.desktop.gnome")))
        << "GNOME's portal does not start: " << log("xdg-desktop-portal-gnome");
    launch({"/usr/libexec/xdg-desktop-portal"});
    EXPECT_TRUE(waitForPortal()) << "the portal does not start: " << log("xdg-desktop-portal");
    takeTheMouse();
}

void GnomeDesktop::openTerminal() {
    launch({"foot", "--maximized", "-o", "csd.preferred=none", "-o",
            fmt::format("colors.background={:06x}", kColour), "sh", "-c",
            "while :; do date +%N; sleep .1; done"});
}

GnomeDesktop::~GnomeDesktop() {
    QDBusConnection::disconnectFromBus(kConnection);
}

QVariantList GnomeDesktop::call(const QString& service, const QString& path,
                                const QString& interface, const QString& method,
                                const QVariantList& arguments) {
    auto message = QDBusMessage::createMethodCall(service, path, interface, method);
    message.setArguments(arguments);
    const auto reply = m_hand.call(message);
    EXPECT_EQ(reply.type(), QDBusMessage::ReplyMessage)
        << method.toStdString() << ": " << reply.errorMessage().toStdString();
    return reply.arguments();
}

void GnomeDesktop::takeTheMouse() {
    const auto pathIn = [](const QVariantList& reply) {
        return reply.value(0).value<QDBusObjectPath>().path();
    };
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
