#pragma once

#include "capture/ShareableContent.h"
#include "platform/portal/PortalBus.h"

#include <functional>
#include <utility>
#include <vector>

namespace tavi {

/// What a Wayland desktop lets a program list: its displays, where the compositor tells, and no
/// window by name. Where the portal casts windows there is one; which one it is is chosen in the
/// desktop's own dialog, and its size is known after that. So it is with the one display where
/// the compositor tells nothing.
class PortalContent final : public ShareableContentSource {
public:
    static constexpr std::uint32_t kChosenDisplay = 1;
    static constexpr std::uint32_t kChosenWindow = 1;

    using Displays = std::function<std::vector<Display>()>;

    /// `bus` outlives the object; `displays` is asked on any thread and may be null.
    explicit PortalContent(PortalBus& bus, Displays displays = {})
        : m_bus(bus),
          m_displays(std::move(displays)) {}

    /// Asks the portal anew each time. Errors: noPortal.
    Result<ShareableContent, CaptureError> content() override;

private:
    PortalBus& m_bus;
    Displays m_displays;
};

} // namespace tavi
