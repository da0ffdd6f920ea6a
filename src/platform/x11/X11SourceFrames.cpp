#include "platform/x11/X11SourceFrames.h"

#include "platform/x11/Monitors.h"
#include "platform/x11/WindowArea.h"

#include <algorithm>

namespace tavi {

/// Null when no server answers.
const XConnection* X11SourceFrames::connection() {
    if (!m_connection) {
        if (auto opened = XConnection::open(m_displayName)) {
            m_connection = std::move(*opened);
        }
    }
    return m_connection ? &*m_connection : nullptr;
}

std::optional<Rect> X11SourceFrames::displayFrame(std::uint32_t displayId) {
    const XConnection* x = connection();
    const auto monitors =
        x != nullptr ? activeMonitors(*x).value_or(std::vector<Monitor>()) : std::vector<Monitor>();
    const auto found =
        std::find_if(monitors.begin(), monitors.end(),
                     [displayId](const Monitor& monitor) { return monitor.id == displayId; });
    return found == monitors.end() ? std::nullopt : std::optional(x->toGlobal(found->area));
}

std::optional<Rect> X11SourceFrames::windowFrame(std::uint32_t windowId) {
    const XConnection* x = connection();
    const auto area = x != nullptr ? areaOnRoot(*x, windowId) : std::nullopt;
    return area ? std::optional(x->toGlobal(*area)) : std::nullopt;
}

} // namespace tavi
