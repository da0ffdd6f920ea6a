#pragma once

#include "base/Geometry.h"
#include "support/TemporaryFolder.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVirtualObject>
#include <QThread>

#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <sys/types.h>
#include <vector>

namespace tavi::test {

/// A private session bus, which the environment names while the object lives; at most one. All of
/// a process have one address, since the library asks the environment only once.
class TestBus {
public:
    TestBus();
    ~TestBus();
    TestBus(const TestBus&) = delete;
    TestBus& operator=(const TestBus&) = delete;

    static std::filesystem::path socket();

private:
    pid_t m_pid = 0;
};

/// How the user, or the portal, answers a question.
struct PortalAnswer {
    uint code = 0;          ///< 0: yes, 1: no, 2: it failed.
    std::string token = {}; ///< Given with a yes; empty: none.
    /// Of what is cast, in the compositor's units; without a size the portal doesn't tell.
    Rect place = {};
};

/// A ScreenCast portal on the test's bus, on a thread and a connection of its own.
class FakePortal : public QDBusVirtualObject {
public:
    /// When the answer to a call is signalled.
    enum class Timing { afterReply, beforeReply };

    struct Script {
        uint version = 4;
        uint sourceTypes = 3;
        uint cursorModes = 7;
        Timing timing = Timing::afterReply;
        /// The path of a Request isn't the one that its token stands for, as in old portals.
        bool hasOwnPaths = false;
        /// To Start; by default yes with the token "next".
        std::function<PortalAnswer(const QVariantMap& selected)> answer = {};
        /// SelectSources fails outright when it gets this token.
        std::string rejectedToken = {};
        /// No answer comes to Start: the dialog stays open.
        bool isDialogOpen = false;
        std::uint32_t node = 42;
        std::function<int()> openRemote = {}; ///< Null: the portal gives no connection.
    };

    explicit FakePortal(Script script);
    ~FakePortal() override;

    /// The options of each SelectSources so far.
    std::vector<QVariantMap> selections() const;
    std::vector<std::string> calls() const; ///< Names of methods.
    /// Sessions that a program closed.
    int closedSessions() const;
    int closedRequests() const;

    /// Ends the newest session, as the desktop's "stop" does.
    void endSession();
    /// The portal's process goes away.
    void leave();

    bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override;
    QString introspect(const QString&) const override { return {}; }

private:
    void handleCall(const QDBusMessage& message);
    void respond(const QDBusMessage& message, uint code, const QVariantMap& results);
    void properties(const QDBusMessage& message);
    void start(const QDBusMessage& message);
    void openRemote(const QDBusMessage& message);
    void emitResponse(const QDBusMessage& message, const QString& path, uint code,
                      const QVariantMap& results);

    Script m_script;
    QString m_name;
    QDBusConnection m_bus;
    QThread m_thread;
    mutable std::mutex m_mutex; ///< Guards what follows.
    std::vector<QVariantMap> m_selections;
    std::vector<std::string> m_calls;
    QString m_session;
    QString m_client;
    int m_sessions = 0;
    int m_requests = 0;
    int m_closedSessions = 0;
    int m_closedRequests = 0;
};

} // namespace tavi::test
