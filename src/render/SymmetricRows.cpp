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

/// Returns false, having done nothing, where there is less than a vector.
bool addPairs(const SymmetricRows& rows, const float* weights, float* out, std::size_t count) {
    const hn::ScalableTag<float> floats;
    const std::size_t step = hn::Lanes(floats);
    if (count < step) {
        return false;
    }
    const std::size_t pairs = rows.before.size();
    for (std::size_t i = 0; i < count; i += step) {
        i = std::min(i, count - step); // the last vector overlaps the one before
        auto sum = hn::Mul(hn::LoadU(floats, rows.middle + i), hn::Set(floats, weights[0]));
        for (std::size_t k = 0; k < pairs; ++k) {
            const auto pair = hn::Add(hn::LoadU(floats, rows.before[k] + i),
                                      hn::LoadU(floats, rows.after[k] + i));
            sum = hn::MulAdd(pair, hn::Set(floats, weights[k + 1]), sum);
        }
        hn::StoreU(sum, floats, out + i);
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
