#include "platform/ffmpeg/FfmpegAudioTimeline.h"

#include <algorithm>
#include <cmath>

namespace tavi {

namespace {

/// Over so many seconds of sound the deviation of a live source is averaged.
constexpr double kAveraging = 2;

/// A mean deviation below it is left alone, in seconds.
constexpr double kNegligible = 0.001;

/// A piece further away than that, in seconds, has a time that can't be meant.
constexpr double kLongestGap = 24 * 60 * 60;

/// Share of the sound that may be added or taken away unheard: 3 cents of pitch
/// are told apart by nobody, and no clock is that wrong.
constexpr double kMostStretch = 0.002;

} // namespace

double FfmpegAudioTimeline::tolerance() const {
    return m_isLive ? kLiveTolerance * m_sampleRate : 1;
}

std::int64_t FfmpegAudioTimeline::end() const {
    if (!m_kind) {
        return 0;
    }
    const double length =
        static_cast<double>(m_frames) * m_sampleRate / std::max(m_kind->sampleRate, 1);
    return m_start + std::llround(length) + m_stretched;
}

std::optional<SoundPlacement> FfmpegAudioTimeline::place(const AudioBuffer& piece, MediaTime time) {
    const double position = static_cast<double>(time.value) * m_sampleRate / time.timescale;
    const double expected = static_cast<double>(end());
    const bool goesOn = m_kind == Kind{piece.sampleRate, piece.channels} &&
                        std::abs(position - expected) <= tolerance();
    if (!goesOn) {
        return begin(piece, position);
    }
    SoundPlacement placement;
    const auto frames = static_cast<std::int64_t>(piece.frames());
    m_frames += frames;
    if (m_isLive) {
        placement.stretch =
            stretchFor(position - expected, static_cast<double>(frames) / piece.sampleRate);
        m_stretched += placement.stretch;
    }
    return placement;
}

/// Makes up for part of the mean deviation once a second. `seconds` is the
/// length of the piece that deviates.
std::int64_t FfmpegAudioTimeline::stretchFor(double deviation, double seconds) {
    const double share = std::min(seconds / kAveraging, 1.0);
    m_deviation += (deviation - m_deviation) * share;
    m_sinceStretch += seconds;
    if (m_sinceStretch < kStretchSeconds || std::abs(m_deviation) < kNegligible * m_sampleRate) {
        return 0;
    }
    m_sinceStretch = 0;
    const double most = kMostStretch * kStretchSeconds * m_sampleRate;
    const std::int64_t stretch = std::llround(std::clamp(m_deviation / 2, -most, most));
    m_deviation -= static_cast<double>(stretch);
    return stretch;
}

std::optional<SoundPlacement> FfmpegAudioTimeline::begin(const AudioBuffer& piece,
                                                         double position) {
    const std::int64_t placed = end();
    if (std::abs(position - static_cast<double>(placed)) > kLongestGap * m_sampleRate) {
        return std::nullopt;
    }
    SoundPlacement placement{true, std::llround(position), 0, 0};
    // Sound of another kind from the same live source trembles like its like.
    if (m_kind && std::abs(position - static_cast<double>(placed)) <= tolerance()) {
        placement.start = placed;
    }
    if (placement.start < placed) {
        const double over = static_cast<double>(placed) - position;
        placement.cut = std::llround(over * piece.sampleRate / m_sampleRate);
        placement.start = placed;
    }
    const auto frames = static_cast<std::int64_t>(piece.frames());
    if (placement.cut >= frames) {
        return std::nullopt;
    }
    m_kind = Kind{piece.sampleRate, piece.channels};
    m_start = placement.start;
    m_frames = frames - placement.cut;
    m_stretched = 0;
    m_deviation = 0;
    m_sinceStretch = 0;
    return placement;
}

} // namespace tavi
