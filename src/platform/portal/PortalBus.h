#pragma once

#include "base/Result.h"

#include <QDBusConnection>
#include <QString>
#include <QThread>
#include <QVariantList>
#include <QVariantMap>

#include <condition_variable>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <stop_token>
#include <string>

class QDBusMessage;
class QDBusServiceWatcher;

namespace tavi {

/// Why a portal did not do what it was asked for.
struct PortalError {
    enum class Kind {
        unreachable, ///< No portal answers.
        declined,    ///< Its user said no, or the question was taken back.
        failed,      ///< It could not.
    };

    Kind kind = Kind::failed;
    std::string detail; ///< The portal's own words; may be empty.
};

/// The desktop's portal service, over a connection to the session bus that is its own: what was
/// asked of the portal ends with the connection, also when the program is killed.
///
/// Threads: any. Signals are received on a thread of the object's own and kept, so that
/// an answer which comes before the call that asked for it has returned is not missed.
class PortalBus {
public:
    PortalBus();
    ~PortalBus();
    PortalBus(const PortalBus&) = delete;
    PortalBus& operator=(const PortalBus&) = delete;

    /// All properties of an interface of the portal, which is started where it isn't running.
    /// Blocks until it answers. Errors: unreachable.
    Result<QVariantMap, PortalError> properties(const QString& interface);

    /// Calls a method of the ScreenCast interface that answers at once.
    Result<QVariantList, PortalError> call(const QString& method, const QVariantList& arguments);

    /// Calls one that answers by a Request object: its last argument are the options, to which
    /// the handle's token is added. Blocks until there is an answer, for as long as the user
    /// thinks. A stop closes the request.
    Result<QVariantMap, PortalError> request(const QString& method, QVariantList arguments,
                                             QVariantMap options, const std::stop_token& stop);

    /// Ends a session.
    void closeSession(const QString& handle);

    /// Calls `ended`, on the bus's thread, when the portal closes the session; at once if it
    /// did. Null takes it away: it isn't called any more when this returns.
    void watchSession(const QString& handle, std::function<void()> ended);

    /// A name for a handle that was not used before.
    QString newToken();

private:
    class Receiver;

    QString m_name; ///< Of the connection, in this process.
    QDBusConnection m_bus;
    QThread m_thread;
    std::unique_ptr<Receiver> m_receiver; ///< Lives on the thread.
    std::mutex m_tokenMutex;
    unsigned m_tokens = 0; ///< By its mutex.
};

} // namespace tavi
