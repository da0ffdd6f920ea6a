#include "capture/TakeRecorder.h"

#include "base/SystemReason.h"
#include "capture/CursorImageFiles.h"
#include "media/MediaError.h"
#include "media/VideoLimits.h"
#include "project/RecordingFolder.h"
#include "project/RecordingMetadata.h"
#include "project/RecordingMetadataJson.h"

#include <algorithm>
#include <cassert>
#include <cerrno>
#include <cmath>
#include <limits>

namespace tavi {

namespace {

bool isReady(const TakeDevices& devices) {
    return devices.audioWarmUpService &&
           devices.audioWarmUpService->state() == AudioCaptureService::State::ready;
}

/// What is recorded of a source: one that is too small for a video is continued to the right and
/// below, where its place in the picture and the pointer's stay the same.
Rect recordedFrame(Rect frame) {
    const double width = std::max<double>(frame.width, kSmallestVideoSide);
    const double height = std::max<double>(frame.height, kSmallestVideoSide);
    return {frame.x, frame.y + frame.height - height, width, height};
}

/// Why a library takes no new folder, and what to do.
Message refusalOf(const std::filesystem::path& library, const std::error_code& error) {
    const std::string reason = systemReason(error);
    if (error == std::errc::no_space_on_device || error.value() == EDQUOT) {
        return MediaError{MediaError::Kind::diskFull, library.string(), reason}.message();
    }
    return {TAVI_TEXT("Errors",
                      "The recording can't be saved, since no folder can be made in %1 (%2). Make "
                      "it a folder that you may write to, and try again."),
            {library.string(), reason}};
}

} // namespace

TakeRecorder::TakeRecorder(TakePorts ports)
    : m_ports(std::move(ports)),
      m_recordingStartDate(std::numeric_limits<double>::quiet_NaN()) {}

TakeRecorder::~TakeRecorder() {
    stop();
}

Result<void, CaptureError> TakeRecorder::start(const TakeSource& source,
                                               const std::filesystem::path& library) {
    TakeDevices none;
    return start(source, library, none);
}

Result<void, CaptureError> TakeRecorder::start(const TakeSource& source,
                                               const std::filesystem::path& library,
                                               TakeDevices& devices) {
    makeFolder(library);
    auto started = startMedia(source, devices);
    if (started) {
        startTracking();
    }
    return started;
}

void TakeRecorder::makeFolder(const std::filesystem::path& library) {
    m_folder = makeRecordingFolder(library, m_ports.tracking.clock.now(), m_folderError);
}

Result<void, CaptureError> TakeRecorder::startMedia(const TakeSource& source,
                                                    TakeDevices& devices) {
    std::optional<AudioSettings> audioSettings;
    if (isReady(devices)) {
        audioSettings = devices.audioWarmUpService->audioDataOutput()->recommendedAudioSettings();
    }
    if (auto started = startScreen(source, audioSettings); !started) {
        return fail(toldRight(started.error()));
    }
    if (devices.camera) {
        return startCamera(devices);
    }
    startMicrophone(devices);
    return {};
}

/// A video that can't be written for want of its folder is no news: the library is.
CaptureError TakeRecorder::toldRight(CaptureError error) const {
    if (m_folderError && error.kind == CaptureError::Kind::writer) {
        error.cause = refusalOf(m_folder.parent_path(), m_folderError);
    }
    return error;
}

void TakeRecorder::startTracking() {
    m_cursorTrackingService->startTracking();
    m_isRecording = true;
}

Result<void, CaptureError>
TakeRecorder::startScreen(const TakeSource& source,
                          const std::optional<AudioSettings>& audioSettings) {
    const Clock& clock = m_ports.tracking.clock;
    const Rect frame = recordedFrame(source.frame);
    m_capturedWidth = static_cast<int>(frame.width);
    m_capturedHeight = static_cast<int>(frame.height);
    m_journal = LogJournal::create(m_folder / take::kJournal, metadata({}));
    m_cursorTrackingService = std::make_unique<CursorTrackingService>(frame, m_ports.tracking);
    m_screenCaptureService =
        std::make_unique<ScreenCaptureService>(m_ports.streams, m_ports.media, clock);
    // Time zero of everything: the video, the log and the elapsed time.
    m_screenCaptureService->onSessionStarted = [this, &clock] {
        const Date now = clock.now();
        m_cursorTrackingService->setStartDate(now);
        m_recordingStartDate = now.sinceReference;
    };
    m_screenCaptureService->onSourceMoved = [this](const Rect& now) {
        m_cursorTrackingService->moveCaptureFrame(recordedFrame(now));
    };
    auto started = m_screenCaptureService->startCapture(
        source.filter, m_capturedWidth, m_capturedHeight, m_folder / take::kVideo,
        {.alpha = source.filter.windowId != 0, .audioSettings = audioSettings});
    if (!started) {
        abandonJournal();
    }
    return started;
}

Result<void, CaptureError> TakeRecorder::startCamera(TakeDevices& devices) {
    assert(m_ports.captureSessions != nullptr);
    auto service = std::make_unique<CameraCaptureService>(*m_ports.captureSessions, m_ports.media,
                                                          m_ports.tracking.clock);
    const auto microphone = moveMicrophone(devices);
    const auto started =
        service->startCapture(*devices.camera, m_folder / take::kCamera, microphone);
    if (!started) {
        abandonJournal();
        return fail(CaptureError{CaptureError::Kind::camera, {}, started.error().message()});
    }
    m_cameraCaptureService = std::move(service);
    return {};
}

/// Ends the warm-up, so that the microphone can join the camera's session.
std::optional<CameraMicrophone> TakeRecorder::moveMicrophone(TakeDevices& devices) {
    AudioWriterInput* input = m_screenCaptureService->audioWriterInput();
    if (!isReady(devices) || input == nullptr) {
        return std::nullopt;
    }
    const std::uint32_t bits = devices.audioWarmUpService->lastSeenBitsPerChannel();
    devices.audioWarmUpService->stopAudio();
    devices.audioWarmUpService.reset();
    if (!devices.microphone) {
        return std::nullopt;
    }
    return CameraMicrophone{*devices.microphone, *input, bits};
}

void TakeRecorder::startMicrophone(TakeDevices& devices) {
    // There is an input only if the warm-up was ready.
    AudioWriterInput* input = m_screenCaptureService->audioWriterInput();
    if (input == nullptr) {
        return;
    }
    m_audioCaptureService = std::move(devices.audioWarmUpService);
    m_audioCaptureService->startRecording(
        *input, [screen = m_screenCaptureService.get()] { return screen->sessionStarted(); });
}

void TakeRecorder::tick() {
    if (const auto start = recordingStartDate(); m_isRecording && start) {
        m_elapsedTime = m_ports.tracking.clock.now().since(*start);
        updateJournal(deviceFacts());
    }
}

std::optional<std::filesystem::path> TakeRecorder::stop() {
    stopTracking();
    return finish();
}

void TakeRecorder::stopTracking() {
    if (m_isRecording) {
        m_cursorTrackingService->stopTracking();
        updateJournal(deviceFacts());
    }
}

std::optional<std::filesystem::path> TakeRecorder::finish() {
    if (!m_isRecording) {
        return std::nullopt;
    }
    const DeviceFacts facts = deviceFacts();
    stopDevices();
    m_screenCaptureService->stopCapture();
    completeFolder(facts);
    m_isRecording = false;
    m_elapsedTime = 0;
    return m_folder;
}

TakeRecorder::DeviceFacts TakeRecorder::deviceFacts() const {
    DeviceFacts facts;
    facts.hasCamera = m_cameraCaptureService != nullptr;
    facts.hasAudio =
        m_audioCaptureService || (facts.hasCamera && m_cameraCaptureService->hasAudio());
    const auto screenStart = m_screenCaptureService->sessionStartTime();
    const auto cameraStart =
        facts.hasCamera ? m_cameraCaptureService->firstSampleHostTime() : std::nullopt;
    if (screenStart && cameraStart) {
        facts.cameraStartDelay = std::max((*cameraStart - *screenStart).seconds(), 0.0);
    }
    return facts;
}

/// The screen's file comes last, since both write into it.
void TakeRecorder::stopDevices() {
    if (m_audioCaptureService) {
        m_audioCaptureService->stopAudio();
        m_audioCaptureService.reset();
    }
    if (m_cameraCaptureService) {
        m_cameraCaptureService->stopCapture();
        m_cameraCaptureService.reset();
    }
}

std::optional<CaptureDeviceError> TakeRecorder::interruption() const {
    if (m_cameraCaptureService) {
        return m_cameraCaptureService->interruption();
    }
    return m_audioCaptureService ? m_audioCaptureService->interruption() : std::nullopt;
}

std::optional<CaptureError> TakeRecorder::failure() const {
    return m_screenCaptureService ? m_screenCaptureService->failure() : std::nullopt;
}

std::uint64_t TakeRecorder::appendedFrames() const {
    return m_screenCaptureService ? m_screenCaptureService->appendedFrames() : 0;
}

std::uint64_t TakeRecorder::droppedFrames() const {
    return m_screenCaptureService ? m_screenCaptureService->droppedFrames() : 0;
}

std::optional<Date> TakeRecorder::recordingStartDate() const {
    const double date = m_recordingStartDate;
    return std::isnan(date) ? std::nullopt : std::optional(Date{date});
}

void TakeRecorder::updateJournal(const DeviceFacts& facts) {
    if (m_journal) {
        m_journal->update(metadata(facts), *m_cursorTrackingService);
    }
}

/// There is no take to complete.
void TakeRecorder::abandonJournal() {
    if (m_journal) {
        m_journal->remove();
    }
    m_journal.reset();
}

/// The journal goes only when what it stands in for is on the disk.
void TakeRecorder::completeFolder(const DeviceFacts& facts) {
    if (m_journal) {
        m_journal->releaseReserve();
    }
    writeCursorImages(m_folder, m_cursorTrackingService->cursorImageDatas(), m_ports.imageFiles);
    if (writeMetadata(facts) && m_journal) {
        m_journal->remove();
    }
    m_journal.reset();
}

/// All but the lists.
RecordingMetadata TakeRecorder::metadata(const DeviceFacts& facts) const {
    RecordingMetadata metadata;
    metadata.startDate = recordingStartDate().value_or(m_ports.tracking.clock.now());
    metadata.duration = m_elapsedTime;
    metadata.screenWidth = m_capturedWidth;
    metadata.screenHeight = m_capturedHeight;
    metadata.hasCameraRecording = facts.hasCamera;
    metadata.hasAudioRecording = facts.hasAudio;
    metadata.cameraStartDelay = facts.cameraStartDelay;
    return metadata;
}

bool TakeRecorder::writeMetadata(const DeviceFacts& facts) const {
    RecordingMetadata whole = metadata(facts);
    whole.cursorEvents = m_cursorTrackingService->events();
    whole.cursorImageInfos = m_cursorTrackingService->cursorImageInfos();
    const auto json = encodeRecordingMetadata(whole);
    return json && createTextFile(m_folder / take::kMetadata, *json);
}

} // namespace tavi
