#include "platform/pipewire/SampleClock.h"

#include <algorithm>
#include <cmath>

namespace tavi {

std::int64_t SampleClock::place(std::int64_t reported, std::size_t frames) {
    constexpr double kSecond = 1e9; // nanoseconds
    const auto wanted = static_cast<double>(reported);
    double start = wanted;
    if (m_next && wanted - *m_next < kLoss * kSecond) {
        // Sound that seems to come earlier is only drawn nearer bit by bit: time must grow.
        const double difference = std::max(wanted - *m_next, -kLoss * kSecond);
        start = *m_next + difference * kCorrection;
    }
    std::int64_t placed = std::llround(start);
    if (m_next) {
        placed = std::max(placed, m_last + 1);
    }
    m_last = placed;
    m_next = start + static_cast<double>(frames) * kSecond / m_rate;
    return placed;
}

} // namespace tavi
