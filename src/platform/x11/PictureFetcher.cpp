#include "platform/x11/PictureFetcher.h"

#include <algorithm>
#include <cstring>

namespace tavi {

namespace {

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
    const std::size_t pixels = static_cast<std::size_t>(width) * static_cast<std::size_t>(height);
    auto shared = SharedImage::make(x, pixels * PixelBuffer::kBytesPerPixel);
    if (!shared) {
        return fail(shared.error());
    }
    return PictureFetcher(x.get(), std::move(*shared));
}

/// The requests go out together, each into its own part of the shared memory.
bool PictureFetcher::fetch(const Source& source, const std::vector<PixelRect>& areas,
                           PixelBuffer& picture) {
    std::vector<xcb_shm_get_image_cookie_t> cookies;
    std::vector<std::size_t> offsets;
    std::size_t offset = 0;
    for (const auto& area : areas) {
        offsets.push_back(offset);
        if (area.isEmpty()) {
            cookies.push_back({});
            continue;
        }
        const xcb_rectangle_t r = wire(area.movedBy(source.x, source.y));
        cookies.push_back(xcb_shm_get_image(
            m_connection, source.drawable, r.x, r.y, r.width, r.height, ~0U,
            XCB_IMAGE_FORMAT_Z_PIXMAP, m_shared.segment(), static_cast<std::uint32_t>(offset)));
        offset += static_cast<std::size_t>(area.area()) * PixelBuffer::kBytesPerPixel;
    }
    bool isComplete = true;
    for (std::size_t i = 0; i < areas.size(); ++i) {
        if (areas[i].isEmpty()) {
            continue;
        }
        const XOwned<xcb_shm_get_image_reply_t> reply(
            xcb_shm_get_image_reply(m_connection, cookies[i], nullptr));
        if (reply) {
            copyFromShared(offsets[i], areas[i], source.fourthByte, picture);
        }
        isComplete = isComplete && reply;
    }
    return isComplete;
}

void PictureFetcher::copyFromShared(std::size_t offset, const PixelRect& area,
                                    FourthByte fourthByte, PixelBuffer& picture) const {
    constexpr std::uint32_t kOpaque = 0xFF000000;
    const auto* from = reinterpret_cast<const std::uint32_t*>(m_shared.bytes().data() + offset);
    for (int y = 0; y < area.height; ++y) {
        auto* to = reinterpret_cast<std::uint32_t*>(picture.row(area.y + y)) + area.x;
        if (fourthByte == FourthByte::alpha) {
            std::transform(from, from + area.width, to, bounded);
        } else {
            std::transform(from, from + area.width, to,
                           [](std::uint32_t pixel) { return pixel | kOpaque; });
        }
        from += area.width;
    }
}

void repeatEdges(PixelBuffer& picture, int width, int height) {
    for (int y = 0; width < picture.width() && y < height; ++y) {
        auto* row = reinterpret_cast<std::uint32_t*>(picture.row(y));
        std::fill(row + width, row + picture.width(), row[width - 1]);
    }
    for (int y = height; y < picture.height(); ++y) {
        std::memcpy(picture.row(y), picture.row(height - 1), picture.stride());
    }
}

} // namespace tavi
