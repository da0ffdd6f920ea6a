#include "platform/x11/X11Compositor.h"

#include "platform/x11/XConnection.h"

#include <string_view>

namespace tavi {

namespace {

// Owned by the first screen's compositor and by its tray.
constexpr std::string_view kCompositor = "_NET_WM_CM_S0";
constexpr std::string_view kTray = "_NET_SYSTEM_TRAY_S0";

bool isOwned(std::string_view selection, const std::string& displayName) {
    const auto x = XConnection::open(displayName);
    if (!x) {
        return false;
    }
    const XOwned<xcb_intern_atom_reply_t> atom(xcb_intern_atom_reply(
        x->get(),
        xcb_intern_atom(x->get(), 1, static_cast<std::uint16_t>(selection.size()),
                        selection.data()),
        nullptr));
    if (!atom || atom->atom == XCB_ATOM_NONE) {
        return false;
    }
    const XOwned<xcb_get_selection_owner_reply_t> owner(xcb_get_selection_owner_reply(
        x->get(), xcb_get_selection_owner(x->get(), atom->atom), nullptr));
    return owner && owner->owner != XCB_NONE;
}

} // namespace

bool isX11Composited(const std::string& displayName) {
    return isOwned(kCompositor, displayName);
}

bool hasX11Tray(const std::string& displayName) {
    return isOwned(kTray, displayName);
}

} // namespace tavi
