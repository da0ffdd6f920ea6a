#pragma once

#include "base/PixelBuffer.h"

#include <array>
#include <cmath>
#include <cstdint>
#include <memory>
#include <ostream>
#include <random>

namespace tavi::test {

struct Pixel {
    int blue = 0;
    int green = 0;
    int red = 0;
    int alpha = 0;

    bool operator==(const Pixel&) const = default;
};

inline void PrintTo(const Pixel& p, std::ostream* out) {
    *out << "B" << p.blue << " G" << p.green << " R" << p.red << " A" << p.alpha;
}

/// Column `x`, row `y` from the top.
inline Pixel pixelAt(const PixelBuffer& image, int x, int y) {
    const std::uint8_t* p = image.row(y) + std::ptrdiff_t{4} * x;
    return {p[0], p[1], p[2], p[3]};
}

inline void setPixel(PixelBuffer& image, int x, int y, Pixel pixel) {
    std::uint8_t* p = image.row(y) + std::ptrdiff_t{4} * x;
    p[0] = static_cast<std::uint8_t>(pixel.blue);
    p[1] = static_cast<std::uint8_t>(pixel.green);
    p[2] = static_cast<std::uint8_t>(pixel.red);
    p[3] = static_cast<std::uint8_t>(pixel.alpha);
}

inline PixelBuffer plainPicture(int width, int height, Pixel pixel) {
    PixelBuffer image(width, height);
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            setPixel(image, x, y, pixel);
        }
    }
    return image;
}

/// Opaque noise.
inline PixelBuffer noisePicture(int width, int height, unsigned seed) {
    std::mt19937 random(seed);
    std::uniform_int_distribution<int> byte(0, 255);
    PixelBuffer image(width, height);
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            setPixel(image, x, y, {byte(random), byte(random), byte(random), 255});
        }
    }
    return image;
}

inline PixelBufferPtr shared(PixelBuffer image) {
    return std::make_shared<const PixelBuffer>(std::move(image));
}

/// The largest difference of any channel of two pictures of one size.
inline int largestDifference(const PixelBuffer& a, const PixelBuffer& b) {
    int largest = 0;
    for (int y = 0; y < a.height(); ++y) {
        for (int x = 0; x < a.width() * 4; ++x) {
            largest = std::max(largest, std::abs(a.row(y)[x] - b.row(y)[x]));
        }
    }
    return largest;
}

} // namespace tavi::test
