#include "platform/x11/X11ScreenSystem.h"

namespace tavi {

Result<ScreenSystem::Pointer, CaptureError> X11ScreenSystem::pointer() {
    if (!m_pointer) {
        auto monitors = X11PointerMonitors::open();
        if (!monitors) {
            return fail(monitors.error());
        }
        auto pointer = X11Pointer::open();
        if (!pointer) {
            return fail(pointer.error());
        }
        m_monitors = std::move(*monitors);
        m_pointer = std::move(*pointer);
    }
    return Pointer{*m_monitors, *m_pointer, *m_pointer};
}

} // namespace tavi
