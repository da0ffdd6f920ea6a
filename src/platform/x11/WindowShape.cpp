#include "platform/x11/WindowShape.h"

#include <xcb/shape.h>

#include <algorithm>
#include <cstring>

namespace tavi {

namespace {

constexpr std::size_t kPixel = PixelBuffer::kBytesPerPixel;

/// Clears the pixels from `left` up to `right` of a row.
void clear(PixelBuffer& picture, int y, int left, int right) {
    if (left < right) {
        std::memset(picture.row(y) + static_cast<std::size_t>(left) * kPixel, 0,
                    static_cast<std::size_t>(right - left) * kPixel);
    }
}

} // namespace

WindowShape::WindowShape(const XConnection& x, xcb_window_t window)
    : m_connection(x.get()),
      m_window(window) {
    if (const auto extension = x.require(xcb_shape_id, "Shape")) {
        m_event = (*extension)->first_event + XCB_SHAPE_NOTIFY;
        xcb_shape_select_input(m_connection, window, 1);
        fetch();
    }
}

bool WindowShape::note(const xcb_generic_event_t& event) {
    if ((event.response_type & 0x7F) != m_event) {
        return false;
    }
    const auto& notice = reinterpret_cast<const xcb_shape_notify_event_t&>(event);
    if (notice.shape_kind != XCB_SHAPE_SK_BOUNDING) {
        return false;
    }
    fetch();
    return true;
}

/// A window that is gone keeps the outline that it had.
void WindowShape::fetch() {
    const auto geometryCookie = xcb_get_geometry(m_connection, m_window);
    const auto shapeCookie =
        xcb_shape_get_rectangles(m_connection, m_window, XCB_SHAPE_SK_BOUNDING);
    const XOwned<xcb_get_geometry_reply_t> geometry(
        xcb_get_geometry_reply(m_connection, geometryCookie, nullptr));
    const XOwned<xcb_shape_get_rectangles_reply_t> shape(
        xcb_shape_get_rectangles_reply(m_connection, shapeCookie, nullptr));
    if (!geometry || !shape) {
        return;
    }
    const PixelRect whole{0, 0, geometry->width, geometry->height};
    const auto* rectangles = xcb_shape_get_rectangles_rectangles(shape.get());
    m_bands.clear();
    for (int i = 0; i < xcb_shape_get_rectangles_rectangles_length(shape.get()); ++i) {
        const auto& r = rectangles[i];
        const PixelRect band = PixelRect{r.x, r.y, r.width, r.height}.intersected(whole);
        if (!band.isEmpty()) {
            m_bands.push_back(band);
        }
    }
    std::sort(m_bands.begin(), m_bands.end(), [](const PixelRect& a, const PixelRect& b) {
        return a.y != b.y ? a.y < b.y : a.x < b.x;
    });
    m_isShaped = m_bands != std::vector{whole};
}

void WindowShape::cut(PixelBuffer& picture, const PixelRect& area) const {
    if (!m_isShaped) {
        return;
    }
    auto band = m_bands.begin();
    for (int y = 0; y < area.height; ++y) {
        while (band != m_bands.end() && band->y + band->height <= y) {
            ++band;
        }
        int shown = 0; // Up to here the row is done.
        for (auto piece = band; piece != m_bands.end() && piece->y <= y; ++piece) {
            clear(picture, y, shown, std::min(piece->x, area.width));
            shown = piece->x + piece->width;
        }
        clear(picture, y, shown, area.width);
    }
}

} // namespace tavi
