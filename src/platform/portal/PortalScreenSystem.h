#pragma once

#include "base/Executor.h"
#include "capture/ScreenSystem.h"
#include "media/ColorConversion.h"
#include "platform/portal/PortalCasts.h"
#include "platform/portal/PortalContent.h"
#include "platform/portal/PortalPointer.h"

#include <filesystem>
#include <memory>

namespace tavi {

/// A Wayland session as its portal shows it. Pointer events come from the streams; see
/// PortalPointer for buttons and wheels.
class PortalScreenSystem final : public ScreenSystem {
public:
    struct Ports {
        Executor& main; ///< Outlives the system.
        std::shared_ptr<const ColorConverter> colours;
        PortalPointer::Arrow arrow;
        std::filesystem::path tokenFile; ///< See RestoreTokens.
        PortalContent::Displays displays = {};
    };

    /// Null where no ScreenCast portal answers on the session bus. Blocks for some seconds at most.
    static std::unique_ptr<PortalScreenSystem> open(Ports ports);

    ShareableContentSource& content() override { return m_content; }
    Screenshots* screenshots() override { return nullptr; }
    ScreenStreams& streams() override { return m_casts; }
    SourceFrames& frames() override { return m_casts; }
    SourceConsent* consent() override { return &m_casts; }
    Result<Pointer, CaptureError> pointer() override {
        return Pointer{m_pointer, m_pointer, m_pointer};
    }
    CursorMode cursorMode() const override { return m_facts.cursorMode(); }
    bool seesClicks() const override { return false; }

    const ScreenCastFacts& facts() const { return m_facts; }

    /// For what sees buttons and wheels.
    PortalPointer& portalPointer() { return m_pointer; }

private:
    PortalScreenSystem(std::unique_ptr<PortalBus> bus, const ScreenCastFacts& facts, Ports ports);

    std::unique_ptr<PortalBus> m_bus;
    ScreenCastFacts m_facts;
    PortalPointer m_pointer;
    PortalContent m_content;
    PortalCasts m_casts;
};

} // namespace tavi
