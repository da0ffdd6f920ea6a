#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "render/OverRow.cpp" // compiled once for each target
#include "render/Composite.h"

#include <hwy/foreach_target.h> // before highway.h
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace tavi {
namespace HWY_NAMESPACE {

#if HWY_TARGET == HWY_SCALAR

/// Without vectors the plain versions serve.
int overPixels(std::uint8_t*, const std::uint8_t*, int) {
    return 0;
}

int coveredPixels(std::uint8_t*, const std::uint8_t*, const std::uint8_t*, int) {
    return 0;
}

#else

namespace hn = hwy::HWY_NAMESPACE;

using Pixels = hn::ScalableTag<std::uint32_t>;
using Bytes = hn::Repartition<std::uint8_t, Pixels>;
using Words = hn::Repartition<std::uint16_t, Pixels>;
using ByteVector = hn::Vec<Bytes>;

/// v / 255 to nearest, for v in 0..65025.
template<class Vector>
HWY_INLINE Vector dividedBy255(Vector v) {
    v = hn::Add(v, hn::Set(hn::DFromV<Vector>(), 128));
    return hn::ShiftRight<8>(hn::Add(v, hn::ShiftRight<8>(v)));
}

/// Channel by channel a * b / 255.
HWY_INLINE ByteVector product(ByteVector a, ByteVector b) {
    const Bytes bytes;
    const Words words;
    const hn::Half<Bytes> half;
    const hn::RebindToSigned<Words> signedWords;
    const auto multiplied = [&](auto x, auto y) HWY_ATTR {
        const auto result = dividedBy255(hn::Mul(hn::PromoteTo(words, x), hn::PromoteTo(words, y)));
        return hn::DemoteTo(half, hn::BitCast(signedWords, result));
    };
    return hn::Combine(bytes, multiplied(hn::UpperHalf(half, a), hn::UpperHalf(half, b)),
                       multiplied(hn::LowerHalf(half, a), hn::LowerHalf(half, b)));
}

/// The same number, 0..255 in each pixel, for all of its channels.
HWY_INLINE ByteVector onAllChannels(hn::Vec<Pixels> numbers) {
    return hn::BitCast(Bytes(), hn::Mul(numbers, hn::Set(Pixels(), 0x01010101U)));
}

HWY_INLINE ByteVector over(ByteVector below, ByteVector above) {
    const auto alpha = hn::ShiftRight<24>(hn::BitCast(Pixels(), above));
    const auto rest = hn::Not(onAllChannels(alpha)); // 255 - alpha
    return hn::SaturatedAdd(above, product(below, rest));
}

/// Draws whole vectors of pixels and returns how many pixels they were.
int overPixels(std::uint8_t* dst, const std::uint8_t* src, int count) {
    const Bytes bytes;
    const int step = static_cast<int>(hn::Lanes(Pixels()));
    int x = 0;
    for (; x + step <= count; x += step) {
        std::uint8_t* out = dst + x * std::ptrdiff_t{4};
        const auto above = hn::LoadU(bytes, src + x * std::ptrdiff_t{4});
        hn::StoreU(over(hn::LoadU(bytes, out), above), bytes, out);
    }
    return x;
}

/// The same with coverage.
int coveredPixels(std::uint8_t* dst, const std::uint8_t* src, const std::uint8_t* coverage,
                  int count) {
    const Bytes bytes;
    const Pixels pixels;
    const hn::Rebind<std::uint8_t, Pixels> narrow;
    const int step = static_cast<int>(hn::Lanes(pixels));
    int x = 0;
    for (; x + step <= count; x += step) {
        std::uint8_t* out = dst + x * std::ptrdiff_t{4};
        const auto covered = onAllChannels(hn::PromoteTo(pixels, hn::LoadU(narrow, coverage + x)));
        const auto above = product(hn::LoadU(bytes, src + x * std::ptrdiff_t{4}), covered);
        hn::StoreU(over(hn::LoadU(bytes, out), above), bytes, out);
    }
    return x;
}

#endif

} // namespace HWY_NAMESPACE
} // namespace tavi
HWY_AFTER_NAMESPACE();

#if HWY_ONCE

namespace tavi {

HWY_EXPORT(overPixels);
HWY_EXPORT(coveredPixels);

void compositeRowOver(std::uint8_t* dst, const std::uint8_t* src, int count) {
    const int done = HWY_DYNAMIC_DISPATCH(overPixels)(dst, src, count);
    const std::ptrdiff_t offset = done * std::ptrdiff_t{4};
    plainCompositeRowOver(dst + offset, src + offset, count - done);
}

void compositeRowOver(std::uint8_t* dst, const std::uint8_t* src, const std::uint8_t* coverage,
                      int count) {
    const int done = HWY_DYNAMIC_DISPATCH(coveredPixels)(dst, src, coverage, count);
    const std::ptrdiff_t offset = done * std::ptrdiff_t{4};
    plainCompositeRowOver(dst + offset, src + offset, coverage + done, count - done);
}

} // namespace tavi

#endif
