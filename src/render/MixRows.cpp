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

/// A weight in 1/32768. A whole, 32768, is one too many; rounding makes up for it.
HWY_INLINE auto weightVector(std::int16_t weight) {
    const hn::ScalableTag<std::int16_t> words;
    return hn::Set(words, static_cast<std::int16_t>(std::min(2 * weight, 32767)));
}

/// The share that a row has in the vector of numbers from `i` on.
template<class Vector>
HWY_INLINE Vector partOf(const std::uint16_t* row, std::size_t i, Vector weight) {
    const hn::ScalableTag<std::uint16_t> samples;
    return hn::MulFixedPoint15(hn::BitCast(hn::DFromV<Vector>(), hn::LoadU(samples, row + i)),
                               weight);
}

/// Writes the sum of the shares of all rows, with which half a step came.
template<class Vector>
HWY_INLINE void storeSum(Vector sum, std::uint8_t* out) {
    const hn::Rebind<std::uint8_t, hn::DFromV<Vector>> bytes;
    hn::StoreU(hn::DemoteTo(bytes, hn::ShiftRight<ResampleColumns::kExtraBits>(sum)), bytes, out);
}

/// By far the most frequent number of rows: everything stays in registers.
void mixTwo(const std::uint16_t* first, const std::uint16_t* second, const std::int16_t* weights,
            std::uint8_t* out, std::size_t count) {
    const hn::ScalableTag<std::int16_t> words;
    const auto half = hn::Set(words, 1 << (ResampleColumns::kExtraBits - 1));
    const auto firstWeight = weightVector(weights[0]);
    const auto secondWeight = weightVector(weights[1]);
    const std::size_t step = hn::Lanes(words);
    for (std::size_t i = 0; i < count; i += step) {
        i = std::min(i, count - step); // the last vector overlaps the one before
        const auto sum = hn::Add(partOf(first, i, firstWeight), partOf(second, i, secondWeight));
        storeSum(hn::Add(sum, half), out + i);
    }
}

void mixSome(std::span<const std::uint16_t* const> rows, const std::int16_t* weights,
             std::uint8_t* out, std::size_t count) {
    const hn::ScalableTag<std::int16_t> words;
    const std::size_t step = hn::Lanes(words);
    for (std::size_t i = 0; i < count; i += step) {
        i = std::min(i, count - step);
        auto sum = hn::Set(words, 1 << (ResampleColumns::kExtraBits - 1));
        for (std::size_t tap = 0; tap < rows.size(); ++tap) {
            sum = hn::Add(sum, partOf(rows[tap], i, weightVector(weights[tap])));
        }
        storeSum(sum, out + i);
    }
}

/// Returns false, having done nothing, where there is less than a vector.
bool mixVectors(std::span<const std::uint16_t* const> rows, const std::int16_t* weights,
                std::uint8_t* out, std::size_t count) {
    if (count < hn::Lanes(hn::ScalableTag<std::int16_t>())) {
        return false;
    }
    if (rows.size() == 2) {
        mixTwo(rows[0], rows[1], weights, out, count);
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
    for (std::size_t i = 0; i < count; ++i) {
        int sum = 1 << (ResampleColumns::kExtraBits - 1);
        for (std::size_t tap = 0; tap < rows.size(); ++tap) {
            sum += (rows[tap][i] * std::min(2 * weights[tap], 32767) + (1 << 14)) >> 15;
        }
        out[i] = static_cast<std::uint8_t>(std::min(sum >> ResampleColumns::kExtraBits, 255));
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
