#pragma once

#include <cmath>
#include <cstdint>

namespace tavi::test {

/// A colour in limited range.
struct FakeYuv {
    std::uint8_t y, u, v;
};

/// What red and blue weigh in the light of a colour; green the rest.
struct FakeMatrix {
    double red;
    double blue;
};
inline constexpr FakeMatrix kBt601{0.299, 0.114};
inline constexpr FakeMatrix kBt709{0.2126, 0.0722};

/// `colour` is 0xRRGGBB.
inline FakeYuv fakeYuv(std::uint32_t colour, FakeMatrix matrix) {
    const double r = (colour >> 16 & 255) / 255.0;
    const double g = (colour >> 8 & 255) / 255.0;
    const double b = (colour & 255) / 255.0;
    const double y = matrix.red * r + (1 - matrix.red - matrix.blue) * g + matrix.blue * b;
    const auto byte = [](double value) { return static_cast<std::uint8_t>(std::lround(value)); };
    return {byte(16 + 219 * y), byte(128 + 112 * (b - y) / (1 - matrix.blue)),
            byte(128 + 112 * (r - y) / (1 - matrix.red))};
}

} // namespace tavi::test
