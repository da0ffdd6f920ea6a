#include "render/Composite.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>

namespace tavi {

namespace {

constexpr int kChannels = PixelBuffer::kBytesPerPixel;
constexpr int kAlpha = 3;
constexpr int kSteps = 64;                  // positions between two pixels
constexpr int kWeightOne = kSteps * kSteps; // the four weights of a spread pixel together

/// Beyond this no corner lies near a frame, and conversion to int stays safe.
constexpr double kFarAway = 1e6;

void pixelOver(std::uint8_t* dst, const std::uint8_t* src) {
    const std::uint32_t rest = 255U - src[kAlpha];
    for (int c = 0; c < kChannels; ++c) {
        const std::uint32_t sum = src[c] + divideBy255(dst[c] * rest);
        dst[c] = static_cast<std::uint8_t>(std::min(sum, 255U));
    }
}

/// The weights of the four source pixels that meet in one output pixel.
struct Spread {
    int dx = 0; ///< 1 when the picture lies between columns.
    int dy = 0;
    std::array<int, 4> weights{}; ///< Of (x, y), (x-1, y), (x, y-1), (x-1, y-1).
};

Spread spreadFor(double fractionX, double fractionY) {
    const int wx = static_cast<int>(std::lround(fractionX * kSteps));
    const int wy = static_cast<int>(std::lround(fractionY * kSteps));
    return {wx > 0,
            wy > 0,
            {(kSteps - wx) * (kSteps - wy), wx * (kSteps - wy), (kSteps - wx) * wy, wx * wy}};
}

/// The pixel of `src` at (x, y), transparent outside.
const std::uint8_t* pixelAt(ConstImageView src, int x, int y) {
    static constexpr std::array<std::uint8_t, kChannels> kTransparent{};
    if (x < 0 || y < 0 || x >= src.width || y >= src.height) {
        return kTransparent.data();
    }
    return src.row(y) + static_cast<std::ptrdiff_t>(x) * kChannels;
}

void compositeSpread(ImageView dst, ConstImageView src, int left, int top, const Spread& spread) {
    const int firstY = std::max(0, -top);
    const int lastY = std::min(src.height + spread.dy, dst.height - top);
    const int firstX = std::max(0, -left);
    const int lastX = std::min(src.width + spread.dx, dst.width - left);
    for (int y = firstY; y < lastY; ++y) {
        std::uint8_t* out =
            dst.row(top + y) + static_cast<std::ptrdiff_t>(left + firstX) * kChannels;
        for (int x = firstX; x < lastX; ++x, out += kChannels) {
            const std::array<const std::uint8_t*, 4> taps{
                pixelAt(src, x, y), pixelAt(src, x - 1, y), pixelAt(src, x, y - 1),
                pixelAt(src, x - 1, y - 1)};
            std::array<std::uint8_t, kChannels> mixed{};
            for (std::size_t c = 0; c < kChannels; ++c) {
                int sum = kWeightOne / 2;
                for (std::size_t t = 0; t < taps.size(); ++t) {
                    sum += taps[t][c] * spread.weights[t];
                }
                mixed[c] = static_cast<std::uint8_t>(sum / kWeightOne);
            }
            pixelOver(out, mixed.data());
        }
    }
}

void compositeWhole(ImageView dst, ConstImageView src, int left, int top) {
    const int firstX = std::max(0, -left);
    const int count = std::min(src.width, dst.width - left) - firstX;
    const int lastY = std::min(src.height, dst.height - top);
    for (int y = std::max(0, -top); y < lastY; ++y) {
        compositeRowOver(dst.row(top + y) + static_cast<std::ptrdiff_t>(left + firstX) * kChannels,
                         src.row(y) + static_cast<std::ptrdiff_t>(firstX) * kChannels, count);
    }
}

} // namespace

void plainCompositeRowOver(std::uint8_t* dst, const std::uint8_t* src, int count) {
    for (int i = 0; i < count; ++i, dst += kChannels, src += kChannels) {
        pixelOver(dst, src);
    }
}

void plainCompositeRowOver(std::uint8_t* dst, const std::uint8_t* src, const std::uint8_t* coverage,
                           int count) {
    for (int i = 0; i < count; ++i, dst += kChannels, src += kChannels) {
        std::array<std::uint8_t, kChannels> covered{};
        for (std::size_t c = 0; c < kChannels; ++c) {
            covered[c] =
                static_cast<std::uint8_t>(divideBy255(src[c] * std::uint32_t{coverage[i]}));
        }
        pixelOver(dst, covered.data());
    }
}

void plainDarkenRow(std::uint8_t* dst, const std::uint8_t* alpha, int count) {
    for (int i = 0; i < count; ++i, dst += kChannels) {
        const std::uint32_t rest = 255U - alpha[i];
        for (int c = 0; c < kAlpha; ++c) {
            dst[c] = static_cast<std::uint8_t>(divideBy255(dst[c] * rest));
        }
        dst[kAlpha] = static_cast<std::uint8_t>(alpha[i] + divideBy255(dst[kAlpha] * rest));
    }
}

bool plainIsRowOpaque(const std::uint8_t* row, int count) {
    std::uint8_t all = 255;
    for (int i = 0; i < count; ++i) {
        all &= row[i * kChannels + kAlpha];
    }
    return all == 255;
}

void plainMakeRowOpaque(std::uint8_t* row, int count) {
    for (int i = 0; i < count; ++i) {
        row[i * kChannels + kAlpha] = 255;
    }
}

void fill(ImageView dst, const std::uint8_t* pixel) {
    for (int y = 0; y < dst.height; ++y) {
        std::uint8_t* row = dst.row(y);
        for (int x = 0; x < dst.width; ++x) {
            std::memcpy(row + static_cast<std::ptrdiff_t>(x) * kChannels, pixel, kChannels);
        }
    }
}

void compositeOver(ImageView dst, ConstImageView src, Point corner) {
    if (!(std::abs(corner.x) < kFarAway) || !(std::abs(corner.y) < kFarAway) || src.empty()) {
        return;
    }
    const double left = std::floor(corner.x);
    const double top = std::floor(corner.y);
    const Spread spread = spreadFor(corner.x - left, corner.y - top);
    const int x = static_cast<int>(left);
    const int y = static_cast<int>(top);
    if (spread.dx == 0 && spread.dy == 0) {
        compositeWhole(dst, src, x, y);
    } else {
        compositeSpread(dst, src, x, y, spread);
    }
}

} // namespace tavi
