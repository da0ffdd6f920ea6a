#pragma once

#include "base/AudioBuffer.h"
#include "base/MediaTime.h"
#include "base/PixelBuffer.h"
#include "base/Result.h"
#include "media/MediaError.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

namespace tavi {

enum class FileType {
    quickTimeMovie, ///< Fragmented while it is written; a plain indexed file once finished.
    mp4,            ///< Indexed, the index in front of the media ("+faststart").
};

enum class VideoCodec { hevc, h264 };

/// What one encoded video track is to be.
struct VideoSettings {
    VideoCodec codec = VideoCodec::hevc;
    int width = 0;              ///< Pixels, even.
    int height = 0;             ///< Pixels, even.
    std::int64_t bitRate = 0;   ///< Average, bits per second.
    int expectedFrameRate = 60; ///< Frames per second.
    /// True for a live source: lowest delay, and an input that says "not ready"
    /// rather than wait.
    bool realTime = false;
    /// True for a film to look at once: the encoder's quickest way, which needs more
    /// bits for the same picture.
    bool isDraft = false;
    /// True to keep the pictures' alpha, in a second track that players don't show by themselves.
    bool hasAlpha = false;
};

/// What one track of sound (AAC) is to be.
struct AudioSettings {
    int channels = 1;
    int sampleRate = 44100;         ///< Hz.
    std::int64_t bitRate = 128'000; ///< Bits per second.
    bool realTime = false;          ///< As in VideoSettings.
};

enum class AssetWriterStatus { unknown = 0, writing = 1, completed = 2, failed = 3, cancelled = 4 };

/// The way of one track into an AssetWriter: a bounded queue in front of an
/// encoder thread.
///
/// Threads: one thread feeds an input; markAsFinished() after the last append.
class VideoWriterInput {
public:
    virtual ~VideoWriterInput() = default;

    /// True while the queue has room; for a live source also only while what is in it will be
    /// encoded soon. False also after a failure: nothing more is taken.
    virtual bool isReadyForMoreMediaData() const = 0;

    /// Queues one picture of the track's size; returns at once. False (and the
    /// picture is dropped) when the queue is full, the writer isn't writing, the
    /// session hasn't begun, or `time` is not after the last one.
    virtual bool append(PixelBufferPtr image, MediaTime time) = 0;

    /// Queues the picture of the last append() once more, as append() does: for
    /// a frame that equals the one before it, which needs no memory and no conversion.
    /// False also when nothing was appended before.
    virtual bool appendRepeat(MediaTime time) = 0;

    /// No more pictures will come.
    virtual void markAsFinished() = 0;

    /// A recycled picture of the track's size with undefined content, to draw
    /// the next frame into; absent when the writer has failed or is done.
    virtual std::shared_ptr<PixelBuffer> makePixelBuffer() = 0;
};

/// The way of one track of sound into an AssetWriter.
///
/// Threads: one thread feeds an input; markAsFinished() after the last append.
class AudioWriterInput {
public:
    virtual ~AudioWriterInput() = default;

    /// True while the queue has room and, unless the source is live, the sound is
    /// less than a second ahead of the pictures appended so far, so that the two
    /// lie side by side in the file. Pictures that are marked as finished, or have not
    /// moved for two seconds, hold nothing back.
    /// False also after a failure: nothing more is taken.
    virtual bool isReadyForMoreMediaData() const = 0;

    /// Queues a piece of sound, of any rate and channels; returns at once.
    ///
    /// The sound is heard at `time`, to the sample: what would lie over sound that
    /// was appended before (or before the session's start) is cut off at its
    /// front, a gap is silent. The times of a live source tremble, and its clock is
    /// not ours: up to 20 ms away from the end of the sound before, its sound goes on without a
    /// seam, and is kept in step with its times by stretching it unheard. False (and the piece is
    /// dropped) when the queue is full, the writer isn't writing, the session hasn't begun, or
    /// nothing of the piece is left.
    virtual bool append(AudioBufferPtr buffer, MediaTime time) = 0;

    /// No more sound will come.
    virtual void markAsFinished() = 0;
};

/// Encodes and writes one file.
///
/// States: unknown -> writing -> completed, failed or cancelled.
/// Order: addVideoInput, addAudioInput, startWriting, startSession, appends, markAsFinished on
/// each input, finishWriting.
/// Threads: one controlling thread; inputs as told there. The destructor
/// cancels a writer that is still writing.
class AssetWriter {
public:
    virtual ~AssetWriter() = default;

    /// Adds the video track. The encoder is chosen here, by trial.
    /// The input lives as long as the writer.
    virtual Result<VideoWriterInput*, MediaError> addVideoInput(const VideoSettings& settings) = 0;

    /// Adds a track of sound. The input lives as long as the writer. Errors: noEncoder.
    virtual Result<AudioWriterInput*, MediaError> addAudioInput(const AudioSettings& settings) = 0;

    /// Opens the file and the encoder threads.
    virtual Result<void, MediaError> startWriting() = 0;

    /// `time` becomes the zero of the file.
    virtual void startSession(MediaTime time) = 0;

    /// The last picture stays on screen until `time`: the file's duration ends there.
    /// Sound that lasts longer is cut there in a quickTimeMovie; of an mp4 what is not
    /// yet encoded. Before finishWriting().
    virtual void endSession(MediaTime time) = 0;

    /// Drains the encoders, completes the file and closes it. Blocks. A file
    /// with no picture in it is removed and counts as completed.
    virtual Result<void, MediaError> finishWriting() = 0;

    /// Stops at once and removes the file. Nothing after completion.
    virtual void cancelWriting() = 0;

    virtual AssetWriterStatus status() const = 0;

    /// What made the status `failed`.
    virtual std::optional<MediaError> error() const = 0;

    /// The encoder in use, as the library names it ("libx265"); empty before it is chosen.
    virtual std::string encoderName() const = 0;
};

} // namespace tavi
