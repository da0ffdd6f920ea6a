#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "render/HalveRow.cpp" // compiled once for each target
#include "render/BlurKernels.h"

#include <algorithm>
#include <hwy/foreach_target.h> // before highway.h
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace tavi {
namespace HWY_NAMESPACE {

#if HWY_TARGET == HWY_SCALAR

/// Without vectors the plain version serves.
bool halvePixels(const std::uint16_t*, std::uint16_t*, std::size_t, Halving) {
    return false;
}

#else

namespace hn = hwy::HWY_NAMESPACE;

/// Halves a row of four channels. Returns false, having done nothing, where there
/// is less than a vector.
bool halvePixels(const std::uint16_t* in, std::uint16_t* out, std::size_t pixels, Halving halving) {
    constexpr std::size_t kChannels = 4;
    const hn::ScalableTag<std::uint64_t> whole; // one pixel a lane
    const hn::Repartition<std::uint16_t, decltype(whole)> words;
    const std::size_t step = hn::Lanes(whole);
    if (pixels < step) {
        return false;
    }
    const auto load = [&](const std::uint16_t* from)
                          HWY_ATTR { return hn::BitCast(whole, hn::LoadU(words, from)); };
    const auto one = hn::Set(words, 1);
    for (std::size_t x = 0; x < pixels; x += step) {
        x = std::min(x, pixels - step); // the last vector overlaps the one before
        const std::uint16_t* from = in + 2 * x * kChannels;
        const auto first = load(from);
        const auto second = load(from + step * kChannels);
        const auto third = load(from + 2 * kChannels);
        const auto fourth = load(from + (step + 2) * kChannels);
        const auto a = hn::BitCast(words, hn::ConcatEven(whole, second, first));
        const auto b = hn::BitCast(words, hn::ConcatOdd(whole, second, first));
        const auto c = hn::BitCast(words, hn::ConcatEven(whole, fourth, third));
        const auto d = hn::BitCast(words, hn::ConcatOdd(whole, fourth, third));
        if (halving == Halving::sum) {
            const auto inner = hn::Add(b, c);
            const auto sum = hn::Add(hn::Add(a, d), hn::Add(inner, hn::Add(inner, inner)));
            hn::StoreU(sum, words, out + x * kChannels);
        } else {
            const auto inner = hn::AverageRound(b, c);
            const auto outer = hn::Add(hn::AverageRound(a, d), one);
            const auto sum = hn::Add(outer, hn::Add(inner, hn::Add(inner, inner)));
            hn::StoreU(hn::ShiftRight<2>(sum), words, out + x * kChannels);
        }
    }
    return true;
}

#endif

} // namespace HWY_NAMESPACE
} // namespace tavi
HWY_AFTER_NAMESPACE();

#if HWY_ONCE

namespace tavi {

HWY_EXPORT(halvePixels);

void halveRow(const std::uint16_t* in, std::uint16_t* out, std::size_t pixels, std::size_t channels,
              Halving halving) {
    if (channels != 4 || !HWY_DYNAMIC_DISPATCH(halvePixels)(in, out, pixels, halving)) {
        plainHalveRow(in, out, pixels, channels, halving);
    }
}

} // namespace tavi

#endif
