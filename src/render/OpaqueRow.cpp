#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "render/OpaqueRow.cpp" // compiled once for each target
#include "render/Composite.h"

#include <hwy/foreach_target.h> // before highway.h
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace tavi {
namespace HWY_NAMESPACE {

#if HWY_TARGET == HWY_SCALAR

/// Without vectors the plain version serves.
int opaquePixels(const std::uint8_t*, int) {
    return 0;
}

int makePixelsOpaque(std::uint8_t*, int) {
    return 0;
}

#else

namespace hn = hwy::HWY_NAMESPACE;

/// How many pixels, in whole vectors from the first on, were looked at and are
/// opaque; -1 when one of them isn't.
int opaquePixels(const std::uint8_t* row, int count) {
    const hn::ScalableTag<std::uint32_t> pixels;
    const hn::Repartition<std::uint8_t, decltype(pixels)> bytes;
    const int step = static_cast<int>(hn::Lanes(pixels));
    auto all = hn::Set(pixels, 0xFFFFFFFFU);
    int x = 0;
    for (; x + step <= count; x += step) {
        all = hn::And(all, hn::BitCast(pixels, hn::LoadU(bytes, row + x * std::ptrdiff_t{4})));
    }
    const auto opaque = hn::Eq(hn::ShiftRight<24>(all), hn::Set(pixels, 0xFFU));
    return hn::AllTrue(pixels, opaque) ? x : -1;
}

/// Makes whole vectors of pixels opaque and returns how many pixels they were.
int makePixelsOpaque(std::uint8_t* row, int count) {
    const hn::ScalableTag<std::uint32_t> pixels;
    const hn::Repartition<std::uint8_t, decltype(pixels)> bytes;
    const auto alpha = hn::BitCast(bytes, hn::Set(pixels, 0xFF000000U));
    const int step = static_cast<int>(hn::Lanes(pixels));
    int x = 0;
    for (; x + step <= count; x += step) {
        std::uint8_t* out = row + x * std::ptrdiff_t{4};
        hn::StoreU(hn::Or(hn::LoadU(bytes, out), alpha), bytes, out);
    }
    return x;
}

#endif

} // namespace HWY_NAMESPACE
} // namespace tavi
HWY_AFTER_NAMESPACE();

#if HWY_ONCE

namespace tavi {

HWY_EXPORT(opaquePixels);
HWY_EXPORT(makePixelsOpaque);

bool isRowOpaque(const std::uint8_t* row, int count) {
    const int done = HWY_DYNAMIC_DISPATCH(opaquePixels)(row, count);
    return done >= 0 && plainIsRowOpaque(row + done * std::ptrdiff_t{4}, count - done);
}

void makeRowOpaque(std::uint8_t* row, int count) {
    const int done = HWY_DYNAMIC_DISPATCH(makePixelsOpaque)(row, count);
    plainMakeRowOpaque(row + done * std::ptrdiff_t{4}, count - done);
}

} // namespace tavi

#endif
