#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "render/DarkenRow.cpp" // compiled once for each target
#include "render/Composite.h"

#include <hwy/foreach_target.h> // before highway.h
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace tavi {
namespace HWY_NAMESPACE {

#if HWY_TARGET == HWY_SCALAR

/// Without vectors the plain version serves.
int darkenPixels(std::uint8_t*, const std::uint8_t*, int) {
    return 0;
}

#else

namespace hn = hwy::HWY_NAMESPACE;

/// v / 255 to nearest, for v in 0..65025.
template<class Vector>
HWY_INLINE Vector dividedBy255(Vector v) {
    v = hn::Add(v, hn::Set(hn::DFromV<Vector>(), 128));
    return hn::ShiftRight<8>(hn::Add(v, hn::ShiftRight<8>(v)));
}

/// Darkens whole vectors of pixels and returns how many pixels they were.
int darkenPixels(std::uint8_t* dst, const std::uint8_t* alpha, int count) {
    const hn::ScalableTag<std::uint32_t> pixels;
    const hn::Repartition<std::uint8_t, decltype(pixels)> bytes;
    const hn::Half<decltype(bytes)> half;
    const hn::Repartition<std::uint16_t, decltype(pixels)> words;
    const hn::Rebind<std::uint8_t, decltype(pixels)> alphas;
    const auto shaded = [&](auto colors, auto rest) HWY_ATTR {
        const auto product = hn::Mul(hn::PromoteTo(words, colors), hn::PromoteTo(words, rest));
        return hn::DemoteTo(
            half, hn::BitCast(hn::RebindToSigned<decltype(words)>(), dividedBy255(product)));
    };
    const int step = static_cast<int>(hn::Lanes(pixels));
    int x = 0;
    for (; x + step <= count; x += step) {
        const auto black = hn::PromoteTo(pixels, hn::LoadU(alphas, alpha + x));
        const auto everywhere = hn::Mul(black, hn::Set(pixels, 0x01010101U));
        const auto rest = hn::Not(hn::BitCast(bytes, everywhere)); // 255 - alpha
        std::uint8_t* out = dst + x * std::ptrdiff_t{4};
        const auto old = hn::LoadU(bytes, out);
        const auto upper = shaded(hn::UpperHalf(half, old), hn::UpperHalf(half, rest));
        const auto lower = shaded(hn::LowerHalf(half, old), hn::LowerHalf(half, rest));
        const auto added = hn::BitCast(bytes, hn::ShiftLeft<24>(black));
        hn::StoreU(hn::Add(hn::Combine(bytes, upper, lower), added), bytes, out);
    }
    return x;
}

#endif

} // namespace HWY_NAMESPACE
} // namespace tavi
HWY_AFTER_NAMESPACE();

#if HWY_ONCE

namespace tavi {

HWY_EXPORT(darkenPixels);

void darkenRow(std::uint8_t* dst, const std::uint8_t* alpha, int count) {
    const int done = HWY_DYNAMIC_DISPATCH(darkenPixels)(dst, alpha, count);
    plainDarkenRow(dst + done * std::ptrdiff_t{4}, alpha + done, count - done);
}

} // namespace tavi

#endif
