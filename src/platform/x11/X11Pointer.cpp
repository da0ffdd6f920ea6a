#include "platform/x11/X11Pointer.h"

#include "capture/CursorImageBytes.h"
#include "platform/x11/XcursorTheme.h"

#include <xcb/xfixes.h>

#include <cstring>

namespace tavi {

Result<std::unique_ptr<X11Pointer>, CaptureError> X11Pointer::open(const std::string& displayName) {
    auto x = XConnection::open(displayName);
    if (!x) {
        return fail(x.error());
    }
    if (const auto fixes = x->require(xcb_xfixes_id, "XFIXES"); !fixes) {
        return fail(fixes.error());
    }
    const XOwned<xcb_xfixes_query_version_reply_t> version(xcb_xfixes_query_version_reply(
        x->get(), xcb_xfixes_query_version(x->get(), 5, 0), nullptr));
    if (!version) {
        return fail(CaptureError{CaptureError::Kind::connectionLost, ""});
    }
    return std::unique_ptr<X11Pointer>(new X11Pointer(std::move(*x)));
}

Point X11Pointer::query() const {
    const XOwned<xcb_query_pointer_reply_t> reply(
        xcb_query_pointer_reply(m_x.get(), xcb_query_pointer(m_x.get(), m_x.root()), nullptr));
    const std::lock_guard lock(m_mutex);
    if (reply) {
        m_last = m_x.toGlobal(reply->root_x, reply->root_y);
    }
    return m_last;
}

std::optional<SystemCursor> X11Pointer::arrowCursor() {
    const auto arrow = themeArrow(xcursorChoice(m_x), xcursorFolders());
    return arrow ? systemCursor(arrow->image, arrow->hotSpotX, arrow->hotSpotY)
                 : currentSystemCursor();
}

std::optional<SystemCursor> X11Pointer::currentSystemCursor() {
    const XOwned<xcb_xfixes_get_cursor_image_reply_t> reply(xcb_xfixes_get_cursor_image_reply(
        m_x.get(), xcb_xfixes_get_cursor_image(m_x.get()), nullptr));
    if (!reply || reply->width == 0 || reply->height == 0) {
        return std::nullopt;
    }
    PixelBuffer image(reply->width, reply->height);
    const std::uint32_t* pixels = xcb_xfixes_get_cursor_image_cursor_image(reply.get());
    const std::size_t rowBytes = std::size_t{reply->width} * PixelBuffer::kBytesPerPixel;
    for (int y = 0; y < image.height(); ++y) {
        std::memcpy(image.row(y), pixels + static_cast<std::ptrdiff_t>(y) * image.width(),
                    rowBytes);
    }
    return systemCursor(image, reply->xhot, reply->yhot);
}

} // namespace tavi
