#include "media/SoundInterpolator.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <vector>

namespace tavi {

namespace {

constexpr int kTaps = SoundInterpolator::kTaps;

/// Places between two moments for which there are weights; those between are mixed.
constexpr int kPhases = 128;

/// The weights of a windowed sinc (Hann) for each phase, one phase more for the mixing.
std::vector<float> makeWeights() {
    std::vector<float> weights;
    weights.reserve(static_cast<std::size_t>(kPhases + 1) * kTaps);
    for (int phase = 0; phase <= kPhases; ++phase) {
        for (int tap = 0; tap < kTaps; ++tap) {
            const double x = tap - (kTaps / 2 - 1) - static_cast<double>(phase) / kPhases;
            const double angle = std::numbers::pi * x;
            const double sinc = x == 0 ? 1 : std::sin(angle) / angle;
            const double window =
                std::abs(x) < kTaps / 2.0 ? 0.5 + 0.5 * std::cos(angle / (kTaps / 2.0)) : 0;
            weights.push_back(static_cast<float>(sinc * window));
        }
    }
    return weights;
}

const float* sharedWeights() {
    static const std::vector<float> weights = makeWeights();
    return weights.data();
}

} // namespace

SoundInterpolator::SoundInterpolator() : m_weights(sharedWeights()) {}

void SoundInterpolator::restart(std::int64_t position) {
    m_begin = position;
    m_end = position;
}

void SoundInterpolator::append(std::span<const float> samples) {
    for (std::size_t i = 0; i + 1 < samples.size(); i += kPlayedChannels) {
        const std::size_t place = (static_cast<std::size_t>(m_end) % kKept) * kPlayedChannels;
        m_samples[place] = samples[i];
        m_samples[place + 1] = samples[i + 1];
        ++m_end;
    }
    m_begin = std::max(m_begin, m_end - static_cast<std::int64_t>(kKept));
}

bool SoundInterpolator::reaches(double position) const {
    return static_cast<std::int64_t>(std::floor(position)) + kTaps / 2 < m_end;
}

void SoundInterpolator::value(double position, float* to) const {
    const double whole = std::floor(position);
    const double phase = (position - whole) * kPhases;
    const int lower = std::min(static_cast<int>(phase), kPhases - 1);
    const auto mix = static_cast<float>(phase - lower);
    const float* weights = m_weights + static_cast<std::ptrdiff_t>(lower) * kTaps;
    const std::int64_t first = static_cast<std::int64_t>(whole) - (kTaps / 2 - 1);
    float left = 0;
    float right = 0;
    for (int tap = 0; tap < kTaps; ++tap) {
        const std::int64_t moment = first + tap;
        if (moment < m_begin || moment >= m_end) {
            continue;
        }
        const float weight = weights[tap] + mix * (weights[tap + kTaps] - weights[tap]);
        const std::size_t place = (static_cast<std::size_t>(moment) % kKept) * kPlayedChannels;
        left += weight * m_samples[place];
        right += weight * m_samples[place + 1];
    }
    to[0] = left;
    to[1] = right;
}

} // namespace tavi
