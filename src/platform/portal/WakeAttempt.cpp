#include "platform/portal/WakeAttempt.h"

#include <QCoreApplication>
#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QUuid>

#include <utility>

namespace tavi {

namespace {

constexpr auto kProgram = "Tavlin";

const QString kPortal = QStringLiteral("org.freedesktop.portal.Desktop");
const QString kPortalPath = QStringLiteral("/org/freedesktop/portal/desktop");
const QString kRequest = QStringLiteral("org.freedesktop.portal.Request");
const QString kScreenSaver = QStringLiteral("org.freedesktop.ScreenSaver");
const QString kScreenSaverPath = QStringLiteral("/org/freedesktop/ScreenSaver");

QDBusMessage screenSaverCall(const char* method) {
    return QDBusMessage::createMethodCall(kScreenSaver, kScreenSaverPath, kScreenSaver,
                                          QLatin1String(method));
}

/// Where the portal will put a request's object, so that its answer can be waited for before
/// the call is made.
QString requestPath(const QDBusConnection& bus, const QString& token) {
    QString sender = bus.baseService().mid(1);
    sender.replace(u'.', u'_');
    return QStringLiteral("%1/request/%2/%3").arg(kPortalPath, sender, token);
}

} // namespace

WakeAttempt::WakeAttempt(QDBusConnection session, QDBusConnection system, QString reason,
                         DesktopWakeLocks::Told told)
    : QObject(QCoreApplication::instance()), // ends with it, where no loop runs any more to end it
      m_session(std::move(session)),
      m_system(std::move(system)),
      m_reason(std::move(reason)),
      m_told(std::move(told)) {}

void WakeAttempt::askPortal() {
    constexpr uint kSuspend = 4;
    constexpr uint kIdle = 8;
    const QString token = QStringLiteral("tavlin_") + QUuid::createUuid().toString(QUuid::Id128);
    m_request = requestPath(m_session, token);
    m_session.connect(kPortal, m_request, kRequest, QStringLiteral("Response"), this,
                      SLOT(portalResponded(uint, QVariantMap)));
    auto call = QDBusMessage::createMethodCall(kPortal, kPortalPath,
                                               QStringLiteral("org.freedesktop.portal.Inhibit"),
                                               QStringLiteral("Inhibit"));
    call << QString() << (kSuspend | kIdle)
         << QVariantMap{{QStringLiteral("handle_token"), token},
                        {QStringLiteral("reason"), m_reason}};
    send(m_session, call, [this](const QDBusMessage& answer) {
        if (answer.type() != QDBusMessage::ReplyMessage || m_isPortalUnable) {
            askScreenSaver();
        } else {
            have(WakeService::portal);
        }
    });
}

void WakeAttempt::release() {
    m_isReleased = true;
    m_told = nullptr;
    if (m_pending == 0) {
        letGo();
        deleteLater();
    }
}

/// A desktop may have no way to do what its portal offers.
void WakeAttempt::portalResponded(uint response, const QVariantMap&) {
    m_isPortalUnable = response != 0;
    if (m_isPortalUnable && m_service == WakeService::portal) {
        letGo();
        askScreenSaver();
    }
}

void WakeAttempt::askScreenSaver() {
    auto call = screenSaverCall("Inhibit");
    call << QLatin1String(kProgram) << m_reason;
    send(m_session, call, [this](const QDBusMessage& answer) {
        const QDBusPendingReply<uint> cookie = answer;
        if (!cookie.isValid()) {
            askLogind();
            return;
        }
        m_cookie = cookie.value();
        have(WakeService::screenSaver);
    });
}

void WakeAttempt::askLogind() {
    auto call = QDBusMessage::createMethodCall(
        QStringLiteral("org.freedesktop.login1"), QStringLiteral("/org/freedesktop/login1"),
        QStringLiteral("org.freedesktop.login1.Manager"), QStringLiteral("Inhibit"));
    call << QStringLiteral("sleep:idle") << QLatin1String(kProgram) << m_reason
         << QStringLiteral("block");
    send(m_system, call, [this](const QDBusMessage& answer) {
        const QDBusPendingReply<QDBusUnixFileDescriptor> held = answer;
        if (held.isValid()) {
            m_held = held.value();
        }
        have(held.isValid() ? WakeService::logind : WakeService::nobody);
    });
}

/// Calls `next` with the answer, unless the lock was released meanwhile.
void WakeAttempt::send(QDBusConnection& bus, const QDBusMessage& call,
                       std::function<void(const QDBusMessage&)> next) {
    ++m_pending;
    auto* watcher = new QDBusPendingCallWatcher(bus.asyncCall(call), this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this,
            [this, next = std::move(next)](QDBusPendingCallWatcher* answered) {
                --m_pending;
                answered->deleteLater();
                const QDBusMessage answer = answered->reply();
                const bool isRefused = answer.type() != QDBusMessage::ReplyMessage;
                if (!m_isReleased || !isRefused) {
                    next(answer);
                }
                if (m_isReleased && m_pending == 0) {
                    letGo();
                    deleteLater();
                }
            });
}

void WakeAttempt::have(WakeService service) {
    m_service = service;
    if (m_told) {
        m_told(service);
    }
}

void WakeAttempt::letGo() {
    if (m_service == WakeService::portal) {
        m_session.asyncCall(
            QDBusMessage::createMethodCall(kPortal, m_request, kRequest, QStringLiteral("Close")));
    } else if (m_service == WakeService::screenSaver) {
        auto call = screenSaverCall("UnInhibit");
        call << m_cookie;
        m_session.asyncCall(call);
    }
    m_held = {};
    m_service = WakeService::nobody;
}

} // namespace tavi
