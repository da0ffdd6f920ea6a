#pragma once

#include "platform/x11/DamageWatch.h"
#include "platform/x11/FramePool.h"
#include "platform/x11/Grabber.h"
#include "platform/x11/Monitors.h"
#include "platform/x11/PictureFetcher.h"

#include <cstdint>
#include <memory>

namespace tavi {

/// One monitor's area of the root window, wherever that is. It ends when the monitor
/// is no more. It is opaque; the fourth byte of its pixels means nothing.
///
/// A monitor that changes its mode stays at the top left of the picture: cut off, or with black
/// beside it.
///
/// It owns its connection and reads its events.
class ScreenGrabber final : public Grabber {
public:
    /// The picture is `width` x `height` pixels, as large as the monitor where
    /// that is 0. Where it is more than the monitor, the last column and row are repeated.
    /// Checks everything that grabbing needs.
    static Result<std::unique_ptr<ScreenGrabber>, CaptureError>
    open(const std::string& displayName, std::uint32_t monitorId, int width, int height);

    int descriptor() const override { return xcb_get_file_descriptor(m_x.get()); }
    bool hasNews() override;
    std::optional<CaptureError> failure() const override;
    bool hasAlpha() const override { return false; }
    bool request() override;
    bool hasCome() override { return m_fetcher.hasCome(); }
    PixelBufferPtr collect() override;
    std::optional<Rect> move() const override { return m_move; }

    /// Where what is shown lies in the global space.
    Rect frame() const { return m_x.toGlobal(m_area); }

private:
    ScreenGrabber(XConnection x, PictureFetcher fetcher, DamageWatch damage, FramePool frames,
                  const Monitor& monitor);

    void noteScreenEvent(const xcb_generic_event_t& event);
    void show(const PixelRect& monitor);
    bool fillsPicture() const;
    PixelRegion takeChanges();
    void requestStale(FramePool::Frame& frame);

    XConnection m_x;
    PictureFetcher m_fetcher;
    DamageWatch m_damage;
    FramePool m_frames;
    std::uint32_t m_monitor;
    int m_monitorEvent = 0; ///< The number of RandR's first event.
    PixelRect m_area;       ///< What is shown, on the root window.
    PixelRect m_firstArea;  ///< What was at first.
    PixelRect m_root;       ///< The root window as it is now.
    bool m_hasNews = true;
    bool m_mustFetchAll = true;
    bool m_hasMoved = false; ///< Since the last picture was asked for.
    std::optional<Rect> m_move;
    FramePool::FramePtr m_pending; ///< What was asked for.
    bool m_isGone = false;         ///< The monitor.
};

} // namespace tavi
