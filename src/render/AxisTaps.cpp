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
        int sum = 0;
        std::size_t largest = 0;
        for (std::size_t i = 0; i < m_shares.size(); ++i) {
            weights[i] =
                static_cast<std::int16_t>(std::lround(m_shares[i] / total * AxisTaps::kOne));
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
    TapBuilder builder(mapping, count);
    for (std::size_t i = 0; i < pixels; ++i) {
        builder.make(targetBegin + static_cast<int>(i), first[i],
                     weights.data() + i * static_cast<std::size_t>(count));
    }
}

} // namespace tavi
