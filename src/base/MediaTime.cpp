#include "base/MediaTime.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace tavi {

namespace {

__extension__ using Int128 = __int128;

std::int64_t clampToInt64(Int128 v) {
    constexpr Int128 kMin = std::numeric_limits<std::int64_t>::min();
    constexpr Int128 kMax = std::numeric_limits<std::int64_t>::max();
    return static_cast<std::int64_t>(std::clamp(v, kMin, kMax));
}

/// a / b to nearest, halves away from zero; b > 0.
Int128 divideRounded(Int128 a, Int128 b) {
    const Int128 half = b / 2;
    return a >= 0 ? (a + half) / b : -((-a + half) / b);
}

} // namespace

MediaTime MediaTime::fromSeconds(double seconds, std::int32_t timescale) {
    if (std::isnan(seconds)) {
        return {0, timescale};
    }
    const double units = std::round(seconds * timescale);
    constexpr double kLimit = 9223372036854775807.0;
    if (units >= kLimit) {
        return {std::numeric_limits<std::int64_t>::max(), timescale};
    }
    if (units <= -kLimit) {
        return {std::numeric_limits<std::int64_t>::min(), timescale};
    }
    return {static_cast<std::int64_t>(units), timescale};
}

MediaTime MediaTime::rescaled(std::int32_t newTimescale) const {
    if (newTimescale == timescale) {
        return *this;
    }
    return {clampToInt64(divideRounded(static_cast<Int128>(value) * newTimescale, timescale)),
            newTimescale};
}

MediaTime MediaTime::operator+(MediaTime other) const {
    const std::int32_t scale = std::max(timescale, other.timescale);
    const Int128 sum = static_cast<Int128>(rescaled(scale).value) + other.rescaled(scale).value;
    return {clampToInt64(sum), scale};
}

MediaTime MediaTime::operator-(MediaTime other) const {
    const std::int32_t scale = std::max(timescale, other.timescale);
    const Int128 difference =
        static_cast<Int128>(rescaled(scale).value) - other.rescaled(scale).value;
    return {clampToInt64(difference), scale};
}

std::strong_ordering MediaTime::operator<=>(const MediaTime& other) const {
    const Int128 a = static_cast<Int128>(value) * other.timescale;
    const Int128 b = static_cast<Int128>(other.value) * timescale;
    return a < b ? std::strong_ordering::less
                 : (a > b ? std::strong_ordering::greater : std::strong_ordering::equal);
}

} // namespace tavi
