#include "media/SoundFeed.h"

#include <algorithm>
#include <cmath>

namespace tavi {

namespace {

/// No device is further off than this share; more would be heard.
constexpr double kMostCorrection = 0.003;

/// One sound goes over into another in so many moments: too short to be missed, too long to click.
constexpr float kSeam = 96;

constexpr double kFramesPerNanosecond = kPlayedRate / 1e9;

} // namespace

void SoundFeed::begin(std::int64_t hostNanoseconds) {
    m_runStart = hostNanoseconds;
    m_end = 0;
    m_run.store((m_run.load() + 2) | 1);
}

void SoundFeed::end() {
    m_run.store((m_run.load() + 2) & ~std::uint64_t{1});
}

std::size_t SoundFeed::room() const {
    return (kBlocks - static_cast<std::size_t>(m_written.load() - m_taken.load())) * kBlock;
}

std::size_t SoundFeed::write(std::span<const float> samples) {
    std::size_t taken = 0;
    const std::size_t frames = samples.size() / kPlayedChannels;
    while (taken < frames && m_written.load() - m_taken.load(std::memory_order_acquire) < kBlocks) {
        Block& block = m_blocks[m_written.load() % kBlocks];
        block.run = m_run.load();
        block.runStart = m_runStart;
        block.position = m_end;
        block.frames = std::min(kBlock, frames - taken);
        const auto from = samples.subspan(taken * kPlayedChannels, block.frames * kPlayedChannels);
        std::copy(from.begin(), from.end(), block.samples.begin());
        m_written.fetch_add(1, std::memory_order_release);
        m_end += static_cast<std::int64_t>(block.frames);
        taken += block.frames;
    }
    return taken;
}

/// The next block of `run`, after what is left of earlier ones was thrown away; null when nothing
/// was written.
const SoundFeed::Block* SoundFeed::nextBlock(std::uint64_t run) noexcept {
    while (m_taken.load() < m_written.load(std::memory_order_acquire)) {
        const Block& block = m_blocks[m_taken.load() % kBlocks];
        if (block.run == run) {
            return &block;
        }
        m_taken.fetch_add(1, std::memory_order_release);
    }
    return nullptr;
}

/// From here on other sound is heard than what came before: goes over from one to the other.
void SoundFeed::seam() noexcept {
    m_tail = m_last;
    m_gain = 0;
}

void SoundFeed::takeUp(std::uint64_t run) noexcept {
    if (run != m_heardRun) {
        m_heardRun = run;
        m_isPlaced = false;
        m_isMissing = false;
        m_interpolator.restart(0);
        seam();
    }
}

/// Finds the place in the run that is heard now. False while none of the run is there.
bool SoundFeed::follow(std::int64_t hostNanoseconds) noexcept {
    if (!m_isPlaced) {
        const Block* block = nextBlock(m_heardRun);
        if (block == nullptr) {
            return false;
        }
        m_heardStart = block->runStart;
    }
    const double wanted =
        static_cast<double>(hostNanoseconds - m_heardStart) * kFramesPerNanosecond;
    const double difference = wanted - m_position;
    if (!m_isPlaced || std::abs(difference) > kLoss * kPlayedRate) {
        if (m_isPlaced) {
            seam();
        }
        m_isPlaced = true;
        m_position = wanted;
        m_step = 1;
    } else {
        m_step = 1 + std::clamp(difference / (kSettling * kPlayedRate), -kMostCorrection,
                                kMostCorrection);
    }
    return true;
}

/// Has what is heard at the position ready, as far as it was written.
void SoundFeed::load() noexcept {
    while (!m_interpolator.reaches(m_position)) {
        const Block* block = nextBlock(m_heardRun);
        if (block == nullptr) {
            return;
        }
        m_interpolator.append(std::span(block->samples).first(block->frames * kPlayedChannels));
        m_taken.fetch_add(1, std::memory_order_release);
    }
}

void SoundFeed::fade(float* moment) noexcept {
    if (m_gain < 1) {
        m_gain = std::min(m_gain + 1 / kSeam, 1.0F);
        for (std::size_t c = 0; c < kPlayedChannels; ++c) {
            moment[c] = moment[c] * m_gain + m_tail[c] * (1 - m_gain);
        }
    }
    std::copy_n(moment, kPlayedChannels, m_last.begin());
}

void SoundFeed::fill(std::span<float> to, std::int64_t hostNanoseconds) noexcept {
    const std::uint64_t run = m_run.load();
    takeUp(run);
    const bool isHeard = (run & 1) != 0 && follow(hostNanoseconds);
    if (!isHeard) {
        nextBlock(run); // makes room
    }
    for (std::size_t i = 0; i + 1 < to.size(); i += kPlayedChannels) {
        float* moment = &to[i];
        moment[0] = moment[1] = 0;
        if (isHeard) {
            load();
            const bool isMissing =
                m_interpolator.end() <= static_cast<std::int64_t>(std::floor(m_position));
            if (isMissing != m_isMissing) {
                m_isMissing = isMissing;
                seam();
            }
            m_interpolator.value(m_position, moment);
            m_position += m_step;
        }
        fade(moment);
    }
}

} // namespace tavi
