#include "platform/x11/PixelFormat.h"

namespace tavi {

namespace {

CaptureError unsupported(const std::string& what) {
    return {CaptureError::Kind::unsupportedFormat, what};
}

const xcb_visualtype_t* findVisual(const xcb_screen_t& screen, xcb_visualid_t id) {
    for (auto depth = xcb_screen_allowed_depths_iterator(&screen); depth.rem > 0;
         xcb_depth_next(&depth)) {
        for (auto visual = xcb_depth_visuals_iterator(depth.data); visual.rem > 0;
             xcb_visualtype_next(&visual)) {
            if (visual.data->visual_id == id) {
                return visual.data;
            }
        }
    }
    return nullptr;
}

int bitsPerPixel(const xcb_setup_t& setup, int depth) {
    for (auto format = xcb_setup_pixmap_formats_iterator(&setup); format.rem > 0;
         xcb_format_next(&format)) {
        if (format.data->depth == depth) {
            return format.data->bits_per_pixel;
        }
    }
    return 0;
}

} // namespace

Result<void, CaptureError> requirePixelFormat(const XConnection& x, xcb_visualid_t visualId,
                                              int depth) {
    const xcb_setup_t& setup = *xcb_get_setup(x.get());
    if ((depth != 24 && depth != 32) || bitsPerPixel(setup, depth) != 32) {
        return fail(unsupported("it has a depth of " + std::to_string(depth)));
    }
    const xcb_visualtype_t* visual = findVisual(x.screen(), visualId);
    const bool isBgr = visual != nullptr && visual->red_mask == 0xFF0000 &&
                       visual->green_mask == 0x00FF00 && visual->blue_mask == 0x0000FF;
    if (!isBgr || setup.image_byte_order != XCB_IMAGE_ORDER_LSB_FIRST) {
        return fail(unsupported("its pixels are in an unusual order"));
    }
    return {};
}

} // namespace tavi
