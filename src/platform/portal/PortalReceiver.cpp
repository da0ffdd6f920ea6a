#include "platform/portal/PortalReceiver.h"

#include <QDBusArgument>
#include <QDBusServiceWatcher>

namespace tavi {

namespace {

const QString kService = QStringLiteral("org.freedesktop.portal.Desktop");

} // namespace

/// Of every request: a portal may give one another path than the program expects.
void PortalBus::Receiver::listen(QDBusConnection bus) {
    bus.connect(kService, QString(), QStringLiteral("org.freedesktop.portal.Request"),
                QStringLiteral("Response"), this, SLOT(responded(QDBusMessage)));
    bus.connect(kService, QString(), QStringLiteral("org.freedesktop.portal.Session"),
                QStringLiteral("Closed"), this, SLOT(closed(QDBusMessage)));
    auto* watcher =
        new QDBusServiceWatcher(kService, bus, QDBusServiceWatcher::WatchForUnregistration, this);
    connect(watcher, &QDBusServiceWatcher::serviceUnregistered, this, &Receiver::portalGone);
}

void PortalBus::Receiver::responded(const QDBusMessage& message) {
    const QVariantList arguments = message.arguments();
    if (arguments.size() < 2) {
        return;
    }
    {
        const std::lock_guard lock(m_mutex);
        m_responses[message.path()] = {arguments[0].toUInt(),
                                       qdbus_cast<QVariantMap>(arguments[1])};
    }
    m_changed.notify_all();
}

void PortalBus::Receiver::closed(const QDBusMessage& message) {
    const std::lock_guard watching(m_watchMutex);
    {
        const std::lock_guard lock(m_mutex);
        m_closedSessions.insert(message.path());
    }
    if (const auto watcher = m_watchers.find(message.path()); watcher != m_watchers.end()) {
        watcher->second();
    }
}

void PortalBus::Receiver::portalGone() {
    {
        const std::lock_guard lock(m_mutex);
        ++m_departures;
    }
    m_changed.notify_all();
}

int PortalBus::Receiver::departures() {
    const std::lock_guard lock(m_mutex);
    return m_departures;
}

std::optional<PortalBus::Receiver::Response>
PortalBus::Receiver::waitFor(const QString& request, int departures, const std::stop_token& stop) {
    std::unique_lock lock(m_mutex);
    m_changed.wait(lock, stop,
                   [&] { return m_responses.count(request) != 0 || m_departures != departures; });
    const auto found = m_responses.find(request);
    if (found == m_responses.end()) {
        return std::nullopt;
    }
    Response response = std::move(found->second);
    m_responses.erase(found);
    return response;
}

void PortalBus::Receiver::watchSession(const QString& handle, std::function<void()> ended) {
    const std::lock_guard watching(m_watchMutex);
    if (!ended) {
        m_watchers.erase(handle);
        return;
    }
    bool isClosed = false;
    {
        const std::lock_guard lock(m_mutex);
        isClosed = m_closedSessions.count(handle) != 0;
    }
    if (isClosed) {
        ended();
    } else {
        m_watchers[handle] = std::move(ended);
    }
}

} // namespace tavi
