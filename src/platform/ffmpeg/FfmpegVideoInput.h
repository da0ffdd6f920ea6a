#pragma once

#include "media/AssetWriter.h"
#include "media/PixelBufferPool.h"
#include "platform/ffmpeg/MovieFile.h"
#include "platform/ffmpeg/VideoEncoder.h"
#include "platform/ffmpeg/WriterState.h"

#include <chrono>
#include <condition_variable>
#include <deque>
#include <mutex>
#include <optional>
#include <thread>

namespace tavi {

/// One video track of an FfmpegAssetWriter: a bounded queue, and a thread that
/// converts, encodes and writes.
///
/// Threads: as told in VideoWriterInput; begin(), setSessionStart(), drain() and
/// stop() on the writer's controlling thread.
class FfmpegVideoInput final : public VideoWriterInput {
public:
    /// `file` and `state` outlive the input. `target` is the path named in errors.
    FfmpegVideoInput(const VideoSettings& settings, std::unique_ptr<VideoEncoder> encoder,
                     MovieFile& file, int timescale, WriterState& state,
                     std::filesystem::path target);
    ~FfmpegVideoInput() override;

    bool isReadyForMoreMediaData() const override;
    bool append(PixelBufferPtr image, MediaTime time) override;
    bool appendRepeat(MediaTime time) override;
    void markAsFinished() override;
    std::shared_ptr<PixelBuffer> makePixelBuffer() override;

    void begin();
    void setSessionStart(MediaTime time);

    /// Encodes and writes what is queued; returns when all of it is in the file's hands.
    void drain();

    /// Drops what is queued.
    void stop();

    /// Seconds from the session's start up to the last picture appended; absent
    /// when no more will come, and when none has come for two seconds: whoever
    /// appends them may be waiting for another input. Any thread.
    std::optional<double> appendedSeconds() const;

    std::string encoderName() const { return m_encoder->name(); }

private:
    using Clock = std::chrono::steady_clock;

    struct Picture {
        FrameHandle frame;
        std::int64_t ticks = 0;
    };

    bool isInTime() const;
    bool hasRoom() const;
    bool takesPictureAt(MediaTime time) const;
    bool lastsOn(const FrameHandle& picture, MediaTime time);
    bool enqueueLast(MediaTime time);
    void run();
    bool waitForPicture(Picture& picture);
    void encode(Picture& picture, const VideoEncoder::Sink& sink);
    void join();
    int checkWrite(int code);
    void checkEncode(int code);

    const VideoSettings m_settings;
    const std::unique_ptr<VideoEncoder> m_encoder;
    MovieFile& m_file;
    const int m_timescale;
    WriterState& m_state;
    const std::filesystem::path m_target;
    const int m_track;
    const std::size_t m_capacity;
    PixelBufferPool m_pool;

    mutable std::mutex m_mutex;
    std::condition_variable m_changed;
    std::deque<Picture> m_queue;
    FrameHandle m_last; ///< The last picture, for appendRepeat(); on the appending thread.
    std::optional<MediaTime> m_sessionStart;
    std::optional<MediaTime> m_lastTime;
    std::int64_t m_lastTicks = -1;
    Clock::time_point m_lastAppend = Clock::now();
    Clock::duration m_pictureTime; ///< That encoding one takes, lately.
    std::optional<Clock::time_point> m_encodingSince;
    bool m_isFinished = false;
    bool m_isStopped = false;
    std::thread m_thread;
};

} // namespace tavi
