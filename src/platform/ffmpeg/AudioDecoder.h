#pragma once

#include "base/MediaTime.h"
#include "base/Result.h"
#include "media/MediaError.h"
#include "platform/ffmpeg/FfmpegAudioResampler.h"
#include "platform/ffmpeg/TrackDecoder.h"

#include <filesystem>
#include <memory>
#include <optional>
#include <vector>

namespace tavi {

/// A decoded stretch of sound.
struct SoundPiece {
    std::int64_t position = 0;  ///< Of its first moment on the movie's timeline, in moments.
    std::vector<float> samples; ///< Interleaved.
};

/// The sound of one track of a file from its beginning to its end, as floats.
///
/// Thread: one at a time.
class AudioDecoder {
public:
    /// `track` is the stream's index in the file; the sound is given at
    /// `sampleRate` with `channels`.
    /// Errors: notFound, notMedia, cannotDecode.
    static Result<std::unique_ptr<AudioDecoder>, MediaError>
    open(const std::filesystem::path& path, int track, int sampleRate, int channels);

    /// Goes to `time`: the next pieces hold all sound from there on, and some before it.
    void seek(MediaTime time);

    /// The next piece; pieces may touch, overlap or leave gaps as the file's
    /// times say. Absent at the end of the track and when the rest can't be
    /// read (error() tells). Damaged stretches are left out.
    std::optional<SoundPiece> next();

    /// Why nothing could be read to the end; absent after a whole reading.
    const std::optional<MediaError>& error() const { return m_track.error(); }

    /// Moments by which the file's times may be off because of its clock's steps.
    std::int64_t rounding() const { return m_rounding; }

private:
    AudioDecoder(int sampleRate, int channels);

    void noteTrack();
    std::optional<SoundPiece> convertFrame();
    std::optional<SoundPiece> lastPiece();
    std::int64_t toMoments(std::int64_t ticks) const;
    const AVStream& stream() const { return m_track.stream(); }

    TrackDecoder m_track;
    int m_sampleRate;
    int m_channels;
    FfmpegAudioResampler m_resampler;
    FrameHandle m_frame{av_frame_alloc()};
    std::int64_t m_rounding = 0;
    std::int64_t m_expected = 0;            ///< Where the next frame starts if it doesn't say so.
    std::optional<SoundPiece> m_held;       ///< Until it is known whether it is the last one.
    std::optional<std::int64_t> m_trackEnd; ///< As the track's description says.
};

} // namespace tavi
