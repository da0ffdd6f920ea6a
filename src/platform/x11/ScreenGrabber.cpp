#include "platform/x11/ScreenGrabber.h"

#include "platform/x11/PixelFormat.h"

#include <xcb/randr.h>

#include <algorithm>
#include <cstring>

namespace tavi {

namespace {

Result<Monitor, CaptureError> findMonitor(const XConnection& x, std::uint32_t id) {
    const auto monitors = activeMonitors(x);
    if (!monitors) {
        return fail(monitors.error());
    }
    const auto found = std::find_if(monitors->begin(), monitors->end(),
                                    [id](const Monitor& m) { return m.id == id; });
    if (found == monitors->end()) {
        return fail(CaptureError{CaptureError::Kind::sourceGone, "the display was disconnected"});
    }
    return *found;
}

void blacken(PixelBuffer& picture) {
    std::memset(picture.data(), 0, picture.stride() * static_cast<std::size_t>(picture.height()));
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
    const auto monitor = findMonitor(*x, monitorId);
    if (!monitor) {
        return fail(monitor.error());
    }
    width = width > 0 ? width : monitor->area.width;
    height = height > 0 ? height : monitor->area.height;
    auto frames = FramePool::make(*x, width, height);
    auto fetcher = PictureFetcher::make(*x, width, height);
    auto damage = DamageWatch::open(*x, x->root());
    if (!frames || !fetcher || !damage) {
        return fail(!frames ? frames.error() : !fetcher ? fetcher.error() : damage.error());
    }
    return std::unique_ptr<ScreenGrabber>(new ScreenGrabber(std::move(*x), std::move(*fetcher),
                                                            *damage, std::move(*frames), *monitor));
}

ScreenGrabber::ScreenGrabber(XConnection x, PictureFetcher fetcher, DamageWatch damage,
                             FramePool frames, const Monitor& monitor)
    : m_x(std::move(x)),
      m_fetcher(std::move(fetcher)),
      m_damage(damage),
      m_frames(std::move(frames)),
      m_monitor(monitor.id),
      m_monitorEvent(watchMonitors(m_x)),
      m_area{monitor.area.x, monitor.area.y, std::min(monitor.area.width, m_frames.width()),
             std::min(monitor.area.height, m_frames.height())},
      m_root{0, 0, m_x.screen().width_in_pixels, m_x.screen().height_in_pixels} {
    const std::uint32_t events = XCB_EVENT_MASK_STRUCTURE_NOTIFY; // for the root's size
    xcb_change_window_attributes(m_x.get(), m_x.root(), XCB_CW_EVENT_MASK, &events);
    xcb_flush(m_x.get());
}

bool ScreenGrabber::hasNews() {
    forEachEvent(m_x.get(), [this](const xcb_generic_event_t& event) {
        if (m_damage.note(event)) {
            m_hasNews = true;
        } else {
            noteScreenEvent(event);
        }
    });
    return m_hasNews;
}

/// The root window's size and the monitors on it may have changed. A list that can't be had says
/// nothing about them.
void ScreenGrabber::noteScreenEvent(const xcb_generic_event_t& event) {
    const int type = event.response_type & 0x7F;
    if (type == XCB_CONFIGURE_NOTIFY) {
        const auto& c = reinterpret_cast<const xcb_configure_notify_event_t&>(event);
        m_root = {0, 0, c.width, c.height};
        m_hasNews = true;
        m_mustFetchAll = true;
    }
    const bool concernsMonitors = type == XCB_CONFIGURE_NOTIFY ||
                                  type == m_monitorEvent + XCB_RANDR_SCREEN_CHANGE_NOTIFY ||
                                  type == m_monitorEvent + XCB_RANDR_NOTIFY;
    if (concernsMonitors) {
        const auto monitor = findMonitor(m_x, m_monitor);
        m_isGone = !monitor && monitor.error().kind == CaptureError::Kind::sourceGone;
    }
}

std::optional<CaptureError> ScreenGrabber::failure() const {
    if (m_x.isBroken()) {
        return CaptureError{CaptureError::Kind::connectionLost, ""};
    }
    return m_isGone ? std::optional(CaptureError{CaptureError::Kind::displayGone, ""})
                    : std::nullopt;
}

PixelBufferPtr ScreenGrabber::grab() {
    m_hasNews = false;
    const PixelRegion changes = takeChanges();
    m_frames.markStale(changes);
    const auto frame = changes.isEmpty() ? nullptr : m_frames.freeFrame(m_x);
    if (!frame || !bringUpToDate(*frame)) {
        // What was missed is fetched with the next change. Where the root shrank under the
        // request, its news is on the way.
        m_mustFetchAll = m_mustFetchAll || !changes.isEmpty();
        xcb_flush(m_x.get()); // else the damage stays with the server, and it is silent
        return nullptr;
    }
    m_mustFetchAll = false;
    return FramePool::publish(frame);
}

/// Where the picture is no longer what it was.
PixelRegion ScreenGrabber::takeChanges() {
    if (m_mustFetchAll) {
        m_damage.takeAll(m_area);
        return PixelRegion(m_frames.wholePicture());
    }
    return m_damage.take(m_area).within(m_area.intersected(m_root), -m_area.x, -m_area.y);
}

/// False when the root window doesn't have what is to be fetched.
bool ScreenGrabber::bringUpToDate(FramePool::Frame& frame) {
    const PixelRect shown = m_area.intersected(m_root);
    const PixelRect content = shown.movedBy(-m_area.x, -m_area.y);
    if (shown != m_area && frame.stale.bounds() == m_frames.wholePicture()) {
        blacken(frame.image);
    }
    const PictureFetcher::Source source{m_x.root(), m_area.x, m_area.y, content,
                                        FourthByte::unused};
    if (!m_fetcher.fetch(source, frame.stale, frame)) {
        return false;
    }
    frame.stale.clear();
    repeatEdges(frame.image, m_area.width, m_area.height);
    return true;
}

} // namespace tavi
