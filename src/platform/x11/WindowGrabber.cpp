#include "platform/x11/WindowGrabber.h"

#include "platform/x11/PixelFormat.h"

#include <xcb/composite.h>

#include <algorithm>
#include <chrono>
#include <poll.h>
#include <utility>

namespace tavi {

namespace {

/// A program that painted nothing for this long after it was asked to is done. Milliseconds.
constexpr int kQuietMs = 40;
/// A program that never stops painting isn't waited for any longer.
constexpr std::chrono::milliseconds kLongestRepaint{200};

CaptureError gone(const char* why) {
    return {CaptureError::Kind::sourceGone, why};
}

/// 0.2 is the first version that gives a window's memory away.
Result<void, CaptureError> requireComposite(const XConnection& x) {
    const auto extension = x.require(xcb_composite_id, "Composite");
    if (!extension) {
        return fail(extension.error());
    }
    const XOwned<xcb_composite_query_version_reply_t> version(xcb_composite_query_version_reply(
        x.get(), xcb_composite_query_version(x.get(), 0, 2), nullptr));
    const bool isNewEnough = version && (version->major_version > 0 || version->minor_version >= 2);
    return isNewEnough ? Result<void, CaptureError>()
                       : fail(CaptureError{CaptureError::Kind::missingExtension, "Composite 0.2"});
}

/// What a window is when a stream of it begins.
struct Geometry {
    int width = 0;
    int height = 0;
    int depth = 0;
};

Result<Geometry, CaptureError> geometryOf(const XConnection& x, xcb_window_t window) {
    xcb_connection_t* c = x.get();
    const auto attributesCookie = xcb_get_window_attributes(c, window);
    const auto geometryCookie = xcb_get_geometry(c, window);
    const XOwned<xcb_get_window_attributes_reply_t> attributes(
        xcb_get_window_attributes_reply(c, attributesCookie, nullptr));
    const XOwned<xcb_get_geometry_reply_t> geometry(
        xcb_get_geometry_reply(c, geometryCookie, nullptr));
    if (!attributes || !geometry || attributes->_class != XCB_WINDOW_CLASS_INPUT_OUTPUT) {
        return fail(gone("the window was closed"));
    }
    if (attributes->map_state != XCB_MAP_STATE_VIEWABLE) {
        return fail(gone("the window is minimized"));
    }
    const auto format = requirePixelFormat(x, attributes->visual, geometry->depth);
    return format ? Result<Geometry, CaptureError>(
                        Geometry{geometry->width, geometry->height, geometry->depth})
                  : fail(format.error());
}

FourthByte fourthByteOf(int depth, const WindowShape& shape) {
    if (depth == 32) {
        return FourthByte::alpha;
    }
    return shape.isShaped() ? FourthByte::opaque : FourthByte::unused;
}

/// Has the server keep the window's picture by itself, and tell what happens to the window.
Result<void, CaptureError> redirect(const XConnection& x, xcb_window_t window) {
    const std::uint32_t events = XCB_EVENT_MASK_STRUCTURE_NOTIFY | XCB_EVENT_MASK_VISIBILITY_CHANGE;
    const auto selected =
        xcb_change_window_attributes_checked(x.get(), window, XCB_CW_EVENT_MASK, &events);
    const auto redirected =
        xcb_composite_redirect_window_checked(x.get(), window, XCB_COMPOSITE_REDIRECT_AUTOMATIC);
    const XOwned<xcb_generic_error_t> selectError(xcb_request_check(x.get(), selected));
    const XOwned<xcb_generic_error_t> redirectError(xcb_request_check(x.get(), redirected));
    return selectError || redirectError ? fail(gone("the window was closed"))
                                        : Result<void, CaptureError>();
}

} // namespace

Result<std::unique_ptr<WindowGrabber>, CaptureError>
WindowGrabber::open(const std::string& displayName, std::uint32_t windowId, int width, int height) {
    auto x = XConnection::open(displayName);
    if (!x) {
        return fail(x.error());
    }
    if (const auto composite = requireComposite(*x); !composite) {
        return fail(composite.error());
    }
    const auto geometry = geometryOf(*x, windowId);
    if (!geometry) {
        return fail(geometry.error());
    }
    width = width > 0 ? width : geometry->width;
    height = height > 0 ? height : geometry->height;
    auto frames = FramePool::make(*x, width, height);
    auto fetcher = PictureFetcher::make(*x, width, height);
    auto damage = DamageWatch::open(*x, windowId);
    if (!frames || !fetcher || !damage) {
        return fail(!frames ? frames.error() : !fetcher ? fetcher.error() : damage.error());
    }
    if (const auto redirected = redirect(*x, windowId); !redirected) {
        return fail(redirected.error());
    }
    std::unique_ptr<WindowGrabber> grabber(new WindowGrabber(std::move(*x), windowId,
                                                             std::move(*fetcher), *damage,
                                                             std::move(*frames), geometry->depth));
    grabber->awaitRepaint();
    return grabber;
}

WindowGrabber::WindowGrabber(XConnection x, xcb_window_t window, PictureFetcher fetcher,
                             DamageWatch damage, FramePool frames, int depth)
    : m_x(std::move(x)),
      m_window(window),
      m_shape(m_x, window),
      m_fetcher(std::move(fetcher)),
      m_damage(damage),
      m_frames(std::move(frames)) {
    m_source.fourthByte = fourthByteOf(depth, m_shape);
}

bool WindowGrabber::hasAlpha(const std::string& displayName, std::uint32_t windowId) {
    const auto x = XConnection::open(displayName);
    if (!x) {
        return false;
    }
    const auto geometry = geometryOf(*x, windowId);
    return geometry &&
           fourthByteOf(geometry->depth, WindowShape(*x, windowId)) != FourthByte::unused;
}

/// The server never had a picture of what was covered: it asked the program to
/// paint that when it began to keep the window's picture.
void WindowGrabber::awaitRepaint() {
    const auto end = std::chrono::steady_clock::now() + kLongestRepaint;
    pollfd news{descriptor(), POLLIN, 0};
    do {
        if (hasNews()) {
            m_damage.takeAll(m_frames.wholePicture()); // to be told of the next
            xcb_flush(m_x.get());
            m_hasNews = false;
            hasNews();
        }
    } while ((m_hasNews || poll(&news, 1, kQuietMs) > 0) && std::chrono::steady_clock::now() < end);
    m_hasNews = true;
}

bool WindowGrabber::hasNews() {
    forEachEvent(m_x.get(), [this](const xcb_generic_event_t& event) { handleEvent(event); });
    return m_hasNews;
}

void WindowGrabber::handleEvent(const xcb_generic_event_t& event) {
    switch (event.response_type & 0x7F) {
    case XCB_DESTROY_NOTIFY:
        m_isClosed = true;
        break;
    case XCB_CONFIGURE_NOTIFY: // perhaps another size
    case XCB_MAP_NOTIFY:
    case XCB_REPARENT_NOTIFY:
    case XCB_VISIBILITY_NOTIFY: // shown again together with what it lies in
        m_mustTakePixmap = true;
        m_hasNews = true;
        break;
    default:
        if (m_shape.note(event)) {
            m_hasNewShape = true;
            m_hasNews = true;
        } else {
            m_hasNews = m_damage.note(event) || m_hasNews;
        }
    }
}

std::optional<CaptureError> WindowGrabber::failure() const {
    if (m_x.isBroken()) {
        return CaptureError{CaptureError::Kind::connectionLost, ""};
    }
    return m_isClosed ? std::optional(CaptureError{CaptureError::Kind::sourceClosed, ""})
                      : std::nullopt;
}

bool WindowGrabber::request() {
    m_hasNews = false;
    const PixelRegion changes = takeChanges();
    m_frames.markStale(changes);
    m_pending = changes.isEmpty() ? nullptr : m_frames.freeFrame(m_x);
    if (!m_pending) {
        xcb_flush(m_x.get()); // else the damage stays with the server, and it is silent
        return false;
    }
    m_fetcher.request(m_source, m_pending->stale, *m_pending);
    return true;
}

PixelBufferPtr WindowGrabber::collect() {
    const auto frame = std::exchange(m_pending, nullptr);
    if (!m_fetcher.finish(*frame)) {
        return nullptr;
    }
    frame->stale.clear();
    if (hasAlpha()) {
        m_shape.cut(frame->image, m_source.content);
    }
    repeatEdges(frame->image, m_source.content.width, m_source.content.height);
    return FramePool::publish(frame);
}

/// Where the picture is no longer what it was.
PixelRegion WindowGrabber::takeChanges() {
    const bool hasNewMemory = m_mustTakePixmap && takePixmap();
    const bool hasNewShape = std::exchange(m_hasNewShape, false);
    return hasNewMemory || hasNewShape ? m_damage.takeAll(m_frames.wholePicture())
                                       : m_damage.take(m_source.content);
}

/// Takes hold of the memory that the window has now. False, and what was held
/// stays, when it has none, as a window that isn't shown.
bool WindowGrabber::takePixmap() {
    xcb_connection_t* c = m_x.get();
    m_mustTakePixmap = false;
    const xcb_pixmap_t pixmap = xcb_generate_id(c);
    const auto named = xcb_composite_name_window_pixmap_checked(c, m_window, pixmap);
    const auto sizeCookie = xcb_get_geometry(c, pixmap);
    const auto windowCookie = xcb_get_geometry(c, m_window);
    const XOwned<xcb_generic_error_t> error(xcb_request_check(c, named));
    const XOwned<xcb_get_geometry_reply_t> size(xcb_get_geometry_reply(c, sizeCookie, nullptr));
    const XOwned<xcb_get_geometry_reply_t> window(xcb_get_geometry_reply(c, windowCookie, nullptr));
    if (error || !size || !window) {
        return false;
    }
    if (m_source.drawable != XCB_NONE) {
        xcb_free_pixmap(c, m_source.drawable);
    }
    const int border = window->border_width;
    m_source.drawable = pixmap;
    m_source.x = border;
    m_source.y = border;
    m_source.content = {0, 0, std::min(size->width - 2 * border, m_frames.width()),
                        std::min(size->height - 2 * border, m_frames.height())};
    return true;
}

} // namespace tavi
