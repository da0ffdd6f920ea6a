#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "render/ReduceColumns.cpp" // compiled once for each target
#include "render/ReduceColumns.h"

#include <hwy/cache_control.h>
#include <hwy/foreach_target.h> // before highway.h
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace tavi {
namespace HWY_NAMESPACE {

#if HWY_TARGET == HWY_SCALAR

/// Without vectors the plain version serves.
int mixFour(const std::uint8_t*, const std::uint8_t*, int, const std::vector<int>&,
            const std::int16_t*, std::uint16_t*) {
    return 0;
}

#else

namespace hn = hwy::HWY_NAMESPACE;

int mixFour(const std::uint8_t* in, const std::uint8_t* next, int sourceWidth,
            const std::vector<int>& first, const std::int16_t* shares, std::uint16_t* out) {
    const hn::FixedTag<std::int16_t, 8> words; // two pixels
    const hn::FixedTag<std::uint8_t, 8> bytes;
    const hn::Half<decltype(words)> half;
    const hn::FixedTag<std::uint16_t, 4> result;
    const auto part = [&](const std::uint8_t* from, const std::int16_t* share) HWY_ATTR {
        const auto pair = hn::ShiftLeft<6>(hn::PromoteTo(words, hn::LoadU(bytes, from)));
        return hn::MulFixedPoint15(pair, hn::LoadU(words, share));
    };
    const int* places = first.data();
    const int count = static_cast<int>(first.size());
    int x = 0;
    for (; x < count && places[x] + kReduceTaps <= sourceWidth; ++x, shares += 16, out += 4) {
        const std::ptrdiff_t offset = places[x] * std::ptrdiff_t{4};
        hwy::Prefetch(next + offset);
        const auto pairs = hn::Add(part(in + offset, shares), part(in + offset + 8, shares + 8));
        const auto sum = hn::Add(hn::LowerHalf(half, pairs), hn::UpperHalf(half, pairs));
        hn::StoreU(hn::BitCast(result, sum), result, out);
    }
    return x;
}

#endif

} // namespace HWY_NAMESPACE
} // namespace tavi
HWY_AFTER_NAMESPACE();

#if HWY_ONCE

namespace tavi {

HWY_EXPORT(mixFour);

int reduceColumns(const std::uint8_t* in, const std::uint8_t* next, int sourceWidth,
                  const std::vector<int>& first, const std::int16_t* shares, std::uint16_t* out) {
    return HWY_DYNAMIC_DISPATCH(mixFour)(in, next, sourceWidth, first, shares, out);
}

} // namespace tavi

#endif
