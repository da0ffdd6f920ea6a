#include "platform/x11/ScreenGrabber.h"

#include "platform/x11/Monitors.h"

#include <xcb/xfixes.h>

#include <algorithm>
#include <cstring>

namespace tavi {

namespace {

/// Beyond this many pieces, one fetch of the rectangle around them costs less
/// than the requests.
constexpr std::size_t kMostPieces = 16;
/// Pieces that fill more than this part of the rectangle around them are
/// fetched as that one rectangle.
constexpr double kDensePart = 0.6;

CaptureError unsupported(const std::string& what) {
    return {CaptureError::Kind::unsupportedFormat, what};
}

const xcb_visualtype_t* rootVisual(const xcb_screen_t& screen) {
    for (auto depth = xcb_screen_allowed_depths_iterator(&screen); depth.rem > 0;
         xcb_depth_next(&depth)) {
        for (auto visual = xcb_depth_visuals_iterator(depth.data); visual.rem > 0;
             xcb_visualtype_next(&visual)) {
            if (visual.data->visual_id == screen.root_visual) {
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

/// Pixels must lie in memory as blue, green, red, unused.
Result<void, CaptureError> requirePixelFormat(const XConnection& x) {
    const xcb_setup_t& setup = *xcb_get_setup(x.get());
    const int depth = x.screen().root_depth;
    const xcb_visualtype_t* visual = rootVisual(x.screen());
    if ((depth != 24 && depth != 32) || bitsPerPixel(setup, depth) != 32) {
        return fail(unsupported("it has a depth of " + std::to_string(depth)));
    }
    const bool isBgr = visual != nullptr && visual->red_mask == 0xFF0000 &&
                       visual->green_mask == 0x00FF00 && visual->blue_mask == 0x0000FF;
    if (!isBgr || setup.image_byte_order != XCB_IMAGE_ORDER_LSB_FIRST) {
        return fail(unsupported("its pixels are in an unusual order"));
    }
    return {};
}

Result<std::uint8_t, CaptureError> requireDamage(const XConnection& x) {
    const auto fixes = x.require(xcb_xfixes_id, "XFIXES");
    const auto damage = x.require(xcb_damage_id, "DAMAGE");
    if (!fixes || !damage) {
        return fail(fixes ? damage.error() : fixes.error());
    }
    const XOwned<xcb_xfixes_query_version_reply_t> fixesVersion(
        xcb_xfixes_query_version_reply(x.get(), xcb_xfixes_query_version(x.get(), 5, 0), nullptr));
    const XOwned<xcb_damage_query_version_reply_t> damageVersion(
        xcb_damage_query_version_reply(x.get(), xcb_damage_query_version(x.get(), 1, 1), nullptr));
    if (!fixesVersion || !damageVersion) {
        return fail(CaptureError{CaptureError::Kind::connectionLost, ""});
    }
    return static_cast<std::uint8_t>((*damage)->first_event + XCB_DAMAGE_NOTIFY);
}

Result<PixelRect, CaptureError> areaOfMonitor(const XConnection& x, std::uint32_t id) {
    const auto monitors = activeMonitors(x);
    if (!monitors) {
        return fail(monitors.error());
    }
    const auto found = std::find_if(monitors->begin(), monitors->end(),
                                    [id](const Monitor& m) { return m.id == id; });
    if (found == monitors->end()) {
        return fail(CaptureError{CaptureError::Kind::sourceGone, "the display was disconnected"});
    }
    return found->area;
}

xcb_rectangle_t wire(const PixelRect& r) {
    return {static_cast<std::int16_t>(r.x), static_cast<std::int16_t>(r.y),
            static_cast<std::uint16_t>(r.width), static_cast<std::uint16_t>(r.height)};
}

/// The cheapest way to fetch `pieces`, which don't overlap.
std::vector<PixelRect> merged(std::vector<PixelRect> pieces) {
    PixelRect around;
    long area = 0;
    for (const auto& piece : pieces) {
        around = around.united(piece);
        area += piece.area();
    }
    const bool isDense =
        static_cast<double>(area) > kDensePart * static_cast<double>(around.area());
    if (pieces.size() > kMostPieces || (pieces.size() > 1 && isDense)) {
        return {around};
    }
    return pieces;
}

} // namespace

Result<ScreenGrabber, CaptureError> ScreenGrabber::open(const std::string& displayName,
                                                        std::uint32_t monitorId, int width,
                                                        int height) {
    auto x = XConnection::open(displayName);
    if (!x) {
        return fail(x.error());
    }
    if (const auto format = requirePixelFormat(*x); !format) {
        return fail(format.error());
    }
    const auto damageEvent = requireDamage(*x);
    if (!damageEvent) {
        return fail(damageEvent.error());
    }
    const auto area = areaOfMonitor(*x, monitorId);
    if (!area) {
        return fail(area.error());
    }
    auto shared =
        SharedImage::make(*x, static_cast<std::size_t>(area->area()) * PixelBuffer::kBytesPerPixel);
    if (!shared) {
        return fail(shared.error());
    }
    ScreenGrabber grabber(std::move(*x), std::move(*shared), *area, width, height);
    grabber.m_damageEvent = *damageEvent;
    grabber.watch();
    return grabber;
}

ScreenGrabber::ScreenGrabber(XConnection x, SharedImage shared, PixelRect area, int width,
                             int height)
    : m_x(std::move(x)),
      m_shared(std::move(shared)),
      m_area{area.x, area.y, std::min(area.width, width), std::min(area.height, height)},
      m_root{0, 0, m_x.screen().width_in_pixels, m_x.screen().height_in_pixels},
      m_picture(width, height) {}

/// Asks for news of damage and of the root's size.
void ScreenGrabber::watch() {
    xcb_connection_t* c = m_x.get();
    const std::uint32_t events = XCB_EVENT_MASK_STRUCTURE_NOTIFY;
    xcb_change_window_attributes(c, m_x.root(), XCB_CW_EVENT_MASK, &events);
    m_damage = xcb_generate_id(c);
    xcb_damage_create(c, m_damage, m_x.root(), XCB_DAMAGE_REPORT_LEVEL_NON_EMPTY);
    m_region = xcb_generate_id(c);
    xcb_xfixes_create_region(c, m_region, 0, nullptr);
    m_areaRegion = xcb_generate_id(c);
    const xcb_rectangle_t area = wire(m_area);
    xcb_xfixes_create_region(c, m_areaRegion, 1, &area);
    xcb_flush(c);
}

bool ScreenGrabber::hasNews() {
    while (const XOwned<xcb_generic_event_t> event{xcb_poll_for_event(m_x.get())}) {
        const std::uint8_t type = event->response_type & 0x7F;
        if (type == m_damageEvent) {
            m_hasNews = true;
        } else if (type == XCB_CONFIGURE_NOTIFY) {
            const auto& c = *reinterpret_cast<const xcb_configure_notify_event_t*>(event.get());
            m_root = {0, 0, c.width, c.height};
            m_hasNews = true;
            m_mustFetchAll = true;
        }
    }
    return m_hasNews;
}

PixelRect ScreenGrabber::grab() {
    m_hasNews = false;
    std::vector<PixelRect> areas = takeDamage();
    const PixelRect visible = m_area.intersected(m_root);
    const bool isWhole = m_mustFetchAll;
    if (isWhole) {
        areas = {visible};
        if (visible != m_area) {
            blacken({0, 0, m_area.width, m_area.height});
        }
    }
    PixelRect changed;
    for (auto& area : areas) {
        area = area.intersected(visible);
        changed = changed.united(area.movedBy(-m_area.x, -m_area.y));
    }
    if (!fetch(areas)) {
        // The root shrank under the request; its news is on the way.
        m_mustFetchAll = true;
        return {};
    }
    m_mustFetchAll = false;
    changed = repeatEdges(changed);
    return isWhole ? wholePicture() : changed;
}

/// Takes the damage out of the server; on the root window, inside the area.
std::vector<PixelRect> ScreenGrabber::takeDamage() {
    xcb_connection_t* c = m_x.get();
    xcb_damage_subtract(c, m_damage, XCB_NONE, m_region);
    xcb_xfixes_intersect_region(c, m_region, m_areaRegion, m_region);
    const XOwned<xcb_xfixes_fetch_region_reply_t> reply(
        xcb_xfixes_fetch_region_reply(c, xcb_xfixes_fetch_region(c, m_region), nullptr));
    if (!reply) {
        return {};
    }
    const auto* rectangles = xcb_xfixes_fetch_region_rectangles(reply.get());
    std::vector<PixelRect> pieces;
    for (int i = 0; i < xcb_xfixes_fetch_region_rectangles_length(reply.get()); ++i) {
        const auto& r = rectangles[i];
        pieces.push_back({r.x, r.y, r.width, r.height});
    }
    return merged(std::move(pieces));
}

/// Fetches all areas with one wait: the requests go out together, each into
/// its own part of the shared memory.
bool ScreenGrabber::fetch(const std::vector<PixelRect>& areas) {
    xcb_connection_t* c = m_x.get();
    std::vector<xcb_shm_get_image_cookie_t> cookies;
    std::vector<std::size_t> offsets;
    std::size_t offset = 0;
    for (const auto& a : areas) {
        const xcb_rectangle_t r = wire(a);
        offsets.push_back(offset);
        if (a.isEmpty()) {
            cookies.push_back({});
            continue;
        }
        cookies.push_back(xcb_shm_get_image(c, m_x.root(), r.x, r.y, r.width, r.height, ~0U,
                                            XCB_IMAGE_FORMAT_Z_PIXMAP, m_shared.segment(),
                                            static_cast<std::uint32_t>(offset)));
        offset += static_cast<std::size_t>(a.area()) * PixelBuffer::kBytesPerPixel;
    }
    bool isComplete = true;
    for (std::size_t i = 0; i < areas.size(); ++i) {
        if (areas[i].isEmpty()) {
            continue;
        }
        const XOwned<xcb_shm_get_image_reply_t> reply(
            xcb_shm_get_image_reply(c, cookies[i], nullptr));
        if (reply) {
            copyFromShared(offsets[i], areas[i]);
        }
        isComplete = isComplete && reply;
    }
    return isComplete;
}

void ScreenGrabber::copyFromShared(std::size_t offset, const PixelRect& area) {
    constexpr std::uint32_t kOpaque = 0xFF000000;
    const auto* from = reinterpret_cast<const std::uint32_t*>(m_shared.bytes().data() + offset);
    for (int y = 0; y < area.height; ++y) {
        auto* to = reinterpret_cast<std::uint32_t*>(m_picture.row(area.y - m_area.y + y)) +
                   (area.x - m_area.x);
        for (int x = 0; x < area.width; ++x) {
            to[x] = from[x] | kOpaque;
        }
        from += area.width;
    }
}

void ScreenGrabber::blacken(const PixelRect& area) {
    for (int y = area.y; y < area.y + area.height; ++y) {
        auto* row = reinterpret_cast<std::uint32_t*>(m_picture.row(y));
        std::fill(row + area.x, row + area.x + area.width, 0xFF000000);
    }
}

/// Continues the last column and row where the picture is larger than the area.
PixelRect ScreenGrabber::repeatEdges(PixelRect changed) {
    const bool isWider = m_picture.width() > m_area.width;
    const bool isHigher = m_picture.height() > m_area.height;
    if (changed.isEmpty() || (!isWider && !isHigher)) {
        return changed;
    }
    for (int y = 0; isWider && y < m_area.height; ++y) {
        auto* row = reinterpret_cast<std::uint32_t*>(m_picture.row(y));
        std::fill(row + m_area.width, row + m_picture.width(), row[m_area.width - 1]);
    }
    for (int y = m_area.height; y < m_picture.height(); ++y) {
        std::memcpy(m_picture.row(y), m_picture.row(m_area.height - 1), m_picture.stride());
    }
    return wholePicture();
}

} // namespace tavi
