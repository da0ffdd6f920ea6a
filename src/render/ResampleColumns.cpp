#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "render/ResampleColumns.cpp" // compiled once for each target
#include "render/ResampleColumns.h"

#include "render/ReduceColumns.h"

#include <algorithm>
#include <hwy/cache_control.h>
#include <hwy/foreach_target.h> // before highway.h
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace tavi {
namespace HWY_NAMESPACE {

#if HWY_TARGET == HWY_SCALAR

/// Without vectors the plain version serves.
bool interpolateColumns(const std::uint8_t*, const std::uint8_t*, int, const std::vector<int>&,
                        const std::int16_t*, std::uint16_t*) {
    return false;
}

#else

namespace hn = hwy::HWY_NAMESPACE;

/// Mixes two neighbouring pixels for each of Lanes(u32) columns. `indices` count
/// the first pixels from `in`, which has one pixel more than there are columns.
template<class Indices>
HWY_INLINE void interpolateBlock(const std::uint8_t* in, const Indices& indices,
                                 const std::int16_t* shares, std::uint16_t* out) {
    constexpr int kBytes = 4;
    const hn::ScalableTag<std::uint32_t> pixels;
    const hn::Repartition<std::uint8_t, decltype(pixels)> bytes;
    const hn::Repartition<std::int16_t, decltype(pixels)> words;
    const hn::Repartition<std::uint16_t, decltype(pixels)> results;
    const auto pick = [&](const std::uint8_t* from) HWY_ATTR {
        const auto row = hn::BitCast(pixels, hn::LoadU(bytes, from));
        return hn::BitCast(bytes, hn::TableLookupLanes(row, indices));
    };
    const auto mix = [&](auto first, auto second, const std::int16_t* share) HWY_ATTR {
        const auto a = hn::ShiftLeft<ResampleColumns::kExtraBits>(hn::PromoteTo(words, first));
        const auto b = hn::ShiftLeft<ResampleColumns::kExtraBits>(hn::PromoteTo(words, second));
        const auto part = hn::MulFixedPoint15(hn::Sub(b, a), hn::LoadU(words, share));
        return hn::BitCast(results, hn::Add(a, part));
    };
    const auto a = pick(in);
    const auto b = pick(in + kBytes);
    const hn::Half<decltype(bytes)> half;
    const std::size_t count = hn::Lanes(words);
    hn::StoreU(mix(hn::LowerHalf(half, a), hn::LowerHalf(half, b), shares), results, out);
    hn::StoreU(mix(hn::UpperHalf(half, a), hn::UpperHalf(half, b), shares + count), results,
               out + count);
}

/// Returns false, having done nothing, where there is less than a vector.
bool interpolateColumns(const std::uint8_t* in, const std::uint8_t* next, int sourceWidth,
                        const std::vector<int>& first, const std::int16_t* shares,
                        std::uint16_t* out) {
    const hn::ScalableTag<std::int32_t> columns;
    const int step = static_cast<int>(hn::Lanes(columns));
    const int count = static_cast<int>(first.size());
    if (count < step || sourceWidth < step + 1) {
        return false;
    }
    const hn::ScalableTag<std::uint32_t> pixels;
    for (int x = 0; x < count; x += step) {
        x = std::min(x, count - step); // the last vector overlaps the one before
        const int base = std::min(first[static_cast<std::size_t>(x)], sourceWidth - step - 1);
        const auto places = hn::LoadU(columns, first.data() + x);
        const auto indices = hn::IndicesFromVec(pixels, hn::Sub(places, hn::Set(columns, base)));
        hwy::Prefetch(next + base * std::ptrdiff_t{4});
        interpolateBlock(in + base * std::ptrdiff_t{4}, indices, shares + x * std::ptrdiff_t{4},
                         out + x * std::ptrdiff_t{4});
    }
    return true;
}

#endif

} // namespace HWY_NAMESPACE
} // namespace tavi
HWY_AFTER_NAMESPACE();

#if HWY_ONCE

namespace tavi {

HWY_EXPORT(interpolateColumns);

namespace {

constexpr int kChannels = 4;

/// True when no column is more than one pixel on from the column before.
bool advancesByPixels(const std::vector<int>& first) {
    return std::adjacent_find(first.begin(), first.end(),
                              [](int a, int b) { return b < a || b > a + 1; }) == first.end();
}

/// A weight in 1/32768. The largest stands for a whole: rounding makes up for
/// what is missing on values of up to 14 bits.
std::int16_t share(std::int16_t weight) {
    return static_cast<std::int16_t>(std::min(2 * weight, 32767));
}

} // namespace

void ResampleColumns::begin(const AxisTaps& taps, int sourceWidth) {
    m_sourceWidth = sourceWidth;
    if (taps.count == 2 && advancesByPixels(taps.first)) {
        m_means = Means::interpolation;
        m_shares.resize(taps.first.size() * kChannels);
        for (std::size_t x = 0; x < taps.first.size(); ++x) {
            std::fill_n(m_shares.data() + x * kChannels, kChannels, share(taps.weights[2 * x + 1]));
        }
    } else if (taps.count <= kReduceTaps) {
        m_means = Means::reduction;
        prepareReduction(taps);
    } else {
        m_means = Means::plain;
    }
}

void ResampleColumns::prepareReduction(const AxisTaps& taps) {
    m_shares.assign(taps.first.size() * kReduceTaps * kChannels, 0);
    const std::int16_t* weight = taps.weights.data();
    for (std::size_t x = 0; x < taps.first.size(); ++x) {
        std::int16_t* shares = m_shares.data() + x * kReduceTaps * kChannels;
        for (int tap = 0; tap < taps.count; ++tap, shares += kChannels) {
            std::fill_n(shares, kChannels, share(*weight++));
        }
    }
}

void ResampleColumns::columns(const std::uint8_t* in, const std::uint8_t* next,
                              const AxisTaps& taps, std::uint16_t* out) const {
    std::size_t done = 0;
    if (m_means == Means::interpolation) {
        done = HWY_DYNAMIC_DISPATCH(interpolateColumns)(in, next, m_sourceWidth, taps.first,
                                                        m_shares.data(), out)
                   ? taps.first.size()
                   : 0;
    } else if (m_means == Means::reduction) {
        done = static_cast<std::size_t>(
            reduceColumns(in, next, m_sourceWidth, taps.first, m_shares.data(), out));
    }
    plainColumns(in, taps, out, done);
}

void plainColumns(const std::uint8_t* in, const AxisTaps& taps, std::uint16_t* out,
                  std::size_t begin) {
    constexpr int kShift = AxisTaps::kBits - ResampleColumns::kExtraBits;
    constexpr std::uint32_t kHalf = 1U << (kShift - 1);
    const std::int16_t* weights =
        taps.weights.data() + begin * static_cast<std::size_t>(taps.count);
    out += begin * kChannels;
    for (std::size_t x = begin; x < taps.first.size(); ++x) {
        const std::uint8_t* pixel = in + static_cast<std::ptrdiff_t>(taps.first[x]) * kChannels;
        std::uint32_t sums[kChannels] = {kHalf, kHalf, kHalf, kHalf};
        for (int tap = 0; tap < taps.count; ++tap, pixel += kChannels) {
            const auto weight = static_cast<std::uint32_t>(weights[tap]);
            for (int c = 0; c < kChannels; ++c) {
                sums[c] += pixel[c] * weight;
            }
        }
        weights += taps.count;
        for (int c = 0; c < kChannels; ++c) {
            *out++ = static_cast<std::uint16_t>(sums[c] >> kShift);
        }
    }
}

} // namespace tavi

#endif
