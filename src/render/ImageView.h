#pragma once

#include "base/PixelBuffer.h"

#include <cstddef>
#include <cstdint>

namespace tavi {

/// Borrowed pixels: 8-bit BGRA, premultiplied, sRGB-encoded values, rows
/// top-down. The owner outlives the view.
struct ConstImageView {
    const std::uint8_t* data = nullptr;
    int width = 0;
    int height = 0;
    std::size_t stride = 0; ///< Bytes from one row to the next.

    ConstImageView() = default;
    ConstImageView(const std::uint8_t* pixels, int w, int h, std::size_t rowBytes)
        : data(pixels),
          width(w),
          height(h),
          stride(rowBytes) {}
    // NOLINTNEXTLINE(google-explicit-constructor): a buffer is a view of itself
    ConstImageView(const PixelBuffer& buffer)
        : data(buffer.data()),
          width(buffer.width()),
          height(buffer.height()),
          stride(buffer.stride()) {}

    const std::uint8_t* row(int y) const { return data + stride * static_cast<std::size_t>(y); }
    bool empty() const { return width <= 0 || height <= 0; }
};

/// Borrowed pixels that may be written; see ConstImageView.
struct ImageView {
    std::uint8_t* data = nullptr;
    int width = 0;
    int height = 0;
    std::size_t stride = 0; ///< Bytes from one row to the next.

    ImageView() = default;
    ImageView(std::uint8_t* pixels, int w, int h, std::size_t rowBytes)
        : data(pixels),
          width(w),
          height(h),
          stride(rowBytes) {}
    // NOLINTNEXTLINE(google-explicit-constructor): a buffer is a view of itself
    ImageView(PixelBuffer& buffer)
        : data(buffer.data()),
          width(buffer.width()),
          height(buffer.height()),
          stride(buffer.stride()) {}

    // NOLINTNEXTLINE(google-explicit-constructor): what can be written can be read
    operator ConstImageView() const { return {data, width, height, stride}; }

    std::uint8_t* row(int y) const { return data + stride * static_cast<std::size_t>(y); }
    bool empty() const { return width <= 0 || height <= 0; }
};

/// Whole pixels, rows counted from the top; the ends are exclusive.
struct PixelBounds {
    int left = 0;
    int top = 0;
    int right = 0;
    int bottom = 0;

    int width() const { return right - left; }
    int height() const { return bottom - top; }
    bool empty() const { return right <= left || bottom <= top; }
    bool operator==(const PixelBounds&) const = default;
};

} // namespace tavi
