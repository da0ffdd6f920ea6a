#include "capture/CameraCaptureService.h"

#include <utility>

namespace tavi {

CameraCaptureService::CameraCaptureService(CaptureSessions& sessions, MediaLibrary& media,
                                           const Clock& clock)
    : m_sessions(sessions),
      m_media(media),
      m_clock(clock) {}

CameraCaptureService::~CameraCaptureService() {
    m_isCapturing = false;
    abandon();
}

Result<void, CameraError>
CameraCaptureService::startCapture(const CaptureDevice& camera,
                                   const std::filesystem::path& outputURL,
                                   const std::optional<CameraMicrophone>& microphone) {
    auto queue = std::make_unique<SerialQueue>("com.tavi.camera");
    auto session = m_sessions.makeSession(CapturePreset::medium);
    const auto input = addCamera(*session, camera, *queue);
    if (!input) {
        return fail(input.error());
    }
    if (microphone) {
        if (auto added = addMicrophone(*session, *microphone, *queue); !added) {
            return added;
        }
    }
    const Size size = (*input)->pictureSize();
    auto file = openFile(outputURL, size);
    if (!file) {
        return fail(file.error());
    }
    m_assetWriter = std::move(file->writer);
    m_videoInput = file->input;
    m_pictureSize = size;
    m_queue = std::move(queue);
    m_captureSession = std::move(session);
    m_captureSession->startRunning();
    m_isCapturing = true;
    return {};
}

Result<const CaptureDeviceInput*, CameraError>
CameraCaptureService::addCamera(CaptureSession& session, const CaptureDevice& camera,
                                SerialQueue& queue) {
    auto made = session.makeDeviceInput(camera);
    if (!made) {
        return fail(CameraError::from(made.error()));
    }
    if (!session.canAddInput(**made)) {
        return fail(CameraError{CameraError::Kind::cannotAddInput, ""});
    }
    const CaptureDeviceInput& input = session.addInput(std::move(*made));
    if (!session.canAddOutput(CaptureSampleKind::picture)) {
        return fail(CameraError{CameraError::Kind::cannotAddOutput, ""});
    }
    session.addVideoOutput(queue, [this](const CaptureSample& sample) { handleSample(sample); });
    static_cast<void>(session.setVideoMirrored(true));
    return &input;
}

/// Kept on purpose: a microphone that the session can't take leaves a take that says it has sound
/// and is silent.
Result<void, CameraError> CameraCaptureService::addMicrophone(CaptureSession& session,
                                                              const CameraMicrophone& microphone,
                                                              SerialQueue& queue) {
    auto input = session.makeDeviceInput(microphone.device);
    if (!input) {
        return fail(CameraError::from(input.error()));
    }
    if (session.canAddInput(**input)) {
        session.addInput(std::move(*input));
        if (session.canAddOutput(CaptureSampleKind::sound)) {
            session.addAudioOutput(queue,
                                   [this](const CaptureSample& sample) { handleSample(sample); });
        }
    }
    m_externalAudioInput = &microphone.externalAudioInput;
    m_stableBitsPerChannel = microphone.stableBitsPerChannel;
    m_hasAudio = true;
    return {};
}

Result<CameraCaptureService::OpenFile, CameraError>
CameraCaptureService::openFile(const std::filesystem::path& path, Size pictureSize) const {
    auto writer = m_media.makeWriter(path, FileType::quickTimeMovie);
    if (!writer) {
        return fail(CameraError::from(writer.error()));
    }
    const auto input = (*writer)->addVideoInput({.codec = VideoCodec::h264,
                                                 .width = static_cast<int>(pictureSize.width),
                                                 .height = static_cast<int>(pictureSize.height),
                                                 .bitRate = kAverageBitRate,
                                                 .expectedFrameRate = kExpectedFrameRate,
                                                 .realTime = true});
    if (!input) {
        return fail(CameraError::from(input.error()));
    }
    if (const auto writing = (*writer)->startWriting(); !writing) {
        return fail(CameraError::from(writing.error()));
    }
    return OpenFile{std::move(*writer), *input};
}

void CameraCaptureService::stopCapture() {
    if (!m_isCapturing) {
        return;
    }
    m_isCapturing = false;
    m_captureSession->stopRunning();
    m_captureSession.reset();
    m_queue.reset(); // runs what is queued, so that nobody feeds the inputs below any more
    m_externalAudioInput = nullptr;
    m_videoInput->markAsFinished();
    static_cast<void>(m_assetWriter->finishWriting());
    m_videoInput = nullptr;
    m_assetWriter.reset();
}

void CameraCaptureService::abandon() {
    m_captureSession.reset();
    m_queue.reset();
    if (m_assetWriter) {
        m_assetWriter->cancelWriting();
    }
}

std::optional<CaptureDeviceError> CameraCaptureService::interruption() const {
    return m_captureSession ? m_captureSession->interruption() : std::nullopt;
}

void CameraCaptureService::handleSample(const CaptureSample& sample) {
    if (!m_isCapturing || !sample.isValid) {
        return;
    }
    if (sample.kind == CaptureSampleKind::sound) {
        handleSound(sample);
    } else {
        handlePicture(sample);
    }
}

/// Kept on purpose: a sample without a picture starts the file's time as well.
void CameraCaptureService::handlePicture(const CaptureSample& sample) {
    if (!m_sessionStarted) {
        m_assetWriter->startSession(sample.presentationTime);
        m_sessionStarted = true;
        m_firstSampleHostTime.store(m_clock.hostTime());
    }
    // The writer's track has one size.
    const bool fits = sample.image && sample.image->width() == m_pictureSize.width &&
                      sample.image->height() == m_pictureSize.height;
    if (fits && m_videoInput->isReadyForMoreMediaData()) {
        static_cast<void>(m_videoInput->append(sample.image, sample.presentationTime));
    }
}

/// Kept on purpose: nobody asks whether the screen's file has begun; its writer drops what comes
/// before that.
void CameraCaptureService::handleSound(const CaptureSample& sample) {
    if (!sample.format || !sample.sound) {
        return;
    }
    if (m_stableBitsPerChannel != 0 && sample.format->bitsPerChannel != m_stableBitsPerChannel) {
        return;
    }
    if (m_externalAudioInput != nullptr && m_externalAudioInput->isReadyForMoreMediaData()) {
        static_cast<void>(m_externalAudioInput->append(sample.sound, sample.presentationTime));
    }
}

} // namespace tavi
