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
    PixelBuffer(int width, int height) : PixelBuffer(width, height, nullptr) {
        const std::size_t bytes = bytesFor(width, height);
        if (bytes > 0) {
            m_data.reset(static_cast<std::uint8_t*>(std::aligned_alloc(kAlignment, bytes)));
            if (!m_data) {
                throw std::bad_alloc();
            }
            std::memset(m_data.get(), 0, bytes);
        }
    }

    /// A picture in memory of someone else, who keeps it until the picture is gone: aligned as
    /// rows are, with room for bytesFor() the size.
    static PixelBuffer over(std::uint8_t* memory, int width, int height) {
        return {width, height, memory};
    }

    /// Bytes from one row to the next in a picture of this width.
    static std::size_t strideFor(int width) {
        return (static_cast<std::size_t>(width) * kBytesPerPixel + kAlignment - 1) / kAlignment *
               kAlignment;
    }
    static std::size_t bytesFor(int width, int height) {
        return strideFor(width) * static_cast<std::size_t>(height);
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
        bool isLent;
        void operator()(std::uint8_t* p) const {
            if (!isLent) {
                std::free(p);
            }
        }
    };

    PixelBuffer(int width, int height, std::uint8_t* lent)
        : m_width(width),
          m_height(height),
          m_stride(strideFor(width)),
          m_data(lent, Free{lent != nullptr}) {
        assert(width >= 0 && height >= 0);
    }

    int m_width = 0;
    int m_height = 0;
    std::size_t m_stride = 0;
    std::unique_ptr<std::uint8_t[], Free> m_data;
};

/// A finished picture that may be shared between threads.
using PixelBufferPtr = std::shared_ptr<const PixelBuffer>;

} // namespace tavi
