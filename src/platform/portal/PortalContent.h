#pragma once

#include "capture/ShareableContent.h"
#include "platform/portal/PortalBus.h"

namespace tavi {

/// What a Wayland desktop lets a program list: nothing by name. There is one display and, where
/// the portal casts windows, one window; which ones they are is chosen in the desktop's own dialog,
/// and their sizes are known after that.
class PortalContent final : public ShareableContentSource {
public:
    static constexpr std::uint32_t kChosenDisplay = 1;
    static constexpr std::uint32_t kChosenWindow = 1;

    /// `bus` outlives the object.
    explicit PortalContent(PortalBus& bus) : m_bus(bus) {}

    /// Asks the portal anew each time. Errors: noPortal.
    Result<ShareableContent, CaptureError> content() override;

private:
    PortalBus& m_bus;
};

} // namespace tavi
