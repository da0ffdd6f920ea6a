#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "render/ColumnKernels.cpp" // compiled once for each target
#include "render/ColumnGroups.h"

#include <hwy/cache_control.h>
#include <hwy/foreach_target.h> // before highway.h
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace tavi {
namespace HWY_NAMESPACE {

#if HWY_TARGET == HWY_SCALAR

int pixelLanes() {
    return 0; // so that nobody asks for the others
}

bool interpolate(const ColumnGroups&, const std::uint8_t*, const std::uint8_t*, std::uint16_t*) {
    return false;
}

bool reduce(const ColumnGroups&, const std::uint8_t*, const std::uint8_t*, std::uint16_t*) {
    return false;
}

#else

namespace hn = hwy::HWY_NAMESPACE;

using Pixels = hn::ScalableTag<std::uint32_t>;
using Bytes = hn::Repartition<std::uint8_t, Pixels>;
using Words = hn::Repartition<std::uint16_t, Pixels>;
using Vector = hn::Vec<Pixels>;
using WordVector = hn::Vec<Words>;

int pixelLanes() {
    return static_cast<int>(hn::Lanes(Pixels()));
}

HWY_INLINE Vector loadPixels(const std::uint8_t* from) {
    return hn::BitCast(Pixels(), hn::LoadU(Bytes(), from));
}

/// The channels of the first half of each block, times 256: a share of 1/2^14
/// makes 64 times the value of their upper halves' product.
HWY_INLINE WordVector lowerWords(Vector pixels) {
    const Bytes bytes;
    return hn::BitCast(Words(),
                       hn::InterleaveLower(bytes, hn::Zero(bytes), hn::BitCast(bytes, pixels)));
}

/// The same of the second half of each block.
HWY_INLINE WordVector upperWords(Vector pixels) {
    const Bytes bytes;
    return hn::BitCast(Words(),
                       hn::InterleaveUpper(bytes, hn::Zero(bytes), hn::BitCast(bytes, pixels)));
}

/// Two shares out of each block's eight, once a channel: the pair `kPair` of 0..3.
template<int kPair>
HWY_INLINE WordVector sharesOf(WordVector group) {
    const Bytes bytes;
    constexpr std::uint8_t kFirst = 4 * kPair;
    alignas(16) static constexpr std::uint8_t kTable[16] = {
        kFirst,     kFirst + 1, kFirst,     kFirst + 1, kFirst,     kFirst + 1,
        kFirst,     kFirst + 1, kFirst + 2, kFirst + 3, kFirst + 2, kFirst + 3,
        kFirst + 2, kFirst + 3, kFirst + 2, kFirst + 3};
    return hn::BitCast(
        Words(), hn::TableLookupBytes(hn::BitCast(bytes, group), hn::LoadDup128(bytes, kTable)));
}

/// The pixels of a loaded vector that a group takes.
HWY_INLINE Vector picked(Vector loaded, const std::uint8_t* lanes) {
    const hn::RebindToSigned<Pixels> places;
    const hn::Rebind<std::uint8_t, decltype(places)> narrow;
    const auto indices = hn::PromoteTo(places, hn::LoadU(narrow, lanes));
    return hn::TableLookupLanes(loaded, hn::IndicesFromVec(Pixels(), indices));
}

HWY_INLINE bool isOpaque(Vector all) {
    const Pixels pixels;
    return hn::AllTrue(pixels, hn::Eq(hn::ShiftRight<24>(all), hn::Set(pixels, 0xFFU)));
}

bool interpolate(const ColumnGroups& groups, const std::uint8_t* in, const std::uint8_t* next,
                 std::uint16_t* out) {
    const Words words;
    const std::size_t step = hn::Lanes(Pixels());
    const std::uint8_t* lanes = groups.lanes.data();
    const std::uint16_t* shares = groups.shares.data();
    auto all = hn::Set(Pixels(), 0xFFFFFFFFU);
    for (const std::ptrdiff_t base : groups.bases) {
        const std::ptrdiff_t offset = base * 4;
        hwy::Prefetch(next + offset);
        const auto left = loadPixels(in + offset);
        const auto right = loadPixels(in + offset + 4);
        const auto share = hn::LoadU(words, shares);
        all = hn::And(all, hn::And(left, right));
        const auto a = picked(left, lanes);
        const auto b = picked(right, lanes);
        const auto first = hn::Add(hn::MulHigh(lowerWords(a), sharesOf<0>(share)),
                                   hn::MulHigh(lowerWords(b), sharesOf<1>(share)));
        const auto second = hn::Add(hn::MulHigh(upperWords(a), sharesOf<2>(share)),
                                    hn::MulHigh(upperWords(b), sharesOf<3>(share)));
        hn::StoreU(first, words, out);
        hn::StoreU(second, words, out + 2 * step);
        lanes += step;
        shares += 2 * step;
        out += 4 * step;
    }
    return isOpaque(all);
}

bool reduce(const ColumnGroups& groups, const std::uint8_t* in, const std::uint8_t* next,
            std::uint16_t* out) {
    const Words words;
    const hn::Repartition<std::uint64_t, Pixels> columns;
    const std::size_t step = hn::Lanes(Pixels());
    const std::uint8_t* lanes = groups.lanes.data();
    const std::uint16_t* shares = groups.shares.data();
    const auto rounding = hn::Set(words, 2); // half of what four parts lose
    auto all = hn::Set(Pixels(), 0xFFFFFFFFU);
    for (std::size_t i = 0; i < groups.bases.size(); i += 2) {
        const std::ptrdiff_t offset = std::ptrdiff_t{groups.bases[i]} * 4;
        hwy::Prefetch(next + offset);
        const auto left = loadPixels(in + offset);
        const auto right = loadPixels(in + std::ptrdiff_t{groups.bases[i + 1]} * 4);
        const auto share = hn::LoadU(words, shares);
        all = hn::And(all, hn::And(left, right));
        const auto a = picked(left, lanes);
        const auto b = picked(right, lanes + step);
        // What the two pairs of pixels of each column add up to, side by side.
        const auto first =
            hn::BitCast(columns, hn::Add(hn::MulHigh(lowerWords(a), sharesOf<0>(share)),
                                         hn::MulHigh(upperWords(a), sharesOf<1>(share))));
        const auto second =
            hn::BitCast(columns, hn::Add(hn::MulHigh(lowerWords(b), sharesOf<2>(share)),
                                         hn::MulHigh(upperWords(b), sharesOf<3>(share))));
        const auto even = hn::BitCast(words, hn::ConcatEven(columns, second, first));
        const auto odd = hn::BitCast(words, hn::ConcatOdd(columns, second, first));
        hn::StoreU(hn::Add(hn::Add(even, rounding), odd), words, out);
        lanes += 2 * step;
        shares += 2 * step;
        out += 2 * step;
    }
    return isOpaque(all);
}

#endif

} // namespace HWY_NAMESPACE
} // namespace tavi
HWY_AFTER_NAMESPACE();

#if HWY_ONCE

namespace tavi {

HWY_EXPORT(pixelLanes);
HWY_EXPORT(interpolate);
HWY_EXPORT(reduce);

bool interpolateGroups(const ColumnGroups& groups, const std::uint8_t* in, const std::uint8_t* next,
                       std::uint16_t* out) {
    return HWY_DYNAMIC_DISPATCH(interpolate)(groups, in, next, out);
}

bool reduceGroups(const ColumnGroups& groups, const std::uint8_t* in, const std::uint8_t* next,
                  std::uint16_t* out) {
    return HWY_DYNAMIC_DISPATCH(reduce)(groups, in, next, out);
}

int pixelsInAVector() {
    return HWY_DYNAMIC_DISPATCH(pixelLanes)();
}

} // namespace tavi

#endif
