#include "capture/TakeRecorder.h"

#include "capture/CursorImageBytes.h"
#include "project/RecordingFolder.h"
#include "project/RecordingMetadata.h"
#include "project/RecordingMetadataJson.h"

#include <cmath>
#include <fstream>
#include <limits>

namespace tavi {

TakeRecorder::TakeRecorder(TakePorts ports)
    : m_ports(std::move(ports)),
      m_recordingStartDate(std::numeric_limits<double>::quiet_NaN()) {}

TakeRecorder::~TakeRecorder() {
    stop();
}

Result<void, CaptureError> TakeRecorder::start(const Display& display,
                                               const std::filesystem::path& library) {
    const Clock& clock = m_ports.tracking.clock;
    m_folder = makeRecordingFolder(library, clock.now());
    m_capturedWidth = display.width;
    m_capturedHeight = display.height;
    m_cursorTrackingService =
        std::make_unique<CursorTrackingService>(display.frame, m_ports.tracking);
    m_screenCaptureService =
        std::make_unique<ScreenCaptureService>(m_ports.streams, m_ports.media, clock);
    // Time zero of everything: the video, the log and the elapsed time.
    m_screenCaptureService->onSessionStarted = [this, &clock] {
        const Date now = clock.now();
        m_cursorTrackingService->setStartDate(now);
        m_recordingStartDate = now.sinceReference;
    };
    auto started = m_screenCaptureService->startCapture(ScreenFilter{display.id}, display.width,
                                                        display.height, m_folder / take::kVideo);
    if (!started) {
        return started;
    }
    m_cursorTrackingService->startTracking();
    m_isRecording = true;
    return {};
}

void TakeRecorder::tick() {
    if (const auto start = recordingStartDate(); m_isRecording && start) {
        m_elapsedTime = m_ports.tracking.clock.now().since(*start);
    }
}

std::optional<std::filesystem::path> TakeRecorder::stop() {
    if (!m_isRecording) {
        return std::nullopt;
    }
    m_cursorTrackingService->stopTracking();
    m_screenCaptureService->stopCapture();
    writeCursorImages();
    writeMetadata();
    m_isRecording = false;
    m_elapsedTime = 0;
    return m_folder;
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

/// An image that can't be written leaves a gap in the files.
void TakeRecorder::writeCursorImages() const {
    const auto& datas = m_cursorTrackingService->cursorImageDatas();
    for (std::size_t index = 0; index < datas.size(); ++index) {
        if (const auto image = cursorImageFromBytes(datas[index])) {
            static_cast<void>(
                m_ports.imageFiles.writePng(m_folder / take::cursorImageName(index), *image));
        }
    }
}

void TakeRecorder::writeMetadata() const {
    RecordingMetadata metadata;
    metadata.startDate = recordingStartDate().value_or(m_ports.tracking.clock.now());
    metadata.duration = m_elapsedTime;
    metadata.screenWidth = m_capturedWidth;
    metadata.screenHeight = m_capturedHeight;
    metadata.cursorEvents = m_cursorTrackingService->events();
    metadata.cursorImageInfos = m_cursorTrackingService->cursorImageInfos();
    if (const auto json = encodeRecordingMetadata(metadata)) {
        std::ofstream(m_folder / take::kMetadata, std::ios::binary) << *json;
    }
}

} // namespace tavi
