#include "platform/portal/ScreenCastSession.h"

#include <QDBusArgument>
#include <QDBusObjectPath>
#include <QDBusUnixFileDescriptor>

#include <fcntl.h>
#include <utility>

namespace tavi {

namespace {

/// Ask no more once its user revoked it.
constexpr uint kUntilRevoked = 2;

QString textOf(const QVariant& value) {
    return value.canConvert<QDBusObjectPath>() ? value.value<QDBusObjectPath>().path()
                                               : value.toString();
}

struct Stream {
    uint node = 0;
    QVariantMap facts;
};

/// The first stream of a(ua{sv}); absent when there is none.
std::optional<Stream> firstStream(const QVariant& streams) {
    if (!streams.canConvert<QDBusArgument>()) {
        return std::nullopt;
    }
    const auto list = streams.value<QDBusArgument>();
    if (list.currentType() != QDBusArgument::ArrayType) {
        return std::nullopt;
    }
    std::optional<Stream> stream;
    list.beginArray();
    if (!list.atEnd()) {
        stream.emplace();
        list.beginStructure();
        list >> stream->node >> stream->facts;
        list.endStructure();
    }
    list.endArray(); // What is begun and not ended, Qt never frees.
    return stream;
}

/// Two numbers, (ii).
std::optional<std::pair<int, int>> pairIn(const QVariantMap& facts, const QString& key) {
    const QVariant value = facts.value(key);
    if (!value.canConvert<QDBusArgument>()) {
        return std::nullopt;
    }
    const auto argument = value.value<QDBusArgument>();
    if (argument.currentSignature() != QStringLiteral("(ii)")) {
        return std::nullopt;
    }
    std::pair<int, int> numbers;
    argument.beginStructure();
    argument >> numbers.first >> numbers.second;
    argument.endStructure();
    return numbers;
}

ScreenCastSession::Place placeIn(const QVariantMap& facts) {
    ScreenCastSession::Place place;
    if (const auto position = pairIn(facts, QStringLiteral("position"))) {
        place.position = {static_cast<double>(position->first),
                          static_cast<double>(position->second)};
    }
    if (const auto size = pairIn(facts, QStringLiteral("size"))) {
        place.size = {static_cast<double>(size->first), static_cast<double>(size->second)};
    }
    return place;
}

} // namespace

Result<ScreenCastFacts, PortalError> readScreenCastFacts(PortalBus& bus) {
    const auto all = bus.properties(QStringLiteral("org.freedesktop.portal.ScreenCast"));
    if (!all) {
        return fail(all.error());
    }
    const uint version = all->value(QStringLiteral("version")).toUInt();
    if (version == 0) {
        return fail(PortalError{PortalError::Kind::unreachable, "no ScreenCast interface"});
    }
    ScreenCastFacts facts;
    facts.version = version;
    facts.sourceTypes =
        all->value(QStringLiteral("AvailableSourceTypes"), facts.sourceTypes).toUInt();
    facts.cursorModes = all->value(QStringLiteral("AvailableCursorModes"), 0).toUInt();
    return facts;
}

Result<std::unique_ptr<ScreenCastSession>, PortalError>
ScreenCastSession::open(PortalBus& bus, const ScreenCastFacts& facts,
                        const ScreenCastRequest& request, const std::stop_token& stop) {
    std::unique_ptr<ScreenCastSession> session(new ScreenCastSession(bus));
    auto step = session->create(stop);
    if (step) {
        step = session->selectSources(facts, request, stop);
    }
    if (step) {
        step = session->start(stop);
    }
    if (!step) {
        return fail(step.error());
    }
    return session;
}

ScreenCastSession::~ScreenCastSession() {
    if (!m_handle.isEmpty()) {
        m_bus.watchSession(m_handle, nullptr);
        m_bus.closeSession(m_handle);
    }
}

Result<void, PortalError> ScreenCastSession::create(const std::stop_token& stop) {
    const auto created =
        m_bus.request(QStringLiteral("CreateSession"), {},
                      {{QStringLiteral("session_handle_token"), m_bus.newToken()}}, stop);
    if (!created) {
        return fail(created.error());
    }
    m_handle = textOf(created->value(QStringLiteral("session_handle")));
    if (m_handle.isEmpty()) {
        return fail(PortalError{PortalError::Kind::failed, "the portal named no session"});
    }
    return {};
}

Result<void, PortalError> ScreenCastSession::selectSources(const ScreenCastFacts& facts,
                                                           const ScreenCastRequest& request,
                                                           const std::stop_token& stop) {
    QVariantMap options{{QStringLiteral("types"), static_cast<uint>(request.type)},
                        {QStringLiteral("multiple"), false}};
    if (facts.version >= ScreenCastFacts::kCursorModes && facts.cursorModes != 0) {
        options[QStringLiteral("cursor_mode")] = static_cast<uint>(bitOf(facts.cursorMode()));
    }
    if (facts.canRestore() && request.isToBeRemembered) {
        options[QStringLiteral("persist_mode")] = kUntilRevoked;
        if (request.restoreToken) {
            options[QStringLiteral("restore_token")] =
                QString::fromStdString(*request.restoreToken);
        }
    }
    const auto selected =
        m_bus.request(QStringLiteral("SelectSources"),
                      {QVariant::fromValue(QDBusObjectPath(m_handle))}, std::move(options), stop);
    if (!selected) {
        return fail(selected.error());
    }
    return {};
}

Result<void, PortalError> ScreenCastSession::start(const std::stop_token& stop) {
    const auto started =
        m_bus.request(QStringLiteral("Start"),
                      {QVariant::fromValue(QDBusObjectPath(m_handle)), QString()}, {}, stop);
    if (!started) {
        return fail(started.error());
    }
    const auto stream = firstStream(started->value(QStringLiteral("streams")));
    if (!stream) {
        return fail(PortalError{PortalError::Kind::failed, "the portal gave no stream"});
    }
    m_node = stream->node;
    m_place = placeIn(stream->facts);
    const std::string token =
        started->value(QStringLiteral("restore_token")).toString().toStdString();
    if (!token.empty()) {
        m_restoreToken = token;
    }
    return {};
}

Result<int, PortalError> ScreenCastSession::openPipeWireRemote() {
    const auto reply = m_bus.call(QStringLiteral("OpenPipeWireRemote"),
                                  {QVariant::fromValue(QDBusObjectPath(m_handle)), QVariantMap()});
    if (!reply) {
        return fail(reply.error());
    }
    const auto descriptor = reply->isEmpty() ? QDBusUnixFileDescriptor()
                                             : reply->first().value<QDBusUnixFileDescriptor>();
    const int own =
        descriptor.isValid() ? fcntl(descriptor.fileDescriptor(), F_DUPFD_CLOEXEC, 3) : -1;
    if (own < 0) {
        return fail(
            PortalError{PortalError::Kind::failed, "the portal opened no media connection"});
    }
    return own;
}

void ScreenCastSession::whenClosed(std::function<void()> ended) {
    m_bus.watchSession(m_handle, std::move(ended));
}

} // namespace tavi
