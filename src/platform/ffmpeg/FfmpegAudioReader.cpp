#include "platform/ffmpeg/FfmpegAudioReader.h"

#include <algorithm>
#include <utility>

namespace tavi {

FfmpegAudioReader::FfmpegAudioReader(std::unique_ptr<AudioDecoder> decoder, int sampleRate,
                                     int channels)
    : m_decoder(std::move(decoder)),
      m_sampleRate(sampleRate),
      m_channels(channels) {}

std::optional<AudioSample> FfmpegAudioReader::copyNextSample() {
    if (m_status != AssetReaderStatus::reading) {
        return std::nullopt;
    }
    while (queuedFrames() < kFramesPerBuffer && takePiece()) {
    }
    const std::size_t frames = std::min<std::size_t>(queuedFrames(), kFramesPerBuffer);
    if (frames == 0) {
        m_status = m_decoder->error() ? AssetReaderStatus::failed : AssetReaderStatus::completed;
        return std::nullopt;
    }
    return give(frames);
}

void FfmpegAudioReader::cancelReading() {
    AssetReaderStatus reading = AssetReaderStatus::reading;
    m_status.compare_exchange_strong(reading, AssetReaderStatus::cancelled);
}

std::size_t FfmpegAudioReader::queuedFrames() const {
    return m_queue.size() / static_cast<std::size_t>(m_channels);
}

/// Puts the next piece into the queue. False at the end of the track, and as
/// long as the piece lies behind a gap and sound before the gap is queued.
bool FfmpegAudioReader::takePiece() {
    if (!m_waiting) {
        m_waiting = m_decoder->next();
    }
    if (!m_waiting) {
        return false;
    }
    const std::int64_t gap = m_waiting->position - m_end;
    if (gap > m_decoder->rounding()) {
        if (!m_queue.empty()) {
            return false;
        }
        m_end = m_waiting->position;
    } else if (gap < -m_decoder->rounding()) {
        cutFront(-gap); // Over sound that was given, or before the movie's zero.
    }
    const std::vector<float>& samples = m_waiting->samples;
    m_end += static_cast<std::int64_t>(samples.size()) / m_channels;
    m_queue.insert(m_queue.end(), samples.begin(), samples.end());
    m_waiting.reset();
    return true;
}

void FfmpegAudioReader::cutFront(std::int64_t frames) {
    std::vector<float>& samples = m_waiting->samples;
    const auto cut = std::min(static_cast<std::int64_t>(samples.size()), frames * m_channels);
    samples.erase(samples.begin(), samples.begin() + cut);
}

AudioSample FfmpegAudioReader::give(std::size_t frames) {
    const std::int64_t position = m_end - static_cast<std::int64_t>(queuedFrames());
    auto buffer = std::make_shared<AudioBuffer>();
    buffer->sampleRate = m_sampleRate;
    buffer->channels = m_channels;
    const auto end = m_queue.begin() + static_cast<std::ptrdiff_t>(frames) * m_channels;
    buffer->samples.assign(m_queue.begin(), end);
    m_queue.erase(m_queue.begin(), end);
    return {{position, m_sampleRate}, std::move(buffer)};
}

} // namespace tavi
