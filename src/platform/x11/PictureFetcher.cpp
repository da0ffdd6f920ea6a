#include "platform/x11/PictureFetcher.h"

#include <xcb/xcbext.h>

#include <algorithm>
#include <cstring>

namespace tavi {

namespace {

constexpr std::size_t kPixel = PixelBuffer::kBytesPerPixel;

/// A premultiplied pixel of a program that didn't keep to the rule that no
/// colour is above its alpha.
std::uint32_t bounded(std::uint32_t pixel) {
    const std::uint32_t alpha = pixel >> 24;
    if (alpha == 255) {
        return pixel;
    }
    const std::uint32_t blue = std::min(pixel & 0xFF, alpha);
    const std::uint32_t green = std::min(pixel >> 8 & 0xFF, alpha);
    const std::uint32_t red = std::min(pixel >> 16 & 0xFF, alpha);
    return alpha << 24 | red << 16 | green << 8 | blue;
}

} // namespace

Result<PictureFetcher, CaptureError> PictureFetcher::make(const XConnection& x, int width,
                                                          int height) {
    auto scratch = SharedImage::make(x, PixelBuffer::bytesFor(width, height));
    if (!scratch) {
        return fail(scratch.error());
    }
    return PictureFetcher(x.get(), std::move(*scratch));
}

/// Where a piece is to go, without its request.
PictureFetcher::Request PictureFetcher::placed(const PixelRect& piece, const Source& source,
                                               const PixelBuffer& image, std::size_t scratchEnd) {
    const int width = image.width();
    const bool isInPlace = source.fourthByte == FourthByte::unused &&
                           source.content.width == width && piece.width * 2 >= width &&
                           image.stride() == static_cast<std::size_t>(width) * kPixel;
    if (!isInPlace) {
        return {piece, false, scratchEnd, {}};
    }
    const std::size_t offset = image.stride() * static_cast<std::size_t>(piece.y);
    return {{0, piece.y, width, piece.height}, true, offset, {}};
}

/// The requests go out together, each into its own part of the memory.
void PictureFetcher::request(const Source& source, const PixelRegion& region,
                             FramePool::Frame& frame) {
    const PixelRegion wanted = region.within(source.content);
    m_requests.clear();
    m_answered = 0;
    m_isComplete = true;
    m_fourthByte = source.fourthByte;
    std::size_t scratchEnd = 0;
    for (const auto& piece : wanted.pieces()) {
        Request request = placed(piece, source, frame.image, scratchEnd);
        scratchEnd += request.isInPlace ? 0 : static_cast<std::size_t>(piece.area()) * kPixel;
        const xcb_rectangle_t r = wire(request.area.movedBy(source.x, source.y));
        const auto segment = request.isInPlace ? frame.memory.segment() : m_scratch.segment();
        request.cookie = xcb_shm_get_image(m_connection, source.drawable, r.x, r.y, r.width,
                                           r.height, ~0U, XCB_IMAGE_FORMAT_Z_PIXMAP, segment,
                                           static_cast<std::uint32_t>(request.offset));
        m_requests.push_back(request);
    }
    xcb_flush(m_connection);
}

void PictureFetcher::note(bool isComplete) {
    m_isComplete = m_isComplete && isComplete;
    ++m_answered;
}

bool PictureFetcher::hasCome() {
    for (; m_answered < m_requests.size();) {
        void* reply = nullptr;
        xcb_generic_error_t* error = nullptr;
        const auto sequence = m_requests[m_answered].cookie.sequence;
        if (xcb_poll_for_reply(m_connection, sequence, &reply, &error) == 0) {
            return false;
        }
        note(XOwned<void>(reply) != nullptr);
        const XOwned<xcb_generic_error_t> forgotten(error);
    }
    return true;
}

bool PictureFetcher::finish(FramePool::Frame& frame) {
    while (m_answered < m_requests.size()) {
        const XOwned<xcb_shm_get_image_reply_t> reply(
            xcb_shm_get_image_reply(m_connection, m_requests[m_answered].cookie, nullptr));
        note(reply != nullptr);
    }
    for (const auto& request : m_requests) {
        if (!request.isInPlace) {
            copyFromScratch(request.offset, request.area, m_fourthByte, frame.image);
        }
    }
    return m_isComplete;
}

void PictureFetcher::copyFromScratch(std::size_t offset, const PixelRect& area,
                                     FourthByte fourthByte, PixelBuffer& picture) const {
    const auto* from = reinterpret_cast<const std::uint32_t*>(m_scratch.bytes().data() + offset);
    for (int y = 0; y < area.height; ++y) {
        auto* to = reinterpret_cast<std::uint32_t*>(picture.row(area.y + y)) + area.x;
        switch (fourthByte) {
        case FourthByte::alpha:
            std::transform(from, from + area.width, to, bounded);
            break;
        case FourthByte::opaque:
            std::transform(from, from + area.width, to,
                           [](std::uint32_t pixel) { return pixel | 0xFF000000U; });
            break;
        case FourthByte::unused:
            std::memcpy(to, from, static_cast<std::size_t>(area.width) * kPixel);
            break;
        }
        from += area.width;
    }
}

} // namespace tavi
