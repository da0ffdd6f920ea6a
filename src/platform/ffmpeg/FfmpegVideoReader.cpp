#include "platform/ffmpeg/FfmpegVideoReader.h"

#include <utility>

namespace tavi {

namespace {

/// Pictures decoded ahead: enough to hide an expensive one, few enough for the
/// memory of large screens (12 MB each at 4K).
constexpr std::size_t kMostAhead = 3;

/// The two that a caller holds, and the one being filled.
constexpr std::size_t kMostKept = 3;

} // namespace

FfmpegVideoReader::FfmpegVideoReader(std::unique_ptr<VideoDecoder> decoder, MediaTimeRange range,
                                     int width, int height,
                                     std::shared_ptr<const ColorConverter> colours)
    : m_decoder(std::move(decoder)),
      m_range(range),
      m_pool(width, height, kMostKept),
      m_conversion(std::move(colours)),
      m_thread([this] { decodeRange(); }) {}

FfmpegVideoReader::~FfmpegVideoReader() {
    cancelReading();
    m_thread.join();
}

std::optional<VideoSample> FfmpegVideoReader::copyNextSample() {
    std::unique_lock lock(m_mutex);
    m_changed.wait(lock, [this] { return !m_ahead.empty() || m_isAtEnd || m_isCancelled; });
    if (m_isCancelled) {
        return std::nullopt;
    }
    if (m_ahead.empty()) {
        m_status = m_hasFailed ? AssetReaderStatus::failed : AssetReaderStatus::completed;
        return std::nullopt;
    }
    const Picture picture = std::move(m_ahead.front());
    m_ahead.pop_front();
    lock.unlock();
    m_changed.notify_all();
    return VideoSample{picture.time, converted(*picture.frame)};
}

/// On the caller's thread: what waits is then half as large as BGRA.
PixelBufferPtr FfmpegVideoReader::converted(const AVFrame& picture) {
    std::shared_ptr<PixelBuffer> image = m_pool.make();
    return m_conversion.convert(picture, *image) ? PixelBufferPtr(std::move(image)) : nullptr;
}

void FfmpegVideoReader::cancelReading() {
    {
        const std::lock_guard lock(m_mutex);
        if (m_status == AssetReaderStatus::reading) {
            m_status = AssetReaderStatus::cancelled;
        }
        m_isCancelled = true;
        m_ahead.clear();
    }
    m_changed.notify_all();
}

void FfmpegVideoReader::decodeRange() {
    const MediaTime end = m_range.end();
    FrameHandle held(av_frame_alloc()); // The picture in force at the start, as far as is known.
    MediaTime heldTime;
    bool goesOn = end > m_range.start;
    if (goesOn) {
        m_decoder->seek(m_range.start);
    }
    while (goesOn) {
        AVFrame* picture = m_decoder->next();
        const bool isBefore = picture && m_decoder->time() <= m_range.start;
        if (!isBefore && held->buf[0]) {
            goesOn = give(*held, heldTime);
            av_frame_unref(held.get());
        }
        if (!picture || m_decoder->time() >= end) {
            break;
        }
        if (isBefore) {
            av_frame_unref(held.get());
            av_frame_move_ref(held.get(), picture);
            heldTime = m_decoder->time();
        } else {
            goesOn = goesOn && give(*picture, m_decoder->time());
        }
    }
    finish();
}

/// Queues one picture; one that isn't after the last is left out. False when
/// reading was cancelled.
bool FfmpegVideoReader::give(AVFrame& picture, MediaTime time) {
    if (m_lastTime && time <= *m_lastTime) {
        return true;
    }
    m_lastTime = time;
    FrameHandle frame(av_frame_alloc());
    av_frame_move_ref(frame.get(), &picture);
    std::unique_lock lock(m_mutex);
    m_changed.wait(lock, [this] { return m_ahead.size() < kMostAhead || m_isCancelled; });
    if (m_isCancelled) {
        return false;
    }
    m_ahead.push_back({std::move(frame), time});
    lock.unlock();
    m_changed.notify_all();
    return true;
}

void FfmpegVideoReader::finish() {
    {
        const std::lock_guard lock(m_mutex);
        m_hasFailed = m_decoder->error().has_value();
        m_isAtEnd = true;
    }
    m_changed.notify_all();
}

} // namespace tavi
