#pragma once

#include "base/Result.h"
#include "platform/x11/PixelRegion.h"
#include "platform/x11/XConnection.h"

#include <xcb/damage.h>

#include <cstdint>

namespace tavi {

/// Where a window was painted since somebody last asked.
///
/// Lives no longer than its connection, which frees what it holds in the server.
class DamageWatch {
public:
    /// Watches a window and all in it. Errors: missingExtension.
    static Result<DamageWatch, CaptureError> open(const XConnection& x, xcb_window_t window);

    /// Takes note of an event; true when it tells of damage that no take() has told yet.
    bool note(const xcb_generic_event_t& event);

    /// Takes the damage out of the server. What of it lies in `limit`, in the
    /// window's coordinates. All of it must be fetched by later requests on this connection.
    PixelRegion take(const PixelRect& limit);

    /// The same where all of `limit` will be fetched anyway; gives all of it.
    PixelRegion takeAll(const PixelRect& limit);

private:
    DamageWatch(xcb_connection_t* connection, std::uint8_t event)
        : m_connection(connection),
          m_event(event) {}

    PixelRegion fetchRegion(const PixelRect& limit);
    bool isCovered(const xcb_damage_notify_event_t& event) const;
    void subtract(std::uint32_t into, const PixelRect& limit, const PixelRect& covered);

    xcb_connection_t* m_connection;
    std::uint8_t m_event;
    xcb_damage_damage_t m_damage = 0;
    std::uint32_t m_region = 0;      ///< Scratch region in the server.
    std::uint32_t m_limitRegion = 0; ///< Region in the server for the limit.
    PixelRect m_limit;               ///< What is in that region.
    PixelRect m_box;                 ///< Around the damage that events told of.
    std::uint16_t m_subtracted = 0;  ///< Number of the request that took damage out last.
    PixelRect m_asked;               ///< The limit of that.
    PixelRect m_covered;             ///< What of it was to be fetched where there was damage.
    int m_trusted = 0;               ///< So many more boxes are taken as full of damage.
};

} // namespace tavi
