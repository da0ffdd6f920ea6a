#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "render/BinomialRows.cpp" // compiled once for each target
#include "render/BlurKernels.h"

#include <algorithm>
#include <hwy/cache_control.h>
#include <hwy/foreach_target.h> // before highway.h
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace tavi {
namespace HWY_NAMESPACE {

#if HWY_TARGET == HWY_SCALAR

/// Without vectors the plain version serves.
bool addRows(const FourRows<std::uint8_t>&, std::uint16_t*, std::size_t) {
    return false;
}

bool addTenRows(const TenRows&, std::uint16_t*, std::size_t) {
    return false;
}

bool averageRows(const FourRows<std::uint16_t>&, std::uint16_t*, std::size_t) {
    return false;
}

#else

namespace hn = hwy::HWY_NAMESPACE;

/// Returns false, having done nothing, where there is less than a vector.
bool addRows(const FourRows<std::uint8_t>& rows, std::uint16_t* sums, std::size_t count) {
    const hn::ScalableTag<std::uint16_t> words;
    const hn::Rebind<std::uint8_t, decltype(words)> bytes;
    const std::size_t step = hn::Lanes(words);
    if (count < step) {
        return false;
    }
    const auto load = [&](const std::uint8_t* row)
                          HWY_ATTR { return hn::PromoteTo(words, hn::LoadU(bytes, row)); };
    const auto [a, b, c, d, next, afterNext] = rows; // in registers
    for (std::size_t i = 0; i < count; i += step) {
        i = std::min(i, count - step); // the last vector overlaps the one before
        hwy::Prefetch(next + i);
        hwy::Prefetch(afterNext + i);
        const auto inner = hn::Add(load(b + i), load(c + i));
        const auto outer = hn::Add(load(a + i), load(d + i));
        const auto sum = hn::Add(outer, hn::Add(inner, hn::Add(inner, inner)));
        hn::StoreU(sum, words, sums + i);
    }
    return true;
}

/// The same for ten rows.
bool addTenRows(const TenRows& rows, std::uint16_t* sums, std::size_t count) {
    const hn::ScalableTag<std::uint16_t> words;
    const hn::Rebind<std::uint8_t, decltype(words)> bytes;
    const std::size_t step = hn::Lanes(words);
    if (count < step) {
        return false;
    }
    const auto [a, b, c, d, e, f, g, h, k, l] = rows.rows; // which stores cannot change
    const auto [next, second, third, fourth] = rows.next;
    for (std::size_t i = 0; i < count; i += step) {
        i = std::min(i, count - step);
        hwy::Prefetch(next + i);
        hwy::Prefetch(second + i);
        hwy::Prefetch(third + i);
        hwy::Prefetch(fourth + i);
        const auto pair = [&](const std::uint8_t* above, const std::uint8_t* below) HWY_ATTR {
            return hn::Add(hn::PromoteTo(words, hn::LoadU(bytes, above + i)),
                           hn::PromoteTo(words, hn::LoadU(bytes, below + i)));
        };
        const auto times = [&](std::uint16_t weight, auto sum)
                               HWY_ATTR { return hn::Mul(sum, hn::Set(words, weight)); };
        const auto outer = hn::Add(pair(a, l), times(3, pair(b, k)));
        const auto middle = hn::Add(times(6, pair(c, h)), times(10, pair(d, g)));
        const auto inner = times(12, pair(e, f));
        hn::StoreU(hn::Add(hn::Add(outer, middle), inner), words, sums + i);
    }
    return true;
}

/// The same for averages.
bool averageRows(const FourRows<std::uint16_t>& rows, std::uint16_t* out, std::size_t count) {
    const hn::ScalableTag<std::uint16_t> words;
    const std::size_t step = hn::Lanes(words);
    if (count < step) {
        return false;
    }
    const auto one = hn::Set(words, 1);
    for (std::size_t i = 0; i < count; i += step) {
        i = std::min(i, count - step);
        const auto inner =
            hn::AverageRound(hn::LoadU(words, rows.b + i), hn::LoadU(words, rows.c + i));
        const auto outer =
            hn::AverageRound(hn::LoadU(words, rows.a + i), hn::LoadU(words, rows.d + i));
        const auto sum = hn::Add(hn::Add(outer, one), hn::Add(inner, hn::Add(inner, inner)));
        hn::StoreU(hn::ShiftRight<2>(sum), words, out + i);
    }
    return true;
}

#endif

} // namespace HWY_NAMESPACE
} // namespace tavi
HWY_AFTER_NAMESPACE();

#if HWY_ONCE

namespace tavi {

HWY_EXPORT(addRows);
HWY_EXPORT(addTenRows);
HWY_EXPORT(averageRows);

void addBinomialRows(const FourRows<std::uint8_t>& rows, std::uint16_t* sums, std::size_t count) {
    if (!HWY_DYNAMIC_DISPATCH(addRows)(rows, sums, count)) {
        plainAddBinomialRows(rows, sums, count);
    }
}

void addQuarterRows(const TenRows& rows, std::uint16_t* sums, std::size_t count) {
    if (!HWY_DYNAMIC_DISPATCH(addTenRows)(rows, sums, count)) {
        plainAddQuarterRows(rows, sums, count);
    }
}

void averageBinomialRows(const FourRows<std::uint16_t>& rows, std::uint16_t* out,
                         std::size_t count) {
    if (!HWY_DYNAMIC_DISPATCH(averageRows)(rows, out, count)) {
        plainAverageBinomialRows(rows, out, count);
    }
}

} // namespace tavi

#endif
