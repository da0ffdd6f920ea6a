#pragma once

#include "media/SoundOutput.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

namespace tavi {

/// The newest stretch of some sound, to be read at any place between its moments.
///
/// What was not given counts as silence. Band-limited: a sine up to 16 kHz comes out within
/// -60 dB of itself.
/// Thread: one at a time; allocates nothing.
class SoundInterpolator {
public:
    /// Moments around a place that a value is made of, half of them before it.
    static constexpr int kTaps = 32;

    SoundInterpolator();

    /// Forgets all; the next moment given is number `position`.
    void restart(std::int64_t position);

    /// Adds the moments that follow, interleaved.
    void append(std::span<const float> samples);

    /// The number of the moment after the last one given.
    std::int64_t end() const { return m_end; }

    /// True when all that value(position) is made of has been given.
    bool reaches(double position) const;

    /// Writes the value of each channel at `position`, in moments.
    void value(double position, float* to) const;

private:
    static constexpr std::size_t kKept = 1024; ///< Moments; a power of two.

    std::array<float, kKept * kPlayedChannels> m_samples{};
    std::int64_t m_begin = 0;
    std::int64_t m_end = 0;
    const float* m_weights;
};

} // namespace tavi
