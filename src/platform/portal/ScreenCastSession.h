#pragma once

#include "base/Geometry.h"
#include "base/Result.h"
#include "platform/portal/PortalBus.h"
#include "platform/portal/ScreenCastFacts.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <stop_token>
#include <string>

namespace tavi {

/// What a program asks of the portal.
struct ScreenCastRequest {
    ScreenCastFacts::SourceType type = ScreenCastFacts::monitor;
    /// Of an earlier session; absent: the user is asked.
    std::optional<std::string> restoreToken = {};
    /// Whether the answer is to be remembered, until its user takes it back.
    bool isToBeRemembered = false;
};

/// The facts of a desktop's ScreenCast portal. Errors: unreachable.
Result<ScreenCastFacts, PortalError> readScreenCastFacts(PortalBus& bus);

/// One screen cast that the user agreed to. Threads: any, one at a time. The destructor
/// ends the cast.
class ScreenCastSession {
public:
    /// Asks the user, unless the request's token answers for them. Blocks until there is an answer;
    /// a stop takes the question back. `bus` outlives the session.
    static Result<std::unique_ptr<ScreenCastSession>, PortalError>
    open(PortalBus& bus, const ScreenCastFacts& facts, const ScreenCastRequest& request,
         const std::stop_token& stop);

    ~ScreenCastSession();
    ScreenCastSession(const ScreenCastSession&) = delete;
    ScreenCastSession& operator=(const ScreenCastSession&) = delete;

    /// The node of the stream on the portal's own connection with PipeWire.
    std::uint32_t node() const { return m_node; }

    /// What the portal tells of where the cast display lies, in the compositor's own units, rows
    /// downwards; each absent where it doesn't.
    struct Place {
        std::optional<Point> position;
        std::optional<Size> size;
    };
    const Place& place() const { return m_place; }

    /// Answers the same question next time, once; absent when nothing is remembered.
    const std::optional<std::string>& restoreToken() const { return m_restoreToken; }

    /// A connection with PipeWire on which there is the stream and nothing else; the caller's own.
    Result<int, PortalError> openPipeWireRemote();

    /// Calls `ended` when the portal ends the cast, on a thread of its own; at once if it did.
    /// Null takes it away: it isn't called any more when this returns.
    void whenClosed(std::function<void()> ended);

private:
    explicit ScreenCastSession(PortalBus& bus) : m_bus(bus) {}

    Result<void, PortalError> create(const std::stop_token& stop);
    Result<void, PortalError> selectSources(const ScreenCastFacts& facts,
                                            const ScreenCastRequest& request,
                                            const std::stop_token& stop);
    Result<void, PortalError> start(const std::stop_token& stop);

    PortalBus& m_bus;
    QString m_handle; ///< Empty before there is a session.
    std::uint32_t m_node = 0;
    Place m_place;
    std::optional<std::string> m_restoreToken;
};

} // namespace tavi
