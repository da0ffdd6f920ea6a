#pragma once

#include "capture/ScreenStream.h"
#include "capture/ShareableContent.h"
#include "capture/SourceConsent.h"
#include "capture/SourceFrames.h"
#include "platform/portal/CastStream.h"
#include "platform/portal/RestoreTokens.h"
#include "platform/portal/ScreenCastSession.h"

#include <memory>
#include <mutex>

namespace tavi {

/// The screen casts of a portal: each is asked for before its take, made into the take's stream,
/// and ended with it.
///
/// For a display the portal's answer is remembered, by the id of the display that was chosen in
/// the desktop's dialog, as long as the user lets it; a window is chosen anew there for every take.
/// Threads: any; ask() and makeStream() by one at a time.
class PortalCasts final : public SourceConsent, public ScreenStreams, public SourceFrames {
public:
    using Displays = std::function<std::vector<Display>()>;

    /// All outlive the object; `displays` is asked on any thread and may be null.
    PortalCasts(PortalBus& bus, ScreenCastFacts facts, RestoreTokens tokens,
                CastStream::Ports ports, Displays displays = {});
    ~PortalCasts() override;

    /// Errors: castRefused, noPortal.
    Result<Consent, CaptureError> ask(const ScreenFilter& filter,
                                      const std::stop_token& stop) override;
    void release() override;

    /// Of a window that was consented to.
    bool hasAlpha(const ScreenFilter& filter) override;

    /// Asks for what was not asked for before. Errors: likewise; a refusal is castRefused.
    Result<std::unique_ptr<ScreenStream>, CaptureError>
    makeStream(const ScreenFilter& filter, const ScreenStreamConfiguration& configuration) override;

    /// Where a source is that was consented to, in the space of PortalPointer: at the origin,
    /// in pixels. Absent before that.
    std::optional<Rect> displayFrame(std::uint32_t displayId) override;
    std::optional<Rect> windowFrame(std::uint32_t windowId) override;

private:
    class Cast;

    Result<std::unique_ptr<ScreenCastSession>, PortalError>
    openSession(const ScreenFilter& filter, const std::stop_token& stop);
    Result<std::unique_ptr<Cast>, CaptureError> openCast(std::unique_ptr<ScreenCastSession> session,
                                                         const ScreenFilter& filter);
    std::optional<Rect> frameOf(const ScreenFilter& filter);
    void keepToken(const ScreenFilter& filter, const ScreenCastSession& session);
    PointerRange rangeOf(const ScreenFilter& filter) const;

    PortalBus& m_bus;
    const ScreenCastFacts m_facts;
    RestoreTokens m_tokens;
    CastStream::Ports m_ports;
    Displays m_displays;

    std::mutex m_mutex;
    std::unique_ptr<Cast> m_granted; ///< By the mutex; null before consent and once it is used.
    std::optional<ScreenFilter> m_lastSource; ///< By the mutex, as its frame: of the last consent.
    Rect m_lastFrame;
};

} // namespace tavi
