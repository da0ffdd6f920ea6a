#include "render/ResampleColumns.h"

namespace tavi {

namespace {

constexpr int kChannels = 4;

} // namespace

void ResampleColumns::begin(const AxisTaps& taps, int sourceWidth) {
    m_columns = taps.first.size();
    if (m_groups.makeInterpolation(taps, sourceWidth)) {
        m_means = Means::interpolation;
    } else if (m_groups.makeReduction(taps, sourceWidth)) {
        m_means = Means::reduction;
    } else {
        m_means = Means::plain;
    }
}

std::size_t ResampleColumns::rowSize() const {
    const auto size = static_cast<std::size_t>(m_means == Means::plain ? 1 : m_groups.size);
    return (m_columns + size - 1) / size * size * kChannels;
}

bool ResampleColumns::columns(const std::uint8_t* in, const std::uint8_t* next,
                              const AxisTaps& taps, std::uint16_t* out) const {
    switch (m_means) {
    case Means::interpolation:
        return interpolateGroups(m_groups, in, next, out);
    case Means::reduction:
        return reduceGroups(m_groups, in, next, out);
    case Means::plain:
        plainColumns(in, taps, out);
        break;
    }
    return false;
}

void plainColumns(const std::uint8_t* in, const AxisTaps& taps, std::uint16_t* out) {
    constexpr int kShift = AxisTaps::kBits - ResampleColumns::kExtraBits;
    constexpr std::uint32_t kHalf = 1U << (kShift - 1);
    const std::int16_t* weights = taps.weights.data();
    for (const int first : taps.first) {
        const std::uint8_t* pixel = in + static_cast<std::ptrdiff_t>(first) * kChannels;
        std::uint32_t sums[kChannels] = {kHalf, kHalf, kHalf, kHalf};
        for (int tap = 0; tap < taps.count; ++tap, pixel += kChannels) {
            const auto weight = static_cast<std::uint32_t>(*weights++);
            for (int c = 0; c < kChannels; ++c) {
                sums[c] += pixel[c] * weight;
            }
        }
        for (int c = 0; c < kChannels; ++c) {
            *out++ = static_cast<std::uint16_t>(sums[c] >> kShift);
        }
    }
}

} // namespace tavi
