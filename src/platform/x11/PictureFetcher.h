#pragma once

#include "base/PixelBuffer.h"
#include "platform/x11/SharedImage.h"

#include <vector>

namespace tavi {

/// What the fourth byte of a drawable's pixels is.
enum class FourthByte {
    unused,
    alpha, ///< The colours are multiplied by it.
};

/// Fetches parts of a drawable into a picture, through memory shared with the server.
///
/// Lives no longer than its connection. Threads: one at a time.
class PictureFetcher {
public:
    /// For areas that together have at most `width` x `height` pixels.
    static Result<PictureFetcher, CaptureError> make(const XConnection& x, int width, int height);

    /// What is fetched: the drawable's pixel at (x, y) is the picture's at (0, 0).
    struct Source {
        xcb_drawable_t drawable = XCB_NONE;
        int x = 0;
        int y = 0;
        FourthByte fourthByte = FourthByte::unused;
    };

    /// Fetches `areas` of the picture with one wait. False when the drawable
    /// didn't have all of them. Unused fourth bytes become 255; a colour above its alpha
    /// becomes the alpha.
    bool fetch(const Source& source, const std::vector<PixelRect>& areas, PixelBuffer& picture);

private:
    PictureFetcher(xcb_connection_t* connection, SharedImage shared)
        : m_connection(connection),
          m_shared(std::move(shared)) {}

    void copyFromShared(std::size_t offset, const PixelRect& area, FourthByte fourthByte,
                        PixelBuffer& picture) const;

    xcb_connection_t* m_connection;
    SharedImage m_shared;
};

/// Continues the last column and row of the `width` x `height` pixels at the
/// top left to the picture's edges.
void repeatEdges(PixelBuffer& picture, int width, int height);

} // namespace tavi
