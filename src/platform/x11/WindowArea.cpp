#include "platform/x11/WindowArea.h"

namespace tavi {

std::optional<PixelRect> areaOnRoot(const XConnection& connection, xcb_window_t window) {
    xcb_connection_t* c = connection.get();
    const auto geometryCookie = xcb_get_geometry(c, window);
    const auto placeCookie = xcb_translate_coordinates(c, window, connection.root(), 0, 0);
    const XOwned<xcb_get_geometry_reply_t> geometry(
        xcb_get_geometry_reply(c, geometryCookie, nullptr));
    const XOwned<xcb_translate_coordinates_reply_t> place(
        xcb_translate_coordinates_reply(c, placeCookie, nullptr));
    if (!geometry || !place) {
        return std::nullopt;
    }
    return PixelRect{place->dst_x, place->dst_y, geometry->width, geometry->height};
}

} // namespace tavi
