#include "platform/portal/CastCursor.h"

#include "capture/CursorImageBytes.h"

#include <array>
#include <cstring>
#include <spa/param/video/raw.h>

namespace tavi {

namespace {

/// No pointer comes near this; it keeps damaged metadata from asking for memory.
constexpr std::uint32_t kLargestSide = 2048;

/// Where blue, green, red and alpha stand in a pixel's four bytes; -1: opaque.
using Order = std::array<int, 4>;

std::optional<Order> orderOf(std::uint32_t format) {
    switch (format) {
    case SPA_VIDEO_FORMAT_BGRA:
        return Order{0, 1, 2, 3};
    case SPA_VIDEO_FORMAT_BGRx:
        return Order{0, 1, 2, -1};
    case SPA_VIDEO_FORMAT_RGBA:
        return Order{2, 1, 0, 3};
    case SPA_VIDEO_FORMAT_RGBx:
        return Order{2, 1, 0, -1};
    case SPA_VIDEO_FORMAT_ARGB:
        return Order{3, 2, 1, 0};
    case SPA_VIDEO_FORMAT_xRGB:
        return Order{3, 2, 1, -1};
    case SPA_VIDEO_FORMAT_ABGR:
        return Order{1, 2, 3, 0};
    case SPA_VIDEO_FORMAT_xBGR:
        return Order{1, 2, 3, -1};
    default:
        return std::nullopt;
    }
}

void copyRow(const std::uint8_t* from, const Order& order, int width, std::uint8_t* to) {
    for (int x = 0; x < width; ++x, from += 4, to += 4) {
        for (std::size_t channel = 0; channel < 4; ++channel) {
            to[channel] = order[channel] < 0 ? 255 : from[order[channel]];
        }
    }
}

/// The picture in `bytes`, which begin with its description. One without pixels is
/// a pointer that can't be seen.
std::optional<PixelBuffer> readBitmap(std::span<const std::uint8_t> bytes) {
    spa_meta_bitmap bitmap{};
    if (bytes.size() < sizeof bitmap) {
        return std::nullopt;
    }
    std::memcpy(&bitmap, bytes.data(), sizeof bitmap);
    if (bitmap.size.width == 0 || bitmap.size.height == 0 || bitmap.offset == 0) {
        return PixelBuffer(1, 1);
    }
    const auto order = orderOf(bitmap.format);
    const std::size_t row = std::size_t{bitmap.size.width} * 4;
    const std::size_t stride = bitmap.stride == 0 ? row : static_cast<std::size_t>(bitmap.stride);
    if (!order || bitmap.size.width > kLargestSide || bitmap.size.height > kLargestSide ||
        bitmap.stride < 0 || stride < row || bitmap.offset > bytes.size() ||
        stride * (bitmap.size.height - 1) + row > bytes.size() - bitmap.offset) {
        return std::nullopt;
    }
    PixelBuffer image(static_cast<int>(bitmap.size.width), static_cast<int>(bitmap.size.height));
    for (int y = 0; y < image.height(); ++y) {
        copyRow(bytes.data() + bitmap.offset + stride * static_cast<std::size_t>(y), *order,
                image.width(), image.row(y));
    }
    return image;
}

} // namespace

std::optional<CastCursor> readCastCursor(const spa_buffer& buffer) {
    const spa_meta* meta = spa_buffer_find_meta(&buffer, SPA_META_Cursor);
    if (meta == nullptr || meta->data == nullptr || meta->size < sizeof(spa_meta_cursor)) {
        return std::nullopt;
    }
    spa_meta_cursor told{};
    std::memcpy(&told, meta->data, sizeof told);
    CastCursor cursor;
    cursor.isThere = told.id != 0;
    cursor.x = told.position.x;
    cursor.y = told.position.y;
    if (!cursor.isThere || told.bitmap_offset < sizeof told || told.bitmap_offset > meta->size) {
        return cursor;
    }
    const std::span bytes(static_cast<const std::uint8_t*>(meta->data), meta->size);
    if (const auto image = readBitmap(bytes.subspan(told.bitmap_offset))) {
        cursor.image = systemCursor(*image, told.hotspot.x, told.hotspot.y);
    }
    return cursor;
}

} // namespace tavi
