#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "render/SymmetricRows.cpp" // compiled once for each target
#include "render/BlurKernels.h"

#include <algorithm>
#include <hwy/foreach_target.h> // before highway.h
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace tavi {
namespace HWY_NAMESPACE {

#if HWY_TARGET == HWY_SCALAR

/// Without vectors the plain version serves.
bool addPairs(const SymmetricRows&, const float*, float*, std::size_t) {
    return false;
}

#else

namespace hn = hwy::HWY_NAMESPACE;

/// Adds up four vectors of numbers from `i` on, which share the loads of weights
/// and rows and don't wait for each other.
HWY_INLINE void addFour(const SymmetricRows& rows, const float* weights, float* out,
                        std::size_t i) {
    const hn::ScalableTag<float> floats;
    const std::size_t step = hn::Lanes(floats);
    const std::size_t places[4] = {i, i + step, i + 2 * step, i + 3 * step};
    const auto start = [&](std::size_t place) HWY_ATTR {
        return hn::Mul(hn::LoadU(floats, rows.middle + place), hn::Set(floats, weights[0]));
    };
    auto a = start(places[0]);
    auto b = start(places[1]);
    auto c = start(places[2]);
    auto d = start(places[3]);
    for (std::size_t k = 0; k < rows.before.size(); ++k) {
        const float* before = rows.before[k];
        const float* after = rows.after[k];
        const auto weight = hn::Set(floats, weights[k + 1]);
        const auto pair = [&](std::size_t place) HWY_ATTR {
            return hn::Add(hn::LoadU(floats, before + place), hn::LoadU(floats, after + place));
        };
        a = hn::MulAdd(pair(places[0]), weight, a);
        b = hn::MulAdd(pair(places[1]), weight, b);
        c = hn::MulAdd(pair(places[2]), weight, c);
        d = hn::MulAdd(pair(places[3]), weight, d);
    }
    hn::StoreU(a, floats, out + places[0]);
    hn::StoreU(b, floats, out + places[1]);
    hn::StoreU(c, floats, out + places[2]);
    hn::StoreU(d, floats, out + places[3]);
}

HWY_INLINE void addOne(const SymmetricRows& rows, const float* weights, float* out, std::size_t i) {
    const hn::ScalableTag<float> floats;
    auto sum = hn::Mul(hn::LoadU(floats, rows.middle + i), hn::Set(floats, weights[0]));
    for (std::size_t k = 0; k < rows.before.size(); ++k) {
        const auto pair =
            hn::Add(hn::LoadU(floats, rows.before[k] + i), hn::LoadU(floats, rows.after[k] + i));
        sum = hn::MulAdd(pair, hn::Set(floats, weights[k + 1]), sum);
    }
    hn::StoreU(sum, floats, out + i);
}

/// Returns false, having done nothing, where there is less than a vector.
bool addPairs(const SymmetricRows& rows, const float* weights, float* out, std::size_t count) {
    const std::size_t step = hn::Lanes(hn::ScalableTag<float>());
    if (count < step) {
        return false;
    }
    std::size_t i = 0;
    for (; i + 4 * step <= count; i += 4 * step) {
        addFour(rows, weights, out, i);
    }
    for (; i < count; i += step) {
        i = std::min(i, count - step); // the last vector overlaps the one before
        addOne(rows, weights, out, i);
    }
    return true;
}

#endif

} // namespace HWY_NAMESPACE
} // namespace tavi
HWY_AFTER_NAMESPACE();

#if HWY_ONCE

namespace tavi {

HWY_EXPORT(addPairs);

void addSymmetricRows(const SymmetricRows& rows, const float* weights, float* out,
                      std::size_t count) {
    if (!HWY_DYNAMIC_DISPATCH(addPairs)(rows, weights, out, count)) {
        plainAddSymmetricRows(rows, weights, out, count);
    }
}

} // namespace tavi

#endif
