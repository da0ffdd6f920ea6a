#pragma once

#include "base/SerialQueue.h"
#include "capture/AudioCaptureError.h"
#include "capture/CaptureSession.h"

#include <atomic>
#include <functional>
#include <memory>
#include <optional>

namespace tavi {

/// Keeps a microphone running from long before a take until its end: first to
/// learn the format in which its sound comes, then to write that sound into `video.mov`.
///
/// States: idle -> preparing (warming up) -> ready (the format held still) ->
/// recording; stopAudio() leads back to idle from each of them.
/// Threads: one controlling thread, never the audio queue; samples are handled on "com.tavi.audio".
/// The destructor stops the sound as stopAudio() does.
class AudioCaptureService {
public:
    enum class State { idle, preparing, ready, recording };

    /// Samples in a row that must have one bit depth for the format to count as stable: devices
    /// change theirs shortly after they start.
    static constexpr int kRequiredStableSamples = 3;

    /// `sessions` outlives the service.
    explicit AudioCaptureService(CaptureSessions& sessions);
    ~AudioCaptureService();

    AudioCaptureService(const AudioCaptureService&) = delete;
    AudioCaptureService& operator=(const AudioCaptureService&) = delete;

    /// Starts the microphone; a service that isn't idle ignores the call. After an
    /// error the service is idle.
    Result<void, AudioCaptureError> startWarmUp(const CaptureDevice& microphone);

    /// From now on the sound goes into `externalAudioInput`, while `isWriterSessionReady`
    /// answers true; that is asked on the audio queue. The session stays as it is. Both must live
    /// until stopAudio(). Only for a service that is ready.
    void startRecording(AudioWriterInput& externalAudioInput,
                        std::function<bool()> isWriterSessionReady);

    /// Ends everything. No sample reaches the writer after it returns.
    void stopAudio();

    State state() const { return m_state; }

    /// The format that held still; absent before the service is ready.
    std::optional<AudioSampleFormat> stableFormatDesc() const;

    /// Bits per channel that the warm-up saw last; 0 before the first sample.
    std::uint32_t lastSeenBitsPerChannel() const { return m_lastSeenBitsPerChannel; }

    /// Where the recommended writer settings come from; null while idle.
    const CaptureAudioOutput* audioDataOutput() const { return m_audioDataOutput; }

    /// Why the microphone sends nothing now; absent while all is well.
    std::optional<CaptureDeviceError> interruption() const;

private:
    void handleSample(const CaptureSample& sample);
    void watchFormat(const AudioSampleFormat& format);
    void write(const CaptureSample& sample);

    CaptureSessions& m_sessions;
    std::atomic<State> m_state = State::idle;
    std::atomic<std::uint32_t> m_lastSeenBitsPerChannel = 0;
    int m_formatStableCount = 0; ///< Audio queue, while preparing.
    /// Stored on the audio queue before the state is ready, read after that.
    std::optional<AudioSampleFormat> m_stableFormatDesc;

    AudioWriterInput* m_externalAudioInput = nullptr; ///< Audio queue.
    std::function<bool()> m_isWriterSessionReady;     ///< Audio queue.

    SerialQueue m_audioQueue{"com.tavi.audio"};
    std::unique_ptr<CaptureSession> m_captureSession;
    const CaptureAudioOutput* m_audioDataOutput = nullptr;
};

} // namespace tavi
