#pragma once

#include "capture/PictureEdges.h"
#include "platform/x11/FramePool.h"

#include <cstddef>
#include <vector>

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

    /// Asks for what of `region` the source has, to be written into `frame`, which nobody looks at
    /// until finish(). One at a time.
    void request(const Source& source, const PixelRegion& region, FramePool::Frame& frame);

    /// Whether all of that has come. Reads the connection.
    bool hasCome();

    /// Waits for what hasn't come and completes the frame that was given to request(). False when
    /// the drawable didn't have all of it. Unused fourth bytes become anything; a colour above its
    /// alpha becomes the alpha.
    bool finish(FramePool::Frame& frame);

private:
    /// One piece on its way.
    struct Request {
        PixelRect area; ///< Of the picture.
        bool isInPlace = false;
        std::size_t offset = 0; ///< Bytes into the memory that it goes to.
        xcb_shm_get_image_cookie_t cookie{};
    };

    PictureFetcher(xcb_connection_t* connection, SharedImage scratch)
        : m_connection(connection),
          m_scratch(std::move(scratch)) {}

    static Request placed(const PixelRect& piece, const Source& source, const PixelBuffer& image,
                          std::size_t scratchEnd);
    void copyFromScratch(std::size_t offset, const PixelRect& area, FourthByte fourthByte,
                         PixelBuffer& picture) const;

    void note(bool isComplete);

    xcb_connection_t* m_connection;
    SharedImage m_scratch;
    std::vector<Request> m_requests;
    std::size_t m_answered = 0; ///< So many of them, the first ones.
    bool m_isComplete = true;   ///< As far as they are answered.
    FourthByte m_fourthByte = FourthByte::unused;
};

} // namespace tavi
