#pragma once

#include "media/SoundInterpolator.h"
#include "media/SoundOutput.h"

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>

namespace tavi {

/// Hands sound that is written ahead to an output, each moment at its host time.
///
/// Sound comes in runs: what is written from begin() on is heard from the run's start on without
/// a seam. The device's clock isn't the host's: the run is played a little faster or slower
/// so that it stays in its place; where it is out of place by more than kLoss (the device lost
/// sound, or another one took over) it goes on at the right place, faded over.
/// Threads: one writes, one asks; no locks between them.
class SoundFeed final : public SoundSource {
public:
    /// How much may be written ahead, in moments: what a busy machine decodes late isn't missed.
    static constexpr std::size_t kCapacity = std::size_t{128} * 256;
    /// Out of place by more than this is not the clock's doing, in seconds.
    static constexpr double kLoss = 0.01;
    /// A difference of clocks is made up for in about this time, in seconds: much longer than what
    /// reported times tremble in, and 100 ppm then stand at a fifth of a millisecond.
    static constexpr double kSettling = 2;

    /// Begins a run whose first moment is heard at `hostNanoseconds`. What is left of the one
    /// before is not heard.
    void begin(std::int64_t hostNanoseconds);

    /// Ends the run: silence from now on.
    void end();

    /// Moments that write() would take.
    std::size_t room() const;

    /// Adds the next moments of the run, interleaved; returns how many were taken.
    std::size_t write(std::span<const float> samples);

    void fill(std::span<float> to, std::int64_t hostNanoseconds) noexcept override;

private:
    static constexpr std::size_t kBlock = 256; ///< Moments.
    static constexpr std::size_t kBlocks = kCapacity / kBlock;

    /// A piece of a run.
    struct Block {
        std::uint64_t run = 0;
        std::int64_t runStart = 0; ///< Host nanoseconds.
        std::int64_t position = 0; ///< Of its first moment in the run.
        std::size_t frames = 0;
        std::array<float, kBlock * kPlayedChannels> samples{};
    };

    const Block* nextBlock(std::uint64_t run) noexcept;
    void takeUp(std::uint64_t run) noexcept;
    bool follow(std::int64_t hostNanoseconds) noexcept;
    void load() noexcept;
    void fade(float* moment) noexcept;
    void seam() noexcept;

    // Between the threads.
    std::atomic<std::uint64_t> m_run = 0; ///< In force; even: silence.
    std::atomic<std::uint64_t> m_written = 0;
    std::atomic<std::uint64_t> m_taken = 0;
    std::array<Block, kBlocks> m_blocks;

    // The writer's.
    std::int64_t m_runStart = 0;
    std::int64_t m_end = 0; ///< Of what was written of the run.

    // The asker's.
    std::uint64_t m_heardRun = 0;
    std::int64_t m_heardStart = 0;
    bool m_isPlaced = false;
    double m_position = 0; ///< In the run, of the next moment that is heard.
    double m_step = 1;
    bool m_isMissing = false; ///< What should be heard wasn't written yet.
    SoundInterpolator m_interpolator;
    std::array<float, kPlayedChannels> m_last{}; ///< Heard last.
    std::array<float, kPlayedChannels> m_tail{}; ///< Heard last before a seam.
    float m_gain = 1;                            ///< Of what comes after the seam.
};

} // namespace tavi
