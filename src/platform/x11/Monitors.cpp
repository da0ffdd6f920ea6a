#include "platform/x11/Monitors.h"

#include <xcb/randr.h>

namespace tavi {

namespace {

std::string atomName(const XConnection& x, xcb_atom_t atom) {
    const XOwned<xcb_get_atom_name_reply_t> reply(
        xcb_get_atom_name_reply(x.get(), xcb_get_atom_name(x.get(), atom), nullptr));
    if (!reply) {
        return {};
    }
    return {xcb_get_atom_name_name(reply.get()),
            static_cast<std::size_t>(xcb_get_atom_name_name_length(reply.get()))};
}

Monitor wholeRoot(const XConnection& x) {
    return {
        x.root(), "screen", {0, 0, x.screen().width_in_pixels, x.screen().height_in_pixels}, true};
}

} // namespace

Result<std::vector<Monitor>, CaptureError> activeMonitors(const XConnection& connection) {
    const auto extension = connection.require(xcb_randr_id, "RandR");
    if (!extension) {
        return fail(extension.error());
    }
    xcb_connection_t* c = connection.get();
    const XOwned<xcb_randr_query_version_reply_t> version(
        xcb_randr_query_version_reply(c, xcb_randr_query_version(c, 1, 5), nullptr));
    if (!version || (version->major_version == 1 && version->minor_version < 5)) {
        return fail(CaptureError{CaptureError::Kind::missingExtension, "RandR 1.5"});
    }
    const XOwned<xcb_randr_get_monitors_reply_t> reply(
        xcb_randr_get_monitors_reply(c, xcb_randr_get_monitors(c, connection.root(), 1), nullptr));
    if (!reply) {
        return fail(CaptureError{CaptureError::Kind::connectionLost, ""});
    }
    std::vector<Monitor> monitors;
    for (auto it = xcb_randr_get_monitors_monitors_iterator(reply.get()); it.rem > 0;
         xcb_randr_monitor_info_next(&it)) {
        const auto& info = *it.data;
        monitors.push_back({info.name,
                            atomName(connection, info.name),
                            {info.x, info.y, info.width, info.height},
                            info.primary != 0});
    }
    if (monitors.empty()) {
        monitors.push_back(wholeRoot(connection));
    }
    return monitors;
}

int watchMonitors(const XConnection& connection) {
    xcb_connection_t* c = connection.get();
    xcb_randr_select_input(c, connection.root(),
                           XCB_RANDR_NOTIFY_MASK_SCREEN_CHANGE | XCB_RANDR_NOTIFY_MASK_CRTC_CHANGE |
                               XCB_RANDR_NOTIFY_MASK_OUTPUT_CHANGE);
    return xcb_get_extension_data(c, &xcb_randr_id)->first_event;
}

} // namespace tavi
