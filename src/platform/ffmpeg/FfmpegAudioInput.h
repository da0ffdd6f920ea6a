#pragma once

#include "media/AssetWriter.h"
#include "platform/ffmpeg/AudioEncoder.h"
#include "platform/ffmpeg/FfmpegAudioResampler.h"
#include "platform/ffmpeg/FfmpegAudioTimeline.h"
#include "platform/ffmpeg/MovieFile.h"
#include "platform/ffmpeg/WriterState.h"

#include <condition_variable>
#include <deque>
#include <functional>
#include <mutex>
#include <thread>

namespace tavi {

/// One track of sound of an FfmpegAssetWriter: a bounded queue, and a thread
/// that resamples, encodes and writes. The track always begins at the session's
/// start, with silence up to the first piece.
///
/// Threads: as told in AudioWriterInput; begin(), setSessionStart(), drain() and
/// stop() on the writer's controlling thread.
class FfmpegAudioInput final : public AudioWriterInput {
public:
    /// Seconds from the session's start up to which pictures were appended;
    /// absent where no picture will come. Any thread.
    using PicturesEnd = std::function<std::optional<double>()>;

    /// `file` and `state` outlive the input. `target` is the path named in errors.
    FfmpegAudioInput(const AudioSettings& settings, std::unique_ptr<AudioEncoder> encoder,
                     MovieFile& file, WriterState& state, std::filesystem::path target,
                     PicturesEnd picturesEnd);
    ~FfmpegAudioInput() override;

    bool isReadyForMoreMediaData() const override;
    bool append(AudioBufferPtr buffer, MediaTime time) override;
    void markAsFinished() override;

    void begin();
    void setSessionStart(MediaTime time);

    /// Encodes and writes what is queued; returns when all of it is in the
    /// file's hands. What would be heard at `end` (seconds from the session's start) or
    /// later and isn't encoded yet is left out.
    void drain(std::optional<double> end);

    /// Drops what is queued.
    void stop();

private:
    struct Piece {
        AudioBufferPtr buffer;
        SoundPlacement placement;
    };

    bool hasRoom() const;
    void run();
    bool waitForPiece(Piece& piece);
    void join();
    int encodePiece(const Piece& piece);
    int beginStretch(const Piece& piece);
    int encodeSilence(std::int64_t moments);
    int encodeSound();
    int finishTrack();
    void check(int code);
    std::size_t samplesIn(std::int64_t moments) const;

    const AudioSettings m_settings;
    const std::unique_ptr<AudioEncoder> m_encoder;
    MovieFile& m_file;
    WriterState& m_state;
    const std::filesystem::path m_target;
    const PicturesEnd m_picturesEnd;
    const int m_track;
    AudioEncoder::Sink m_sink;

    mutable std::mutex m_mutex;
    std::condition_variable m_changed;
    std::deque<Piece> m_queue;
    double m_queuedSeconds = 0;
    FfmpegAudioTimeline m_timeline;
    std::optional<MediaTime> m_sessionStart;
    std::int64_t m_last; ///< Moment at which the track ends at the latest.
    bool m_isFinished = false;
    bool m_isStopped = false;

    FfmpegAudioResampler m_resampler; ///< What follows is the thread's own.
    std::vector<float> m_sound;       ///< Resampled and not yet encoded.
    std::int64_t m_encoded = 0;       ///< Moments given to the encoder.
    int m_writeCode = 0;              ///< Why the file took no more.
    std::thread m_thread;
};

} // namespace tavi
