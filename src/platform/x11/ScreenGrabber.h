#pragma once

#include "platform/x11/DamageWatch.h"
#include "platform/x11/Grabber.h"
#include "platform/x11/PictureFetcher.h"

#include <cstdint>
#include <memory>

namespace tavi {

/// One area of the root window. Alpha is 255 everywhere.
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
    PixelRect grab() override;
    const PixelBuffer& picture() const override { return m_picture; }

    /// Where what is shown lies in the global space.
    Rect frame() const { return m_x.toGlobal(m_area); }

private:
    ScreenGrabber(XConnection x, PictureFetcher fetcher, DamageWatch damage, PixelRect area,
                  int width, int height);

    void blacken(const PixelRect& area);
    PixelRect continued(const PixelRect& changed);
    PixelRect wholePicture() const { return {0, 0, m_picture.width(), m_picture.height()}; }

    XConnection m_x;
    PictureFetcher m_fetcher;
    DamageWatch m_damage;
    PixelRect m_area; ///< What is shown, on the root window.
    PixelRect m_root; ///< The root window as it is now.
    PixelBuffer m_picture;
    bool m_hasNews = true;
    bool m_mustFetchAll = true;
};

} // namespace tavi
