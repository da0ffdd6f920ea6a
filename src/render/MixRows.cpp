#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "render/MixRows.cpp" // compiled once for each target
#include "render/MixRows.h"

#include "render/AxisTaps.h"
#include "render/ResampleColumns.h"

#include <algorithm>
#include <hwy/foreach_target.h> // before highway.h
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace tavi {
namespace HWY_NAMESPACE {

#if HWY_TARGET == HWY_SCALAR

/// Without vectors the plain version serves.
bool mixVectors(std::span<const std::uint16_t* const>, const std::int16_t*, std::uint8_t*,
                std::size_t) {
    return false;
}

#else

namespace hn = hwy::HWY_NAMESPACE;

/// The samples of a row from `i` on.
HWY_INLINE auto samplesOf(const std::uint16_t* row, std::size_t i) {
    const hn::ScalableTag<std::uint16_t> samples;
    return hn::BitCast(hn::ScalableTag<std::int16_t>(), hn::LoadU(samples, row + i));
}

/// A weight in 1/32768. A whole, 32768, is one too many; rounding makes up for it.
HWY_INLINE auto weightVector(std::int16_t weight) {
    const hn::ScalableTag<std::int16_t> words;
    return hn::Set(words, static_cast<std::int16_t>(std::min(2 * weight, 32767)));
}

/// Writes samples without their extra bits, rounded to nearest.
template<class Vector>
HWY_INLINE void storeBytes(Vector samples, std::uint8_t* out) {
    const hn::DFromV<Vector> words;
    const hn::Rebind<std::uint8_t, hn::DFromV<Vector>> bytes;
    const auto scale = hn::Set(words, 1 << (15 - ResampleColumns::kExtraBits));
    hn::StoreU(hn::DemoteTo(bytes, hn::MulFixedPoint15(samples, scale)), bytes, out);
}

/// How far ahead of the bytes written the memory of those to come is fetched: a
/// frame is wider than what processors foresee across the ends of its pages.
constexpr std::ptrdiff_t kWriteAhead = 4096;

/// Tells the processor what will be written; the address need not exist.
HWY_INLINE void prefetchForWriting(std::uint8_t* out) {
#if defined(__GNUC__)
    __builtin_prefetch(
        reinterpret_cast<const void*>(reinterpret_cast<std::uintptr_t>(out) + kWriteAhead), 1);
#endif
}

/// By far the most frequent number of rows: everything stays in registers.
void mixTwo(const std::uint16_t* first, const std::uint16_t* second, std::int16_t secondWeight,
            std::uint8_t* out, std::size_t count) {
    const auto weight = weightVector(secondWeight);
    const std::size_t step = hn::Lanes(hn::ScalableTag<std::int16_t>());
    for (std::size_t i = 0; i < count; i += step) {
        i = std::min(i, count - step); // the last vector overlaps the one before
        prefetchForWriting(out + i);
        const auto a = samplesOf(first, i);
        const auto b = samplesOf(second, i);
        storeBytes(hn::Add(a, hn::MulFixedPoint15(hn::Sub(b, a), weight)), out + i);
    }
}

void mixSome(std::span<const std::uint16_t* const> rows, const std::int16_t* weights,
             std::uint8_t* out, std::size_t count) {
    const std::size_t step = hn::Lanes(hn::ScalableTag<std::int16_t>());
    for (std::size_t i = 0; i < count; i += step) {
        i = std::min(i, count - step);
        prefetchForWriting(out + i);
        const auto first = samplesOf(rows[0], i);
        auto sum = first;
        for (std::size_t tap = 1; tap < rows.size(); ++tap) {
            const auto difference = hn::Sub(samplesOf(rows[tap], i), first);
            sum = hn::Add(sum, hn::MulFixedPoint15(difference, weightVector(weights[tap])));
        }
        storeBytes(sum, out + i);
    }
}

/// Returns false, having done nothing, where there is less than a vector.
bool mixVectors(std::span<const std::uint16_t* const> rows, const std::int16_t* weights,
                std::uint8_t* out, std::size_t count) {
    if (count < hn::Lanes(hn::ScalableTag<std::int16_t>())) {
        return false;
    }
    if (rows.size() == 2) {
        mixTwo(rows[0], rows[1], weights[1], out, count);
    } else {
        mixSome(rows, weights, out, count);
    }
    return true;
}

#endif

} // namespace HWY_NAMESPACE
} // namespace tavi
HWY_AFTER_NAMESPACE();

#if HWY_ONCE

namespace tavi {

HWY_EXPORT(mixVectors);

namespace {

/// Rows above which the roundings of their shares could add up to a step.
constexpr std::size_t kMostRows = 32;

/// What the vectors do, number by number: a short row has the very values that it
/// has as a part of a longer one.
void mixNumbers(std::span<const std::uint16_t* const> rows, const std::int16_t* weights,
                std::uint8_t* out, std::size_t count) {
    constexpr int kHalf = 1 << (ResampleColumns::kExtraBits - 1);
    for (std::size_t i = 0; i < count; ++i) {
        int sum = rows[0][i];
        for (std::size_t tap = 1; tap < rows.size(); ++tap) {
            const int difference = rows[tap][i] - rows[0][i];
            sum += (difference * std::min(2 * weights[tap], 32767) + (1 << 14)) >> 15;
        }
        const int value = (sum + kHalf) >> ResampleColumns::kExtraBits;
        out[i] = static_cast<std::uint8_t>(std::clamp(value, 0, 255));
    }
}

} // namespace

void mixRows(std::span<const std::uint16_t* const> rows, const std::int16_t* weights,
             std::uint8_t* out, std::size_t count) {
    if (rows.size() > kMostRows) {
        plainMixRows(rows, weights, out, count);
    } else if (!HWY_DYNAMIC_DISPATCH(mixVectors)(rows, weights, out, count)) {
        mixNumbers(rows, weights, out, count);
    }
}

void plainMixRows(std::span<const std::uint16_t* const> rows, const std::int16_t* weights,
                  std::uint8_t* out, std::size_t count) {
    constexpr int kShift = AxisTaps::kBits + ResampleColumns::kExtraBits;
    for (std::size_t i = 0; i < count; ++i) {
        std::uint32_t sum = 1U << (kShift - 1);
        for (std::size_t tap = 0; tap < rows.size(); ++tap) {
            sum += rows[tap][i] * static_cast<std::uint32_t>(weights[tap]);
        }
        out[i] = static_cast<std::uint8_t>(sum >> kShift);
    }
}

} // namespace tavi

#endif
