#include "platform/portal/PortalCasts.h"

#include <utility>

namespace tavi {

namespace {

bool isSameSource(const ScreenFilter& a, const ScreenFilter& b) {
    return a.windowId == b.windowId && (a.windowId != 0 || a.displayId == b.displayId);
}

bool isWindow(const ScreenFilter& filter) {
    return filter.windowId != 0;
}

std::string tokenName(std::uint32_t displayId) {
    return "display-" + std::to_string(displayId);
}

bool canBeAt(const Display& display, const ScreenCastSession::Place& place) {
    const bool isOfSize = !place.size || *place.size == display.place.size() ||
                          *place.size == Size{display.frame.width, display.frame.height};
    // Some portals say of every display that it lies at the origin.
    const bool isTold = place.position && *place.position != Point{0, 0};
    return isOfSize && (!isTold || *place.position == Point{display.place.x, display.place.y});
}

/// The display that is cast: the chosen one unless it must be another.
std::uint32_t displayAt(const ScreenCastSession::Place& place, const std::vector<Display>& displays,
                        std::uint32_t chosen) {
    std::optional<std::uint32_t> found;
    for (const Display& display : displays) {
        if (canBeAt(display, place)) {
            if (found || display.id == chosen) {
                return chosen;
            }
            found = display.id;
        }
    }
    return found.value_or(chosen);
}

CaptureError captureError(const PortalError& error) {
    return {error.kind == PortalError::Kind::unreachable ? CaptureError::Kind::noPortal
                                                         : CaptureError::Kind::castRefused,
            error.detail};
}

} // namespace

/// A session with its stream. The portal's word that the session is over ends the stream.
class PortalCasts::Cast final : public ScreenStream {
public:
    Cast(const ScreenFilter& source, std::unique_ptr<ScreenCastSession> session,
         std::unique_ptr<CastStream> stream)
        : m_source(source),
          m_session(std::move(session)),
          m_stream(std::move(stream)) {
        m_session->whenClosed([this] { m_stream->end(); });
    }
    ~Cast() override { m_session->whenClosed(nullptr); }

    const ScreenFilter& source() const { return m_source; }
    CastStream& stream() { return *m_stream; }

    Result<void, CaptureError> addStreamOutput(SerialQueue& queue, Handler handler) override {
        return m_stream->addStreamOutput(queue, std::move(handler));
    }
    Result<void, CaptureError> startCapture() override { return m_stream->startCapture(); }
    Result<void, CaptureError> stopCapture() override { return m_stream->stopCapture(); }
    std::optional<CaptureError> failure() const override { return m_stream->failure(); }

private:
    ScreenFilter m_source;
    std::unique_ptr<ScreenCastSession> m_session; ///< Ends after its stream.
    std::unique_ptr<CastStream> m_stream;
};

PortalCasts::PortalCasts(PortalBus& bus, ScreenCastFacts facts, RestoreTokens tokens,
                         CastStream::Ports ports, Displays displays)
    : m_bus(bus),
      m_facts(facts),
      m_tokens(std::move(tokens)),
      m_ports(std::move(ports)),
      m_displays(std::move(displays)) {}

PortalCasts::~PortalCasts() = default;

Result<Consent, CaptureError> PortalCasts::ask(const ScreenFilter& filter,
                                               const std::stop_token& stop) {
    {
        const std::lock_guard lock(m_mutex);
        if (m_granted && isSameSource(m_granted->source(), filter) && !m_granted->failure()) {
            return Consent::given;
        }
    }
    release();
    auto session = openSession(filter, stop);
    if (!session && session.error().kind == PortalError::Kind::declined) {
        return Consent::declined;
    }
    if (!session) {
        return fail(captureError(session.error()));
    }
    auto cast = openCast(std::move(*session), filter);
    if (!cast) {
        return fail(cast.error());
    }
    const std::lock_guard lock(m_mutex);
    m_granted = std::move(*cast);
    return Consent::given;
}

/// A token serves once. One that the portal turns down is forgotten, and its user asked.
Result<std::unique_ptr<ScreenCastSession>, PortalError>
PortalCasts::openSession(const ScreenFilter& filter, const std::stop_token& stop) {
    ScreenCastRequest request;
    request.type = isWindow(filter) ? ScreenCastFacts::window : ScreenCastFacts::monitor;
    if (!m_facts.canShow(request.type)) {
        return fail(PortalError{PortalError::Kind::failed,
                                isWindow(filter) ? "this desktop casts whole displays only"
                                                 : "this desktop casts single windows only"});
    }
    request.isToBeRemembered = !isWindow(filter) && m_facts.canRestore();
    if (request.isToBeRemembered) {
        request.restoreToken = m_tokens.token(tokenName(filter.displayId));
    }
    auto session = ScreenCastSession::open(m_bus, m_facts, request, stop);
    const bool isTokenBad =
        !session && session.error().kind == PortalError::Kind::failed && request.restoreToken;
    if (isTokenBad) {
        m_tokens.setToken(tokenName(filter.displayId), std::nullopt);
        request.restoreToken.reset();
        session = ScreenCastSession::open(m_bus, m_facts, request, stop);
    }
    if (session && request.isToBeRemembered) {
        keepToken(filter, **session);
    }
    return session;
}

/// In the dialog its user may choose another display than before it.
void PortalCasts::keepToken(const ScreenFilter& filter, const ScreenCastSession& session) {
    const auto displays = m_displays ? m_displays() : std::vector<Display>();
    const std::uint32_t shown = displayAt(session.place(), displays, filter.displayId);
    if (shown != filter.displayId) {
        m_tokens.setToken(tokenName(filter.displayId), std::nullopt);
    }
    m_tokens.setToken(tokenName(shown), session.restoreToken());
}

PointerRange PortalCasts::rangeOf(const ScreenFilter& filter) const {
    const bool isOnly = !isWindow(filter) && m_displays && m_displays().size() == 1;
    return isOnly ? PointerRange::everything : PointerRange::part;
}

Result<std::unique_ptr<PortalCasts::Cast>, CaptureError>
PortalCasts::openCast(std::unique_ptr<ScreenCastSession> session, const ScreenFilter& filter) {
    const auto remote = session->openPipeWireRemote();
    if (!remote) {
        return fail(captureError(remote.error()));
    }
    m_ports.pointer.beginCast(rangeOf(filter));
    auto stream = CastStream::open(*remote, session->node(), m_ports,
                                   isWindow(filter) ? CastAlpha::wanted : CastAlpha::unwanted);
    if (!stream) {
        return fail(stream.error());
    }
    const Rect frame{0, 0, static_cast<double>((*stream)->width()),
                     static_cast<double>((*stream)->height())};
    auto cast = std::make_unique<Cast>(filter, std::move(session), std::move(*stream));
    const std::lock_guard lock(m_mutex);
    m_lastSource = filter;
    m_lastFrame = frame;
    return cast;
}

void PortalCasts::release() {
    std::unique_ptr<Cast> granted;
    const std::lock_guard lock(m_mutex);
    granted.swap(m_granted);
}

bool PortalCasts::hasAlpha(const ScreenFilter& filter) {
    const std::lock_guard lock(m_mutex);
    return m_granted && isSameSource(m_granted->source(), filter) && m_granted->stream().hasAlpha();
}

Result<std::unique_ptr<ScreenStream>, CaptureError>
PortalCasts::makeStream(const ScreenFilter& filter,
                        const ScreenStreamConfiguration& configuration) {
    const auto consent = ask(filter, {});
    if (!consent) {
        return fail(consent.error());
    }
    const std::lock_guard lock(m_mutex);
    if (*consent == Consent::declined || !m_granted) {
        return fail(CaptureError{CaptureError::Kind::castRefused, ""});
    }
    m_granted->stream().configure(configuration);
    return std::move(m_granted);
}

std::optional<Rect> PortalCasts::frameOf(const ScreenFilter& filter) {
    const std::lock_guard lock(m_mutex);
    const bool isKnown = m_lastSource && isSameSource(*m_lastSource, filter);
    return isKnown ? std::optional(m_lastFrame) : std::nullopt;
}

std::optional<Rect> PortalCasts::displayFrame(std::uint32_t displayId) {
    return frameOf(ScreenFilter::display(displayId));
}

std::optional<Rect> PortalCasts::windowFrame(std::uint32_t windowId) {
    return frameOf(ScreenFilter::window(windowId));
}

} // namespace tavi
