#pragma once

#include "platform/portal/PortalBus.h"

#include <QDBusMessage>
#include <QObject>

#include <set>

namespace tavi {

/// Keeps what a portal signals until somebody asks for it. Threads: signals arrive on the
/// object's own; everything else is called from any.
class PortalBus::Receiver : public QObject {
    Q_OBJECT

public:
    struct Response {
        uint code = 0; ///< 0: done, 1: the user said no, 2: it ended otherwise.
        QVariantMap results;
    };

    /// Connects to the portal's signals; on the thread where they are to arrive.
    void listen(QDBusConnection bus);

    /// How often the portal's process went away so far.
    int departures();

    /// Waits for the answer of a request that was made after so many departures; absent when a
    /// stop or the portal's end came first.
    std::optional<Response> waitFor(const QString& request, int departures,
                                    const std::stop_token& stop);

    void watchSession(const QString& handle, std::function<void()> ended);

private slots:
    void responded(const QDBusMessage& message);
    void closed(const QDBusMessage& message);
    void portalGone();

private:
    std::mutex m_mutex;
    std::condition_variable_any m_changed;
    std::map<QString, Response> m_responses; ///< By the request's path.
    std::set<QString> m_closedSessions;
    int m_departures = 0;

    std::recursive_mutex m_watchMutex; ///< Held while a watcher is called.
    std::map<QString, std::function<void()>> m_watchers;
};

} // namespace tavi
