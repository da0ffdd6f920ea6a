#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "render/BlobRow.cpp" // compiled once for each target
#include "render/BlobRow.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <hwy/foreach_target.h> // before highway.h
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace tavi {
namespace HWY_NAMESPACE {

#if HWY_TARGET == HWY_SCALAR

/// Without vectors the plain version serves.
int drawBlobVectors(const BlobRow&, std::uint8_t*, int) {
    return 0;
}

#else

namespace hn = hwy::HWY_NAMESPACE;

/// How much of a blob's centre is left at each of a vector's pixels.
template<class D, class Vector>
HWY_INLINE Vector fadeOf(D floats, const BlobRow::Blob& blob, Vector middles) {
    const auto dx = hn::Sub(middles, hn::Set(floats, blob.centerX));
    const auto distance = hn::Sqrt(hn::MulAdd(dx, dx, hn::Set(floats, blob.distanceSquared)));
    const auto one = hn::Set(floats, 1.0F);
    return hn::Max(hn::NegMulAdd(distance, hn::Set(floats, blob.inverseRadius), one),
                   hn::Zero(floats));
}

/// Draws whole vectors of pixels and returns how many pixels they were.
int drawBlobVectors(const BlobRow& row, std::uint8_t* out, int count) {
    const hn::ScalableTag<float> floats;
    const hn::RebindToSigned<decltype(floats)> ints;
    const int step = static_cast<int>(hn::Lanes(floats));
    const auto one = hn::Set(floats, 1.0F);
    const auto half = hn::Set(floats, 0.5F);
    const auto firsts = hn::Add(hn::ConvertTo(floats, hn::Iota(ints, 0)), half);
    int x = 0;
    for (; x + step <= count; x += step) {
        const auto middles = hn::Add(firsts, hn::Set(floats, static_cast<float>(x)));
        auto blue = hn::Set(floats, row.base[0]);
        auto green = hn::Set(floats, row.base[1]);
        auto red = hn::Set(floats, row.base[2]);
        for (const BlobRow::Blob& blob : row.blobs) {
            const auto fade = fadeOf(floats, blob, middles);
            const auto rest = hn::NegMulAdd(hn::Set(floats, blob.alpha), fade, one);
            blue = hn::MulAdd(blue, rest, hn::Mul(hn::Set(floats, blob.color[0]), fade));
            green = hn::MulAdd(green, rest, hn::Mul(hn::Set(floats, blob.color[1]), fade));
            red = hn::MulAdd(red, rest, hn::Mul(hn::Set(floats, blob.color[2]), fade));
        }
        const auto whole = [&](auto part)
                               HWY_ATTR { return hn::ConvertTo(ints, hn::Add(part, half)); };
        auto pixel = hn::Or(whole(blue), hn::ShiftLeft<8>(whole(green)));
        pixel = hn::Or(pixel, hn::ShiftLeft<16>(whole(red)));
        pixel = hn::Or(pixel, hn::Set(ints, static_cast<std::int32_t>(0xFF000000U)));
        hn::StoreU(pixel, ints, reinterpret_cast<std::int32_t*>(out + std::ptrdiff_t{4} * x));
    }
    return x;
}

#endif

} // namespace HWY_NAMESPACE
} // namespace tavi
HWY_AFTER_NAMESPACE();

#if HWY_ONCE

namespace tavi {

HWY_EXPORT(drawBlobVectors);

void drawBlobRow(const BlobRow& row, std::uint8_t* out, int count) {
    const int done = HWY_DYNAMIC_DISPATCH(drawBlobVectors)(row, out, count);
    plainDrawBlobRow(row, out, done, count);
}

void plainDrawBlobRow(const BlobRow& row, std::uint8_t* out, int begin, int end) {
    for (int x = begin; x < end; ++x) {
        std::array<float, 3> mix = row.base;
        for (const BlobRow::Blob& blob : row.blobs) {
            const float dx = static_cast<float>(x) + 0.5F - blob.centerX;
            const float distance = std::sqrt(dx * dx + blob.distanceSquared);
            const float fade = std::max(1 - distance * blob.inverseRadius, 0.0F);
            const float rest = 1 - blob.alpha * fade;
            for (std::size_t c = 0; c < mix.size(); ++c) {
                mix[c] = mix[c] * rest + blob.color[c] * fade;
            }
        }
        std::uint8_t* pixel = out + std::ptrdiff_t{4} * x;
        for (std::size_t c = 0; c < mix.size(); ++c) {
            pixel[c] = static_cast<std::uint8_t>(std::lround(mix[c]));
        }
        pixel[3] = 255;
    }
}

} // namespace tavi

#endif
