#pragma once

#include "base/PixelBuffer.h"
#include "platform/x11/SharedImage.h"
#include "platform/x11/XConnection.h"

#include <xcb/damage.h>

#include <cstdint>
#include <optional>
#include <vector>

namespace tavi {

/// Keeps a picture of one area of the root window up to date by fetching what
/// was damaged. The cursor is not in it; alpha is 255 everywhere.
///
/// Threads: one at a time. It owns its connection and reads its events.
class ScreenGrabber {
public:
    /// The picture is `width` x `height` pixels. Where that is more than the
    /// monitor, the last column and row are repeated. Checks everything that
    /// grabbing needs.
    static Result<ScreenGrabber, CaptureError> open(const std::string& displayName,
                                                    std::uint32_t monitorId, int width, int height);

    /// Becomes readable when the server has news; hasNews() must have been
    /// asked since the last grab() before anyone waits on it.
    int descriptor() const { return xcb_get_file_descriptor(m_x.get()); }

    /// Reads the server's events: true when something in or near the area may
    /// have changed since the last grab().
    bool hasNews();

    bool isBroken() const { return m_x.isBroken(); }

    /// Brings the picture up to date. The area of it that changed, empty when
    /// nothing in it did; the whole picture at the first call.
    PixelRect grab();

    const PixelBuffer& picture() const { return m_picture; }

private:
    ScreenGrabber(XConnection x, SharedImage shared, PixelRect area, int width, int height);

    void watch();
    std::vector<PixelRect> takeDamage();
    bool fetch(const std::vector<PixelRect>& areas);
    void copyFromShared(std::size_t offset, const PixelRect& area);
    void blacken(const PixelRect& area);
    PixelRect repeatEdges(PixelRect changed);
    PixelRect wholePicture() const { return {0, 0, m_picture.width(), m_picture.height()}; }

    XConnection m_x;
    SharedImage m_shared;
    PixelRect m_area; ///< What is shown, on the root window.
    PixelRect m_root; ///< The root window as it is now.
    PixelBuffer m_picture;
    std::uint8_t m_damageEvent = 0;
    xcb_damage_damage_t m_damage = 0;
    std::uint32_t m_region = 0;     ///< Server-side scratch region for the damage.
    std::uint32_t m_areaRegion = 0; ///< Server-side region of `m_area`.
    bool m_hasNews = true;
    bool m_mustFetchAll = true;
};

} // namespace tavi
