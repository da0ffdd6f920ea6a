#pragma once

#include "media/AssetReader.h"
#include "media/PixelBufferPool.h"
#include "platform/ffmpeg/PixelConversion.h"
#include "platform/ffmpeg/VideoDecoder.h"

#include <atomic>
#include <condition_variable>
#include <deque>
#include <mutex>
#include <thread>

namespace tavi {

/// Reads one track over one range. A thread of its own decodes a few pictures ahead
/// of the caller, on whose thread they are converted into recycled memory.
///
/// The destructor cancels.
class FfmpegVideoReader final : public VideoReader {
public:
    /// Starts decoding. Pictures are given in `size`, whatever size a single
    /// one is coded in. `colours`: see PictureDecoding.
    FfmpegVideoReader(std::unique_ptr<VideoDecoder> decoder, MediaTimeRange range, int width,
                      int height, std::shared_ptr<const ColorConverter> colours);
    ~FfmpegVideoReader() override;

    std::optional<VideoSample> copyNextSample() override;
    AssetReaderStatus status() const override { return m_status; }
    void cancelReading() override;

private:
    /// A picture as it was decoded.
    struct Picture {
        FrameHandle frame;
        MediaTime time;
    };

    void decodeRange();
    bool give(AVFrame& picture, MediaTime time);
    PixelBufferPtr converted(const AVFrame& picture);
    void finish();

    std::unique_ptr<VideoDecoder> m_decoder;
    const MediaTimeRange m_range;
    PixelBufferPool m_pool;
    PictureDecoding m_conversion;
    std::optional<MediaTime> m_lastTime; ///< Of the last sample given, on the thread.

    std::mutex m_mutex;
    std::condition_variable m_changed;
    std::deque<Picture> m_ahead;
    bool m_isCancelled = false;
    bool m_isAtEnd = false;
    bool m_hasFailed = false;
    std::atomic<AssetReaderStatus> m_status = AssetReaderStatus::reading;
    std::thread m_thread;
};

} // namespace tavi
