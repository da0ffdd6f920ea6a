#pragma once

#include "media/AssetReader.h"
#include "platform/ffmpeg/AudioDecoder.h"

#include <atomic>

namespace tavi {

/// Reads one track of sound, decoding as the caller asks: sound costs so little
/// that nothing is won by a thread.
class FfmpegAudioReader final : public AudioReader {
public:
    FfmpegAudioReader(std::unique_ptr<AudioDecoder> decoder, int sampleRate, int channels);

    std::optional<AudioSample> copyNextSample() override;
    AssetReaderStatus status() const override { return m_status; }
    void cancelReading() override;

private:
    bool takePiece();
    void cutFront(std::int64_t frames);
    std::size_t queuedFrames() const;
    AudioSample give(std::size_t frames);

    std::unique_ptr<AudioDecoder> m_decoder;
    const int m_sampleRate;
    const int m_channels;
    std::optional<SoundPiece> m_waiting; ///< Decoded and not yet in the queue.
    std::vector<float> m_queue;          ///< One stretch without a gap.
    std::int64_t m_end = 0;              ///< Where the queue's sound ends, in moments.
    std::atomic<AssetReaderStatus> m_status = AssetReaderStatus::reading;
};

} // namespace tavi
