#pragma once

#include "base/Result.h"
#include "platform/x11/XConnection.h"

#include <xcb/damage.h>

#include <cstdint>
#include <vector>

namespace tavi {

/// Where a window was painted since somebody last asked.
///
/// Lives no longer than its connection, which frees what it holds in the server.
class DamageWatch {
public:
    /// Watches a window and all in it. Errors: missingExtension.
    static Result<DamageWatch, CaptureError> open(const XConnection& x, xcb_window_t window);

    /// True for the event that says that there is damage; it comes again after the next take().
    bool isNews(const xcb_generic_event_t& event) const {
        return (event.response_type & 0x7F) == m_event;
    }

    /// Takes the damage out of the server. What of it lies in `limit`, in the
    /// window's coordinates: pieces that don't overlap, few enough to be worth it.
    std::vector<PixelRect> take(const PixelRect& limit);

private:
    DamageWatch(xcb_connection_t* connection, std::uint8_t event)
        : m_connection(connection),
          m_event(event) {}

    xcb_connection_t* m_connection;
    std::uint8_t m_event;
    xcb_damage_damage_t m_damage = 0;
    std::uint32_t m_region = 0;      ///< Scratch region in the server.
    std::uint32_t m_limitRegion = 0; ///< Region in the server for the limit.
    PixelRect m_limit;               ///< What is in that region.
};

} // namespace tavi
