#include "capture/AudioCaptureService.h"

#include <cassert>
#include <utility>

namespace tavi {

AudioCaptureService::AudioCaptureService(CaptureSessions& sessions) : m_sessions(sessions) {}

AudioCaptureService::~AudioCaptureService() {
    stopAudio();
}

Result<void, AudioCaptureError> AudioCaptureService::startWarmUp(const CaptureDevice& microphone) {
    if (m_state != State::idle) {
        return {};
    }
    auto session = m_sessions.makeSession(CapturePreset::none);
    auto input = session->makeDeviceInput(microphone);
    if (!input) {
        return fail(AudioCaptureError::from(input.error()));
    }
    if (!session->canAddInput(**input)) {
        return fail(AudioCaptureError{AudioCaptureError::Kind::cannotAddInput, ""});
    }
    session->addInput(std::move(*input));
    if (!session->canAddOutput(CaptureSampleKind::sound)) {
        return fail(AudioCaptureError{AudioCaptureError::Kind::cannotAddOutput, ""});
    }
    m_audioDataOutput = &session->addAudioOutput(
        m_audioQueue, [this](const CaptureSample& sample) { handleSample(sample); });
    m_lastSeenBitsPerChannel = 0;
    m_formatStableCount = 0;
    m_stableFormatDesc.reset();
    m_captureSession = std::move(session);
    m_state = State::preparing;
    m_captureSession->startRunning();
    return {};
}

void AudioCaptureService::startRecording(AudioWriterInput& externalAudioInput,
                                         std::function<bool()> isWriterSessionReady) {
    assert(m_state == State::ready);
    m_audioQueue.sync([&] {
        m_isWriterSessionReady = std::move(isWriterSessionReady);
        m_externalAudioInput = &externalAudioInput;
        m_state = State::recording;
    });
}

void AudioCaptureService::stopAudio() {
    // The queue is waited for, so that the caller may finish the writer afterwards.
    m_audioQueue.sync([this] {
        m_externalAudioInput = nullptr;
        m_isWriterSessionReady = nullptr;
        m_state = State::idle;
    });
    if (!m_captureSession) {
        return;
    }
    m_captureSession->stopRunning();
    // What was queued meanwhile must not count for the next warm-up.
    m_audioQueue.sync([] {});
    m_audioDataOutput = nullptr;
    m_captureSession.reset();
    m_stableFormatDesc.reset();
}

std::optional<AudioSampleFormat> AudioCaptureService::stableFormatDesc() const {
    const State state = m_state;
    return state == State::ready || state == State::recording ? m_stableFormatDesc : std::nullopt;
}

std::optional<CaptureDeviceError> AudioCaptureService::interruption() const {
    return m_captureSession ? m_captureSession->interruption() : std::nullopt;
}

void AudioCaptureService::handleSample(const CaptureSample& sample) {
    if (!sample.isValid || !sample.format) {
        return;
    }
    const State state = m_state;
    if (state == State::preparing) {
        watchFormat(*sample.format);
    } else if (state == State::recording) {
        write(sample);
    }
}

void AudioCaptureService::watchFormat(const AudioSampleFormat& format) {
    if (format.bitsPerChannel != m_lastSeenBitsPerChannel) {
        m_lastSeenBitsPerChannel = format.bitsPerChannel;
        m_formatStableCount = 1;
        return;
    }
    if (++m_formatStableCount == kRequiredStableSamples) {
        m_stableFormatDesc = format;
        m_state = State::ready;
    }
}

/// Kept on purpose: sound of another bit depth than the warm-up's is dropped, and the
/// format is not learned anew; a microphone that changes for good is silent from then on.
void AudioCaptureService::write(const CaptureSample& sample) {
    if (sample.format->bitsPerChannel != m_lastSeenBitsPerChannel) {
        return;
    }
    const bool hasSession = m_isWriterSessionReady && m_isWriterSessionReady();
    if (hasSession && m_externalAudioInput != nullptr && sample.sound &&
        m_externalAudioInput->isReadyForMoreMediaData()) {
        static_cast<void>(m_externalAudioInput->append(sample.sound, sample.presentationTime));
    }
}

} // namespace tavi
