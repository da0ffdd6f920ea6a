#include "app/program/ScreenChoice.h"

#include "base/DesktopSession.h"
#include "platform/portal/PortalScreenSystem.h"
#include "platform/portal/RestoreTokens.h"
#include "platform/wayland/WaylandOutputs.h"
#include "platform/x11/DesktopArrow.h"
#include "platform/x11/X11ScreenSystem.h"

#include <utility>

namespace tavi {

std::unique_ptr<ScreenSystem> openScreenSystem(Executor& main,
                                               std::shared_ptr<const ColorConverter> colours) {
    if (isWaylandSession()) {
        if (auto portal = PortalScreenSystem::open({main, std::move(colours), desktopArrowCursor,
                                                    restoreTokenFile(), waylandDisplays})) {
            return portal;
        }
    }
    return std::make_unique<X11ScreenSystem>();
}

} // namespace tavi
