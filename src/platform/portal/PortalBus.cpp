#include "platform/portal/PortalBus.h"

#include "platform/portal/PortalReceiver.h"

#include <QDBusArgument>
#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QRandomGenerator>

#include <utility>

namespace tavi {

namespace {

const QString kService = QStringLiteral("org.freedesktop.portal.Desktop");
const QString kPath = QStringLiteral("/org/freedesktop/portal/desktop");
const QString kScreenCast = QStringLiteral("org.freedesktop.portal.ScreenCast");

/// Longer than a portal takes to be started, in milliseconds.
constexpr int kPatience = 10'000;

PortalError errorOf(const QDBusMessage& reply) {
    static const QStringList kNobody{QStringLiteral("org.freedesktop.DBus.Error.ServiceUnknown"),
                                     QStringLiteral("org.freedesktop.DBus.Error.NoReply"),
                                     QStringLiteral("org.freedesktop.DBus.Error.Disconnected"),
                                     QStringLiteral("org.freedesktop.DBus.Error.UnknownInterface"),
                                     QStringLiteral("org.freedesktop.DBus.Error.NoServer")};
    const bool isReached = !kNobody.contains(reply.errorName()) &&
                           !reply.errorName().contains(QStringLiteral(".Spawn."));
    return {isReached ? PortalError::Kind::failed : PortalError::Kind::unreachable,
            reply.errorMessage().toStdString()};
}

QDBusMessage methodCall(const QString& path, const QString& interface, const QString& method,
                        const QVariantList& arguments) {
    auto message = QDBusMessage::createMethodCall(kService, path, interface, method);
    message.setArguments(arguments);
    return message;
}

} // namespace

PortalBus::PortalBus()
    : m_name(QStringLiteral("tavlin-portal-%1").arg(QRandomGenerator::global()->generate64())),
      m_bus(QDBusConnection::connectToBus(QDBusConnection::SessionBus, m_name)),
      m_receiver(std::make_unique<Receiver>()) {
    m_thread.setObjectName(QStringLiteral("portal"));
    m_receiver->listen(m_bus);
    m_receiver->moveToThread(&m_thread);
    m_thread.start();
}

PortalBus::~PortalBus() {
    m_thread.quit();
    m_thread.wait();
    m_receiver.reset();
    QDBusConnection::disconnectFromBus(m_name);
}

Result<QVariantMap, PortalError> PortalBus::properties(const QString& interface) {
    const QDBusMessage reply =
        m_bus.call(methodCall(kPath, QStringLiteral("org.freedesktop.DBus.Properties"),
                              QStringLiteral("GetAll"), {interface}),
                   QDBus::Block, kPatience);
    if (reply.type() != QDBusMessage::ReplyMessage || reply.arguments().isEmpty()) {
        return fail(
            PortalError{PortalError::Kind::unreachable, reply.errorMessage().toStdString()});
    }
    return qdbus_cast<QVariantMap>(reply.arguments().first());
}

Result<QVariantList, PortalError> PortalBus::call(const QString& method,
                                                  const QVariantList& arguments) {
    const QDBusMessage reply =
        m_bus.call(methodCall(kPath, kScreenCast, method, arguments), QDBus::Block, kPatience);
    if (reply.type() != QDBusMessage::ReplyMessage) {
        return fail(errorOf(reply));
    }
    return reply.arguments();
}

Result<QVariantMap, PortalError> PortalBus::request(const QString& method, QVariantList arguments,
                                                    QVariantMap options,
                                                    const std::stop_token& stop) {
    options[QStringLiteral("handle_token")] = newToken();
    arguments.push_back(options);
    const int departures = m_receiver->departures();
    const auto reply = call(method, arguments);
    if (!reply) {
        return fail(reply.error());
    }
    const QString path =
        reply->isEmpty() ? QString() : reply->first().value<QDBusObjectPath>().path();
    const auto response = m_receiver->waitFor(path, departures, stop);
    if (!response && stop.stop_requested()) {
        m_bus.send(methodCall(path, QStringLiteral("org.freedesktop.portal.Request"),
                              QStringLiteral("Close"), {}));
        return fail(PortalError{PortalError::Kind::declined, ""});
    }
    if (!response) {
        return fail(PortalError{PortalError::Kind::failed, "the portal ended"});
    }
    if (response->code == 0) {
        return response->results;
    }
    return fail(PortalError{
        response->code == 1 ? PortalError::Kind::declined : PortalError::Kind::failed, ""});
}

void PortalBus::closeSession(const QString& handle) {
    m_bus.send(methodCall(handle, QStringLiteral("org.freedesktop.portal.Session"),
                          QStringLiteral("Close"), {}));
}

void PortalBus::watchSession(const QString& handle, std::function<void()> ended) {
    m_receiver->watchSession(handle, std::move(ended));
}

QString PortalBus::newToken() {
    const std::lock_guard lock(m_tokenMutex);
    return QStringLiteral("tavlin%1_%2")
        .arg(QRandomGenerator::global()->generate())
        .arg(++m_tokens);
}

} // namespace tavi
