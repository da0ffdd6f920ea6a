#include "platform/x11/ScreenGrabber.h"

#include "platform/x11/Monitors.h"
#include "platform/x11/PixelFormat.h"

#include <algorithm>

namespace tavi {

namespace {

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

} // namespace

Result<std::unique_ptr<ScreenGrabber>, CaptureError>
ScreenGrabber::open(const std::string& displayName, std::uint32_t monitorId, int width,
                    int height) {
    auto x = XConnection::open(displayName);
    if (!x) {
        return fail(x.error());
    }
    const xcb_screen_t& screen = x->screen();
    if (const auto format = requirePixelFormat(*x, screen.root_visual, screen.root_depth);
        !format) {
        return fail(format.error());
    }
    const auto area = areaOfMonitor(*x, monitorId);
    if (!area) {
        return fail(area.error());
    }
    auto fetcher = PictureFetcher::make(*x, area->width, area->height);
    if (!fetcher) {
        return fail(fetcher.error());
    }
    auto damage = DamageWatch::open(*x, x->root());
    if (!damage) {
        return fail(damage.error());
    }
    return std::unique_ptr<ScreenGrabber>(
        new ScreenGrabber(std::move(*x), std::move(*fetcher), *damage, *area,
                          width > 0 ? width : area->width, height > 0 ? height : area->height));
}

ScreenGrabber::ScreenGrabber(XConnection x, PictureFetcher fetcher, DamageWatch damage,
                             PixelRect area, int width, int height)
    : m_x(std::move(x)),
      m_fetcher(std::move(fetcher)),
      m_damage(damage),
      m_area{area.x, area.y, std::min(area.width, width), std::min(area.height, height)},
      m_root{0, 0, m_x.screen().width_in_pixels, m_x.screen().height_in_pixels},
      m_picture(width, height) {
    const std::uint32_t events = XCB_EVENT_MASK_STRUCTURE_NOTIFY; // for the root's size
    xcb_change_window_attributes(m_x.get(), m_x.root(), XCB_CW_EVENT_MASK, &events);
    xcb_flush(m_x.get());
}

bool ScreenGrabber::hasNews() {
    while (const XOwned<xcb_generic_event_t> event{xcb_poll_for_event(m_x.get())}) {
        if (m_damage.isNews(*event)) {
            m_hasNews = true;
        } else if ((event->response_type & 0x7F) == XCB_CONFIGURE_NOTIFY) {
            const auto& c = *reinterpret_cast<const xcb_configure_notify_event_t*>(event.get());
            m_root = {0, 0, c.width, c.height};
            m_hasNews = true;
            m_mustFetchAll = true;
        }
    }
    return m_hasNews;
}

std::optional<CaptureError> ScreenGrabber::failure() const {
    return m_x.isBroken() ? std::optional(CaptureError{CaptureError::Kind::connectionLost, ""})
                          : std::nullopt;
}

PixelRect ScreenGrabber::grab() {
    m_hasNews = false;
    std::vector<PixelRect> areas = m_damage.take(m_area);
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
        area = area.intersected(visible).movedBy(-m_area.x, -m_area.y);
        changed = changed.united(area);
    }
    if (!m_fetcher.fetch({m_x.root(), m_area.x, m_area.y, FourthByte::unused}, areas, m_picture)) {
        // The root shrank under the request; its news is on the way.
        m_mustFetchAll = true;
        return {};
    }
    m_mustFetchAll = false;
    changed = continued(changed);
    return isWhole ? wholePicture() : changed;
}

void ScreenGrabber::blacken(const PixelRect& area) {
    for (int y = area.y; y < area.y + area.height; ++y) {
        auto* row = reinterpret_cast<std::uint32_t*>(m_picture.row(y));
        std::fill(row + area.x, row + area.x + area.width, 0xFF000000);
    }
}

/// What changed once the picture's edges follow.
PixelRect ScreenGrabber::continued(const PixelRect& changed) {
    const bool isLarger = m_picture.width() > m_area.width || m_picture.height() > m_area.height;
    if (changed.isEmpty() || !isLarger) {
        return changed;
    }
    repeatEdges(m_picture, m_area.width, m_area.height);
    return wholePicture();
}

} // namespace tavi
