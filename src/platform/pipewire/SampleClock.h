#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>

namespace tavi {

/// Places stretches of sound on the host clock.
///
/// One stretch follows on the other without gap or overlap, though the times at which they are
/// reported tremble; what the device's clock is faster or slower than the host's is followed
/// slowly. Only when sound was lost, a stretch begins where it was reported.
class SampleClock {
public:
    /// Sound reported so much later than where it should follow was not all delivered.
    static constexpr double kLoss = 0.04; // seconds
    /// What is corrected of a reported difference; a difference of clocks of 100 ppm then stands
    /// at a quarter of a millisecond with stretches of 20 ms.
    static constexpr double kCorrection = 1.0 / 128;

    /// `sampleRate` in Hz.
    explicit SampleClock(int sampleRate = 48000) : m_rate(sampleRate) {}

    /// Where a stretch of `frames` that was reported to begin at `reported` begins; both in host
    /// nanoseconds. Grows from call to call.
    std::int64_t place(std::int64_t reported, std::size_t frames);

private:
    int m_rate;
    std::optional<double> m_next; ///< Where the next stretch should begin, host nanoseconds.
    std::int64_t m_last = 0;
};

} // namespace tavi
