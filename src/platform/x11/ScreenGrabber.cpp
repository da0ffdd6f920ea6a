#include "platform/x11/ScreenGrabber.h"

#include "platform/x11/PixelFormat.h"

#include <xcb/randr.h>

#include <algorithm>
#include <cstring>
#include <utility>

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
      m_root{0, 0, m_x.screen().width_in_pixels, m_x.screen().height_in_pixels} {
    show(monitor.area);
    m_firstArea = m_area;
    m_hasMoved = false;
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

/// Shows as much of the monitor as the picture has room for.
void ScreenGrabber::show(const PixelRect& monitor) {
    const PixelRect area{monitor.x, monitor.y, std::min(monitor.width, m_frames.width()),
                         std::min(monitor.height, m_frames.height())};
    if (area != m_area) {
        m_area = area;
        m_hasMoved = true;
        m_hasNews = true;
        m_mustFetchAll = true;
    }
}

/// As it did at first, when what the picture has more than the monitor was its last column and row.
bool ScreenGrabber::fillsPicture() const {
    return m_area.width >= m_firstArea.width && m_area.height >= m_firstArea.height;
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
        if (monitor) {
            show(monitor->area);
        }
    }
}

std::optional<CaptureError> ScreenGrabber::failure() const {
    if (m_x.isBroken()) {
        return CaptureError{CaptureError::Kind::connectionLost, ""};
    }
    return m_isGone ? std::optional(CaptureError{CaptureError::Kind::displayGone, ""})
                    : std::nullopt;
}

bool ScreenGrabber::request() {
    m_hasNews = false;
    const PixelRegion changes = takeChanges();
    m_frames.markStale(changes);
    m_pending = changes.isEmpty() ? nullptr : m_frames.freeFrame(m_x);
    if (!m_pending) {
        m_mustFetchAll = m_mustFetchAll || !changes.isEmpty();
        xcb_flush(m_x.get()); // else the damage stays with the server, and it is silent
        return false;
    }
    m_mustFetchAll = false;
    m_move = std::exchange(m_hasMoved, false) ? std::optional(frame()) : std::nullopt;
    requestStale(*m_pending);
    return true;
}

/// What the server didn't have is fetched with the next change. Where the root shrank under the
/// request, its news is on the way.
PixelBufferPtr ScreenGrabber::collect() {
    const auto frame = std::exchange(m_pending, nullptr);
    if (!m_fetcher.finish(*frame)) {
        m_mustFetchAll = true;
        return nullptr;
    }
    frame->stale.clear();
    if (fillsPicture()) {
        repeatEdges(frame->image, m_area.width, m_area.height);
    }
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

void ScreenGrabber::requestStale(FramePool::Frame& frame) {
    const PixelRect shown = m_area.intersected(m_root);
    const PixelRect content = shown.movedBy(-m_area.x, -m_area.y);
    const bool hasBlack = shown != m_area || !fillsPicture();
    if (hasBlack && frame.stale.bounds() == m_frames.wholePicture()) {
        blacken(frame.image);
    }
    const PictureFetcher::Source source{m_x.root(), m_area.x, m_area.y, content,
                                        FourthByte::unused};
    m_fetcher.request(source, frame.stale, frame);
}

} // namespace tavi
