#include "platform/portal/DesktopWakeLocks.h"

#include "support/PrivateBus.h"

#include <QDBusArgument>
#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QDBusUnixFileDescriptor>
#include <gtest/gtest.h>

#include <array>
#include <fcntl.h>
#include <optional>
#include <unistd.h>

namespace tavi {
namespace {

using test::FakeDesktopService;
using test::waitPatiently;

const QString kRequestInterface = "org.freedesktop.portal.Request";

/// Desktops that keep themselves awake in one way or another, on a bus that is both the session's
/// and the system's.
class DesktopWakeLocksTest : public testing::Test {
protected:
    /// A portal; it answers each request with `response`.
    void addPortal(uint response) {
        m_portal.emplace(
            m_desktop, "org.freedesktop.portal.Desktop", "/org/freedesktop/portal/desktop",
            R"(<interface name="org.freedesktop.portal.Inhibit"/>)",
            [this, response](const QDBusMessage& call) {
                if (call.member() != "Inhibit") {
                    return QVariantList{};
                }
                const QString path = requestOf(call);
                auto answer = QDBusMessage::createSignal(path, kRequestInterface, "Response");
                answer << response << QVariantMap();
                m_desktop.send(answer);
                return QVariantList{QVariant::fromValue(QDBusObjectPath(path))};
            },
            QDBusConnection::SubPath);
    }
    void addScreenSaver() {
        m_screenSaver.emplace(
            m_desktop, "org.freedesktop.ScreenSaver", "/org/freedesktop/ScreenSaver",
            R"(<interface name="org.freedesktop.ScreenSaver"/>)", [](const QDBusMessage& call) {
                return call.member() == "Inhibit" ? QVariantList{41U} : QVariantList{};
            });
    }
    /// Gives away the end of a pipe; the other end tells when it is let go.
    void addLogind() {
        ASSERT_EQ(pipe2(m_ends.data(), O_CLOEXEC | O_NONBLOCK), 0);
        m_logind.emplace(m_desktop, "org.freedesktop.login1", "/org/freedesktop/login1",
                         R"(<interface name="org.freedesktop.login1.Manager"/>)",
                         [this](const QDBusMessage&) {
                             const QDBusUnixFileDescriptor end(m_ends[1]);
                             close(m_ends[1]);
                             return QVariantList{QVariant::fromValue(end)};
                         });
    }
    void TearDown() override {
        if (m_logind) {
            close(m_ends[0]);
        }
    }
    bool isPipeClosed() const {
        char byte = 0;
        return read(m_ends[0], &byte, 1) == 0;
    }

    static QString requestOf(const QDBusMessage& call) {
        const QVariantMap options = qdbus_cast<QVariantMap>(call.arguments()[2]);
        QString sender = call.service().mid(1);
        return "/org/freedesktop/portal/desktop/request/" + sender.replace('.', '_') + "/" +
               options.value("handle_token").toString();
    }

    std::unique_ptr<WakeLock> acquire() {
        auto lock =
            m_locks.acquire("A recording runs", [this](WakeService service) { m_told = service; });
        EXPECT_TRUE(waitPatiently([this] { return m_told.has_value(); }));
        return lock;
    }
    static bool isAnswered(const FakeDesktopService& service, const QString& method) {
        return waitPatiently(
            [&] { return service.lastCall(method).type() == QDBusMessage::MethodCallMessage; });
    }

    test::PrivateBus m_bus;
    QDBusConnection m_program = m_bus.connect();
    QDBusConnection m_desktop = m_bus.connect();
    DesktopWakeLocks m_locks{m_program, m_program};
    std::optional<WakeService> m_told;
    std::optional<FakeDesktopService> m_portal;
    std::optional<FakeDesktopService> m_screenSaver;
    std::optional<FakeDesktopService> m_logind;
    std::array<int, 2> m_ends{};
};

TEST_F(DesktopWakeLocksTest, thePortalKeepsIdlenessAndSleepAwayUntilTheLockGoes) {
    addPortal(0);
    addScreenSaver();
    auto lock = acquire();
    EXPECT_EQ(m_told, WakeService::portal);
    const QDBusMessage call = m_portal->lastCall("Inhibit");
    EXPECT_EQ(call.arguments()[1].toUInt(), 4U | 8U) << "suspend and idle";
    EXPECT_EQ(qdbus_cast<QVariantMap>(call.arguments()[2]).value("reason").toString(),
              "A recording runs");
    EXPECT_EQ(m_portal->lastCall("Close").type(), QDBusMessage::InvalidMessage);
    lock.reset();
    ASSERT_TRUE(isAnswered(*m_portal, "Close"));
    EXPECT_EQ(m_portal->lastCall("Close").path(), requestOf(call));
    EXPECT_EQ(m_screenSaver->lastCall("Inhibit").type(), QDBusMessage::InvalidMessage);
}

TEST_F(DesktopWakeLocksTest, withoutAPortalTheScreenSaverIsAsked) {
    addScreenSaver();
    auto lock = acquire();
    EXPECT_EQ(m_told, WakeService::screenSaver);
    const auto arguments = m_screenSaver->lastCall("Inhibit").arguments();
    EXPECT_EQ(arguments[0].toString(), "Tavlin");
    EXPECT_EQ(arguments[1].toString(), "A recording runs");
    lock.reset();
    ASSERT_TRUE(isAnswered(*m_screenSaver, "UnInhibit"));
    EXPECT_EQ(m_screenSaver->lastCall("UnInhibit").arguments()[0].toUInt(), 41U);
}

TEST_F(DesktopWakeLocksTest, aPortalThatCanNotIsLeftForTheScreenSaver) {
    addPortal(2);
    addScreenSaver();
    const auto lock = acquire();
    EXPECT_TRUE(waitPatiently([this] { return m_told == WakeService::screenSaver; }));
}

TEST_F(DesktopWakeLocksTest, aSystemWithoutADesktopStaysAwakeAtLeast) {
    addLogind();
    auto lock = acquire();
    EXPECT_EQ(m_told, WakeService::logind);
    const auto arguments = m_logind->lastCall("Inhibit").arguments();
    EXPECT_EQ(arguments[0].toString(), "sleep:idle");
    EXPECT_EQ(arguments[3].toString(), "block");
    EXPECT_FALSE(isPipeClosed());
    lock.reset();
    EXPECT_TRUE(waitPatiently([this] { return isPipeClosed(); }));
}

TEST_F(DesktopWakeLocksTest, whereNobodyListensNothingHappens) {
    const auto lock = acquire();
    EXPECT_EQ(m_told, WakeService::nobody);
}

TEST_F(DesktopWakeLocksTest, aLockThatGoesBeforeTheAnswerIsTakenBack) {
    addPortal(0);
    m_locks.acquire("A recording runs").reset();
    EXPECT_TRUE(isAnswered(*m_portal, "Close"));
}

} // namespace
} // namespace tavi
