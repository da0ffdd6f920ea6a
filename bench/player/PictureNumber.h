#pragma once

#include "base/PixelBuffer.h"

#include <optional>

namespace tavi::bench {

/// The number that a picture of `make-take --numbered` shows at its top left: twenty squares from
/// left to right, bits from the lowest, the last four always 1010. Absent where it has none.
inline std::optional<int> numberOf(const PixelBuffer& picture) {
    constexpr int kSquare = 16; // pixels
    constexpr int kBits = 20;
    constexpr int kMark = 0b0101 << 16;
    if (picture.width() < kBits * kSquare || picture.height() < kSquare) {
        return std::nullopt;
    }
    int bits = 0;
    for (int n = 0; n < kBits; ++n) {
        const int x = n * kSquare + kSquare / 2;
        const std::uint8_t* pixel =
            picture.row(kSquare / 2) + std::ptrdiff_t{x} * PixelBuffer::kBytesPerPixel;
        bits |= (pixel[1] > 127 ? 1 : 0) << n;
    }
    return (bits & 0xF0000) == kMark ? std::optional(bits & 0xFFFF) : std::nullopt;
}

} // namespace tavi::bench
