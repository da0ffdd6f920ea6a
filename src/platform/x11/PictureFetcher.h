#pragma once

#include "capture/PictureEdges.h"
#include "platform/x11/FramePool.h"

namespace tavi {

/// What the fourth byte of a drawable's pixels is.
enum class FourthByte {
    unused, ///< Anything.
    alpha,  ///< The colours are multiplied by it.
    opaque, ///< Anything, and pictures are to have 255 there.
};

/// Brings pictures up to date from a drawable. What is about as wide as the picture the server
/// writes where it belongs, whole rows of it, and nothing is copied here; the rest comes
/// through a scratch picture.
///
/// Lives no longer than its connection. Threads: one at a time.
class PictureFetcher {
public:
    /// For pictures of `width` x `height` pixels.
    static Result<PictureFetcher, CaptureError> make(const XConnection& x, int width, int height);

    /// What is fetched: the drawable's pixel at (x, y) is the picture's at (0, 0).
    struct Source {
        xcb_drawable_t drawable = XCB_NONE;
        int x = 0;
        int y = 0;
        PixelRect content; ///< The part of the picture that the drawable has.
        FourthByte fourthByte = FourthByte::unused;
    };

    /// Fetches what of `region` the source has, with one wait. False when the drawable didn't have
    /// all of it. Unused fourth bytes become anything; a colour above its alpha becomes
    /// the alpha.
    bool fetch(const Source& source, const PixelRegion& region, FramePool::Frame& frame);

private:
    struct Request;

    PictureFetcher(xcb_connection_t* connection, SharedImage scratch)
        : m_connection(connection),
          m_scratch(std::move(scratch)) {}

    static Request placed(const PixelRect& piece, const Source& source, const PixelBuffer& image,
                          std::size_t scratchEnd);
    void copyFromScratch(std::size_t offset, const PixelRect& area, FourthByte fourthByte,
                         PixelBuffer& picture) const;

    xcb_connection_t* m_connection;
    SharedImage m_scratch;
};

} // namespace tavi
