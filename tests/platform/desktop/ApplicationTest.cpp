#include "platform/desktop/DesktopSession.h"
#include "project/RecordingMetadataJson.h"

#include <QDBusMessage>
#include <QDBusVariant>
#include <gtest/gtest.h>

#include <algorithm>
#include <csignal>

namespace tavi {
namespace {

using test::DesktopSession;
using test::FakeDesktopService;
using test::waitPatiently;

/// The real application in a desktop of its own.
class Application : public testing::Test {
protected:
    void startTake() {
        session.startApplication();
        session.record();
    }
    /// Waits until the take is complete and the window is back.
    void expectTakeOpened() {
        EXPECT_TRUE(waitPatiently([this] { return session.isTakeSaved(); }));
        EXPECT_TRUE(waitPatiently([this] { return session.isWindowShown(); }));
        expectWholeTake();
    }
    void expectWholeTake() {
        ASSERT_EQ(session.takes().size(), 1u);
        const auto metadata =
            decodeRecordingMetadata(test::readFile(session.takes().front() / "metadata.json"));
        ASSERT_TRUE(metadata);
        EXPECT_EQ(metadata->screenWidth, 1200);
        EXPECT_EQ(metadata->screenHeight, 800);
    }

    DesktopSession session;
};

const QString kWatcher = "org.kde.StatusNotifierWatcher";

TEST_F(Application, aClickOnTheTraysItemEndsTheTakeAndOpensIt) {
    FakeDesktopService tray(session.bus(), kWatcher, "/StatusNotifierWatcher",
                            R"(<interface name="org.kde.StatusNotifierWatcher">
             <property name="IsStatusNotifierHostRegistered" type="b" access="read"/>
             <method name="RegisterStatusNotifierItem"><arg type="s" direction="in"/></method>
           </interface>)",
                            [](const QDBusMessage& call) {
                                return call.member() == "Get"
                                           ? QVariantList{QVariant::fromValue(QDBusVariant(true))}
                                           : QVariantList{};
                            });
    startTake();
    ASSERT_TRUE(waitPatiently([&] {
        return tray.lastCall("RegisterStatusNotifierItem").type() ==
               QDBusMessage::MethodCallMessage;
    }));
    const QString owner = tray.lastCall("RegisterStatusNotifierItem").service();
    auto activate = QDBusMessage::createMethodCall(owner, "/StatusNotifierItem",
                                                   "org.kde.StatusNotifierItem", "Activate");
    activate << 0 << 0;
    session.bus().send(activate);
    expectTakeOpened();
}

TEST_F(Application, withoutATrayANotificationEndsTheTake) {
    const QString name = "org.freedesktop.Notifications";
    const QString path = "/org/freedesktop/Notifications";
    constexpr uint kId = 7;
    FakeDesktopService notifications(
        session.bus(), name, path, R"(<interface name="org.freedesktop.Notifications"/>)",
        [](const QDBusMessage& call) {
            return call.member() == "Notify" ? QVariantList{kId} : QVariantList{};
        });
    startTake();
    ASSERT_TRUE(waitPatiently([&] {
        return notifications.lastCall("Notify").type() == QDBusMessage::MethodCallMessage;
    }));
    const QStringList actions = notifications.lastCall("Notify").arguments()[5].toStringList();
    ASSERT_FALSE(actions.isEmpty());
    auto invoked = QDBusMessage::createSignal(path, name, "ActionInvoked");
    invoked << kId << actions.first();
    session.bus().send(invoked);
    expectTakeOpened();
    EXPECT_TRUE(waitPatiently([&] {
        const auto close = notifications.lastCall("CloseNotification");
        return !close.arguments().isEmpty() && close.arguments()[0].toUInt() == kId;
    })) << "the notification goes with the take";
}

TEST_F(Application, tavisStopEndsTheTakeAndTheApplicationGoesOn) {
    startTake();
    EXPECT_EQ(session.run("tavi", {"stop"}), 0);
    EXPECT_TRUE(session.isTakeSaved());
    expectTakeOpened();
    EXPECT_EQ(session.application().state(), QProcess::Running);
    EXPECT_EQ(session.run("tavi", {"stop"}), 1) << "no take runs any more";
}

TEST_F(Application, aTakeKeepsTheDesktopAwake) {
    constexpr uint kCookie = 9;
    FakeDesktopService screenSaver(
        session.bus(), "org.freedesktop.ScreenSaver", "/org/freedesktop/ScreenSaver",
        R"(<interface name="org.freedesktop.ScreenSaver"/>)", [](const QDBusMessage& call) {
            return call.member() == "Inhibit" ? QVariantList{kCookie} : QVariantList{};
        });
    session.startApplication();
    EXPECT_EQ(screenSaver.lastCall("Inhibit").type(), QDBusMessage::InvalidMessage);
    session.record();
    ASSERT_TRUE(waitPatiently(
        [&] { return screenSaver.lastCall("Inhibit").type() == QDBusMessage::MethodCallMessage; }));
    EXPECT_EQ(screenSaver.lastCall("UnInhibit").type(), QDBusMessage::InvalidMessage);
    EXPECT_EQ(session.run("tavi", {"stop"}), 0);
    ASSERT_TRUE(waitPatiently([&] {
        const auto released = screenSaver.lastCall("UnInhibit");
        return !released.arguments().isEmpty() && released.arguments()[0].toUInt() == kCookie;
    }));
}

/// The screen is black but for the window.
TEST_F(Application, theWindowIsInNoPictureOfTheDisplay) {
    startTake();
    EXPECT_EQ(session.run("tavi", {"stop"}), 0);
    ASSERT_EQ(session.takes().size(), 1u);
    QProcess reader;
    reader.start("ffmpeg",
                 {"-v", "error", "-i",
                  QString::fromStdString((session.takes().front() / "video.mov").string()),
                  "-frames:v", "1", "-f", "rawvideo", "-pix_fmt", "gray", "-"});
    ASSERT_TRUE(reader.waitForFinished(60'000));
    const QByteArray first = reader.readAllStandardOutput();
    ASSERT_EQ(first.size(), 1200 * 800);
    constexpr int kBlackAtMost = 8; // the window's ground is lighter, and rounding less
    EXPECT_LT(
        std::count_if(first.begin(), first.end(),
                      [](char grey) { return static_cast<unsigned char>(grey) > kBlackAtMost; }),
        first.size() / 100);
}

TEST_F(Application, theEndOfTheSessionSavesTheTake) {
    startTake();
    session.application().terminate();
    ASSERT_TRUE(
        waitPatiently([this] { return session.application().state() == QProcess::NotRunning; }));
    EXPECT_EQ(session.application().exitStatus(), QProcess::NormalExit);
    EXPECT_EQ(session.application().exitCode(), 0);
    EXPECT_TRUE(session.isTakeSaved());
    expectWholeTake();
}

TEST_F(Application, aSecondStartShowsTheFirstAndGoes) {
    session.startApplication();
    ASSERT_EQ(session.run("tavlin"), 0);
    EXPECT_EQ(session.application().state(), QProcess::Running);
    EXPECT_EQ(session.run("tavlin", {"/no/such/folder"}), 2);
    EXPECT_EQ(session.run("tavlin", {"--version"}), 0);
}

} // namespace
} // namespace tavi
