#pragma once

#include "base/AudioBuffer.h"
#include "base/MediaTime.h"

#include <cstdint>
#include <optional>

namespace tavi {

/// What to do with one piece of sound, in moments of the track ("moments") or
/// of the piece itself ("frames").
struct SoundPlacement {
    /// The piece doesn't simply go on where the one before it ended: what is
    /// missing up to `start` is silent.
    bool isNewStretch = false;
    std::int64_t start = 0; ///< Moment at which a new stretch begins.
    std::int64_t cut = 0;   ///< Frames to leave out at the piece's front.
    /// Moments by which the sound that follows is to be drawn out (below 0: pressed
    /// together), spread over kStretchSeconds of it.
    std::int64_t stretch = 0;
};

/// Decides where pieces of sound lie in a track, by their times alone, so that
/// nothing drifts.
///
/// A piece that begins where the one before it ended, give or take a tolerance,
/// goes on without a seam. The tolerance is one moment, what rounding costs;
/// from a live source, whose times tremble and whose clock is not quite ours, it is
/// kLiveTolerance, and the mean deviation is made up for by stretching the
/// sound too little to be heard. Else a piece is put exactly where its time says: silence
/// fills a gap, and what lies over sound already placed is cut off.
/// Thread: one at a time.
class FfmpegAudioTimeline {
public:
    static constexpr double kLiveTolerance = 0.020; ///< Seconds.
    static constexpr int kStretchSeconds = 1;

    FfmpegAudioTimeline(int sampleRate, bool isLive) : m_sampleRate(sampleRate), m_isLive(isLive) {}

    /// Places a piece (of at least one frame and a rate above 0) that is heard from
    /// `time` after the session's start on. Absent, and nothing changes, where
    /// nothing of it is left, and for a time more than a day away.
    std::optional<SoundPlacement> place(const AudioBuffer& piece, MediaTime time);

    /// Up to which moment there is sound.
    std::int64_t end() const;

private:
    struct Kind {
        int sampleRate = 0;
        int channels = 0;
        bool operator==(const Kind&) const = default;
    };

    double tolerance() const;
    std::int64_t stretchFor(double deviation, double frames);
    std::optional<SoundPlacement> begin(const AudioBuffer& piece, double position);

    const int m_sampleRate;
    const bool m_isLive;
    std::optional<Kind> m_kind;   ///< Of the last piece.
    std::int64_t m_start = 0;     ///< Of the stretch, in moments.
    std::int64_t m_frames = 0;    ///< That the stretch has.
    std::int64_t m_stretched = 0; ///< Moments that were added to the stretch.
    double m_deviation = 0;       ///< Mean of the last seconds, in moments.
    double m_sinceStretch = 0;    ///< Seconds of sound.
};

} // namespace tavi
