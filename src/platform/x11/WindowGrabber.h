#pragma once

#include "platform/x11/DamageWatch.h"
#include "platform/x11/Grabber.h"
#include "platform/x11/PictureFetcher.h"
#include "platform/x11/WindowShape.h"

#include <cstdint>
#include <memory>

namespace tavi {

/// One window without its decoration. While this lives, the server keeps the
/// window's picture in memory of its own, so that what covers the window and where it is don't
/// matter.
///
/// A window that is not shown keeps its last picture. One that changes its size stays at the
/// top left of the picture: cut off, or continued by its last column and row.
/// What lies outside of the outline of a shaped window is transparent. Unless the window has one or
/// an alpha channel of its own when this is made, it is opaque, and the fourth byte of its pixels
/// means nothing.
/// It owns its connection and reads its events.
class WindowGrabber final : public Grabber {
public:
    /// The picture is `width` x `height` pixels, as large as the window where
    /// that is 0. The window must be shown. Checks everything that grabbing needs, and
    /// waits for the window's program to paint what was covered until now.
    static Result<std::unique_ptr<WindowGrabber>, CaptureError>
    open(const std::string& displayName, std::uint32_t windowId, int width, int height);

    int descriptor() const override { return xcb_get_file_descriptor(m_x.get()); }
    bool hasNews() override;
    std::optional<CaptureError> failure() const override;
    bool hasAlpha() const override { return m_source.fourthByte != FourthByte::unused; }
    bool request() override;
    bool hasCome() override { return m_fetcher.hasCome(); }
    PixelBufferPtr collect() override;

    /// What hasAlpha() of a grabber of the window would say; false for one that is not there.
    static bool hasAlpha(const std::string& displayName, std::uint32_t windowId);

private:
    WindowGrabber(XConnection x, xcb_window_t window, PictureFetcher fetcher, DamageWatch damage,
                  FramePool frames, int depth);

    void handleEvent(const xcb_generic_event_t& event);
    void awaitRepaint();
    PixelRegion takeChanges();
    bool takePixmap();

    XConnection m_x;
    xcb_window_t m_window;
    WindowShape m_shape;
    PictureFetcher m_fetcher;
    DamageWatch m_damage;
    PictureFetcher::Source m_source; ///< The window's memory, past its border.
    FramePool m_frames;
    FramePool::FramePtr m_pending; ///< What was asked for.
    bool m_hasNews = true;
    bool m_mustTakePixmap = true; ///< The window may have got new memory.
    bool m_hasNewShape = false;
    bool m_isClosed = false;
};

} // namespace tavi
