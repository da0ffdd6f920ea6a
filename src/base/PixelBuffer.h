#pragma once

#include <cassert>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <new>

namespace tavi {

/// A picture in memory: 8-bit BGRA, premultiplied, sRGB-encoded values, rows
/// top-down. The first byte of every row is aligned to 64 bytes.
///
/// Thread: as a plain value; shared between threads only as PixelBufferPtr.
class PixelBuffer {
public:
    static constexpr std::size_t kAlignment = 64;
    static constexpr int kBytesPerPixel = 4;

    PixelBuffer() = default;

    /// A transparent picture. Width and height are not negative; either may be 0.
    PixelBuffer(int width, int height)
        : m_width(width),
          m_height(height),
          m_stride((static_cast<std::size_t>(width) * kBytesPerPixel + kAlignment - 1) /
                   kAlignment * kAlignment) {
        assert(width >= 0 && height >= 0);
        const std::size_t bytes = m_stride * static_cast<std::size_t>(height);
        if (bytes > 0) {
            m_data.reset(static_cast<std::uint8_t*>(std::aligned_alloc(kAlignment, bytes)));
            if (!m_data) {
                throw std::bad_alloc();
            }
            std::memset(m_data.get(), 0, bytes);
        }
    }

    int width() const { return m_width; }
    int height() const { return m_height; }
    std::size_t stride() const { return m_stride; } ///< Bytes from one row to the next.
    bool empty() const { return m_width == 0 || m_height == 0; }

    std::uint8_t* data() { return m_data.get(); }
    const std::uint8_t* data() const { return m_data.get(); }
    std::uint8_t* row(int y) { return m_data.get() + m_stride * static_cast<std::size_t>(y); }
    const std::uint8_t* row(int y) const {
        return m_data.get() + m_stride * static_cast<std::size_t>(y);
    }

private:
    struct Free {
        void operator()(std::uint8_t* p) const { std::free(p); }
    };

    int m_width = 0;
    int m_height = 0;
    std::size_t m_stride = 0;
    std::unique_ptr<std::uint8_t[], Free> m_data;
};

/// A finished picture that may be shared between threads.
using PixelBufferPtr = std::shared_ptr<const PixelBuffer>;

} // namespace tavi
