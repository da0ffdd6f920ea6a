#include "render/AxisTaps.h"

#include <algorithm>
#include <cmath>

namespace tavi {

namespace {

/// The source pixels that may be looked at: those that the stretch touches.
struct Limits {
    int low = 0;
    int high = 0; ///< Inclusive.
};

Limits limitsOf(const AxisMapping& mapping) {
    // A stretch that ends on a pixel border up to rounding doesn't touch the pixel beyond.
    constexpr double kRounding = 1e-9;
    const double last = mapping.sourceSize - 1;
    const double low = std::floor(mapping.sourceStart + kRounding);
    const double high = std::ceil(mapping.sourceStart + mapping.sourceLength - kRounding) - 1;
    Limits limits{static_cast<int>(std::clamp(low, 0.0, last)),
                  static_cast<int>(std::clamp(high, 0.0, last))};
    limits.high = std::max(limits.low, limits.high);
    return limits;
}

/// Source pixels a target pixel; exactly 1 for what is 1 up to rounding.
double stepOf(const AxisMapping& mapping) {
    constexpr double kRounding = 1e-9;
    const double step = mapping.sourceLength / mapping.targetLength;
    return std::abs(step - 1) < kRounding ? 1 : step;
}

/// A share as a weight; shares are 0..1. Rounds to nearest.
int weightOf(double share) {
    return static_cast<int>(share * AxisTaps::kOne + 0.5);
}

/// What one target pixel takes, before it is brought to a fixed number of taps.
class TapBuilder {
public:
    TapBuilder(const AxisMapping& mapping, int count)
        : m_mapping(mapping),
          m_step(stepOf(mapping)),
          m_limits(limitsOf(mapping)),
          m_shares(static_cast<std::size_t>(count)) {}

    /// Works target pixel `x` out; `first` and `weights` receive the result.
    void make(int x, int& first, std::int16_t* weights) {
        std::fill(m_shares.begin(), m_shares.end(), 0.0);
        const double center = m_mapping.sourceStart + (x + 0.5 - m_mapping.targetStart) * m_step;
        if (m_step > 1) {
            first = takeArea(center - m_step * 0.5, center + m_step * 0.5);
        } else {
            first = takeNeighbours(center);
        }
        quantize(weights);
    }

private:
    /// The leftmost pixel from which all taps stay inside the limits.
    int firstWithin(double pixel) const {
        const int rightmost =
            std::max(m_limits.low, m_limits.high + 1 - static_cast<int>(m_shares.size()));
        return static_cast<int>(
            std::clamp(pixel, static_cast<double>(m_limits.low), static_cast<double>(rightmost)));
    }

    void add(int first, int pixel, double share) {
        const int inside = std::clamp(pixel, m_limits.low, m_limits.high);
        m_shares[static_cast<std::size_t>(inside - first)] += share;
    }

    int takeNeighbours(double center) {
        // Within half a pixel of the crop's edge the value stays as it is there, so
        // that the pixel across the edge counts for no more than its part inside.
        const double inset = std::min(0.5, m_mapping.sourceLength * 0.5);
        const double nearest = m_mapping.sourceStart + inset;
        const double last = m_mapping.sourceStart + m_mapping.sourceLength - inset;
        const double inside = std::max(nearest, std::min(center, last));
        const double low = m_limits.low;
        const double high = m_limits.high;
        const double position = std::clamp(inside - 0.5, low, high);
        const double pixel = std::floor(position);
        const int first = firstWithin(pixel);
        add(first, static_cast<int>(pixel), 1 - (position - pixel));
        add(first, static_cast<int>(pixel) + 1, position - pixel);
        return first;
    }

    int takeArea(double from, double to) {
        const double end = m_limits.high + 1;
        const double low = std::clamp(std::max(from, m_mapping.sourceStart),
                                      static_cast<double>(m_limits.low), end);
        const double high =
            std::clamp(std::min(to, m_mapping.sourceStart + m_mapping.sourceLength), low, end);
        if (!(high > low)) {
            return takeNeighbours((from + to) * 0.5);
        }
        const int first = firstWithin(std::floor(low));
        for (int pixel = static_cast<int>(low); pixel < high; ++pixel) {
            add(first, pixel, std::min<double>(pixel + 1, high) - std::max<double>(pixel, low));
        }
        return first;
    }

    /// Shares to weights that add up exactly; what rounding leaves goes to the largest.
    void quantize(std::int16_t* weights) {
        double total = 0;
        for (const double share : m_shares) {
            total += share;
        }
        const double part = 1 / total;
        int sum = 0;
        std::size_t largest = 0;
        for (std::size_t i = 0; i < m_shares.size(); ++i) {
            weights[i] = static_cast<std::int16_t>(weightOf(m_shares[i] * part));
            sum += weights[i];
            largest = m_shares[i] > m_shares[largest] ? i : largest;
        }
        weights[largest] = static_cast<std::int16_t>(weights[largest] + AxisTaps::kOne - sum);
    }

    AxisMapping m_mapping;
    double m_step; ///< Source pixels a target pixel.
    Limits m_limits;
    std::vector<double> m_shares;
};

/// The target pixels between whose centres no edge of the source stretch matters:
/// those whose two neighbours both lie wholly inside of it.
struct Inside {
    int begin = 0;
    int end = 0;
};

Inside insideOf(const AxisMapping& mapping, int targetBegin, int targetEnd) {
    // A pixel less at either end: rounding must not decide.
    const Limits limits = limitsOf(mapping);
    const double step = stepOf(mapping);
    const auto targetOf = [&](double source) {
        const double target = (source - mapping.sourceStart) / step + mapping.targetStart - 0.5;
        return std::clamp<double>(target, targetBegin, targetEnd);
    };
    const double low = std::max<double>(limits.low, mapping.sourceStart) + 0.5;
    const double high =
        std::min<double>(limits.high + 1, mapping.sourceStart + mapping.sourceLength) - 0.5;
    const int begin = std::min(static_cast<int>(std::ceil(targetOf(low))) + 1, targetEnd);
    const int end = static_cast<int>(std::floor(targetOf(high))) - 1;
    return {begin, std::max(begin, end)};
}

/// The taps of enlarged pixels that have no edge near them, as TapBuilder makes them.
void interpolate(const AxisMapping& mapping, const Inside& inside, AxisTaps& taps) {
    const double step = stepOf(mapping);
    const auto offset = static_cast<std::size_t>(inside.begin - taps.begin);
    int* first = taps.first.data() + offset;
    std::int16_t* weights = taps.weights.data() + 2 * offset;
    for (int x = inside.begin; x < inside.end; ++x, ++first, weights += 2) {
        const double center = mapping.sourceStart + (x + 0.5 - mapping.targetStart) * step;
        const double position = center - 0.5; // not negative
        *first = static_cast<int>(position);
        const int second = weightOf(position - *first);
        weights[0] = static_cast<std::int16_t>(AxisTaps::kOne - second);
        weights[1] = static_cast<std::int16_t>(second);
    }
}

int tapCount(const AxisMapping& mapping) {
    const double step = stepOf(mapping);
    const double wanted = step > 1 ? std::ceil(step) + 1 : 2;
    const Limits limits = limitsOf(mapping);
    const double available = limits.high - limits.low + 1;
    return static_cast<int>(std::min(wanted, available));
}

} // namespace

std::optional<int> AxisTaps::copiedFrom() const {
    std::optional<int> origin;
    for (int x = begin; x < end(); ++x) {
        const std::int16_t* shares = weightsOf(x);
        const auto whole = std::find(shares, shares + count, kOne);
        const int pixel = firstOf(x) + static_cast<int>(whole - shares);
        if (whole == shares + count || (origin && pixel - (x - begin) != *origin)) {
            return std::nullopt;
        }
        origin = pixel - (x - begin);
    }
    return origin;
}

void AxisTaps::assign(const AxisMapping& mapping, int targetBegin, int targetEnd) {
    begin = targetBegin;
    count = tapCount(mapping);
    const auto pixels = static_cast<std::size_t>(std::max(0, targetEnd - targetBegin));
    first.resize(pixels);
    weights.resize(pixels * static_cast<std::size_t>(count));
    const int limit = targetBegin + static_cast<int>(pixels);
    Inside inside{targetBegin, targetBegin};
    if (count == 2 && stepOf(mapping) <= 1) {
        inside = insideOf(mapping, targetBegin, limit);
        interpolate(mapping, inside, *this);
    }
    TapBuilder builder(mapping, count);
    const auto make = [&](int from, int to) {
        for (int x = from; x < to; ++x) {
            const auto i = static_cast<std::size_t>(x - targetBegin);
            builder.make(x, first[i], weights.data() + i * static_cast<std::size_t>(count));
        }
    };
    make(targetBegin, inside.begin);
    make(inside.end, limit);
}

} // namespace tavi
