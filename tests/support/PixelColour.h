#pragma once

#include "base/PixelBuffer.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>

namespace tavi::test {

/// How far the pixel at (x, y) is from a colour 0xRRGGBB: the largest difference of a channel.
inline int colourDistance(const PixelBuffer& picture, int x, int y, std::uint32_t colour) {
    const std::uint8_t* pixel = picture.row(y) + std::ptrdiff_t{x} * PixelBuffer::kBytesPerPixel;
    int largest = 0;
    for (int channel = 0; channel < 3; ++channel) {
        const int wanted = static_cast<int>(colour >> (8 * channel) & 255);
        largest = std::max(largest, std::abs(pixel[channel] - wanted));
    }
    return largest;
}

} // namespace tavi::test
