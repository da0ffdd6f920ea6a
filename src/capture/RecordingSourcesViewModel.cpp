// What RecordingViewModel can record: the lists of sources with their pictures, and the microphone
// that is kept warm for the next take.
#include "capture/Awaiting.h"
#include "capture/OfferedWindows.h"
#include "capture/RecordingViewModel.h"
#include "capture/Thumbnails.h"

#include <ostream>
#include <utility>

namespace tavi {

QCoro::Task<> RecordingViewModel::loadSources() {
    const std::weak_ptr<Alive> alive = m_alive;
    auto asking = onQueue(m_loader, m_ports.take.tracking.main,
                          [source = &m_ports.content] { return source->content(); });
    auto content = co_await asking;
    if (alive.expired()) {
        co_return;
    }
    if (!content) {
        setFailure(content.error());
        m_ports.messages << "Failed to get shareable content: " << failureText() << std::endl;
        co_return;
    }
    setFailure(std::nullopt);
    m_availableDisplays = std::move(content->displays);
    emit availableDisplaysChanged();
    m_availableWindows = offeredWindows(content->windows, m_ports.applicationId);
    emit availableWindowsChanged();
    co_await loadThumbnails();
    if (alive.expired()) {
        co_return;
    }
    if (co_await mayUse(CaptureDeviceKind::camera) && !alive.expired()) {
        m_availableCameras = devicesOf(CaptureDeviceKind::camera);
        emit availableCamerasChanged();
    }
    if (alive.expired()) {
        co_return;
    }
    if (co_await mayUse(CaptureDeviceKind::microphone) && !alive.expired()) {
        m_availableMicrophones = devicesOf(CaptureDeviceKind::microphone);
        emit availableMicrophonesChanged();
    }
    if (!alive.expired()) {
        co_await warmUpAudio();
    }
}

/// Windows come without the pointer and displays with it, so that a display looks as it does.
QCoro::Task<> RecordingViewModel::loadThumbnails() {
    if (m_ports.screenshots == nullptr) {
        co_return;
    }
    const std::weak_ptr<Alive> alive = m_alive;
    std::vector<ThumbnailRequest> windows;
    for (const Window& window : m_availableWindows) {
        windows.push_back({ScreenFilter::window(window.id),
                           thumbnailConfiguration(window.frame.width, window.frame.height, false)});
    }
    std::vector<ThumbnailRequest> displays;
    for (const Display& display : m_availableDisplays) {
        displays.push_back({ScreenFilter::display(display.id),
                            thumbnailConfiguration(display.width, display.height, true)});
    }
    const auto take = [this](const std::vector<ThumbnailRequest>& requests) {
        return onQueue(m_loader, m_ports.take.tracking.main,
                       [screenshots = m_ports.screenshots, requests] {
                           return takeThumbnails(*screenshots, requests);
                       });
    };
    auto takingWindows = take(windows);
    auto windowPictures = co_await takingWindows;
    if (alive.expired()) {
        co_return;
    }
    m_windowThumbnails = std::move(windowPictures);
    emit windowThumbnailsChanged();
    auto takingDisplays = take(displays);
    auto displayPictures = co_await takingDisplays;
    if (alive.expired()) {
        co_return;
    }
    m_displayThumbnails = std::move(displayPictures);
    emit displayThumbnailsChanged();
}

QCoro::Task<bool> RecordingViewModel::mayUse(CaptureDeviceKind kind) {
    if (m_ports.devices == nullptr) {
        co_return false;
    }
    Called<bool> asking(m_ports.take.tracking.main,
                        [devices = m_ports.devices, kind](const Called<bool>::Resume& resume) {
                            devices->requestAccess(kind, resume);
                        });
    co_return co_await asking;
}

/// None when nobody can tell.
std::vector<CaptureDevice> RecordingViewModel::devicesOf(CaptureDeviceKind kind) {
    return m_ports.devices->devices(kind).value_or(std::vector<CaptureDevice>());
}

void RecordingViewModel::restartAudioWarmUp() {
    warmUpAudio();
}

QCoro::Task<> RecordingViewModel::warmUpAudio() {
    if (m_audioWarmUpService) {
        m_audioWarmUpService->stopAudio();
        m_audioWarmUpService.reset();
    }
    ++m_warmUpRequests;
    m_isWarmUpWanted = true;
    if (!m_openingWarmUpService) {
        co_await openMicrophones();
    }
}

/// Opens one device at a time: what was asked for meanwhile is opened next.
QCoro::Task<> RecordingViewModel::openMicrophones() {
    const std::weak_ptr<Alive> alive = m_alive;
    while (std::exchange(m_isWarmUpWanted, false)) {
        m_microphoneError.clear();
        const auto microphone = selectedMicrophone();
        if (!m_isAudioEnabled || !microphone || m_ports.take.captureSessions == nullptr) {
            co_return;
        }
        m_openingWarmUpService =
            std::make_unique<AudioCaptureService>(*m_ports.take.captureSessions);
        auto opening = onQueue(m_worker, m_ports.take.tracking.main,
                               [service = m_openingWarmUpService.get(), device = *microphone] {
                                   return service->startWarmUp(device);
                               });
        const auto opened = co_await opening;
        if (alive.expired()) {
            co_return;
        }
        auto service = std::move(m_openingWarmUpService);
        if (m_isWarmUpWanted) {
            continue;
        }
        if (opened) {
            m_audioWarmUpService = std::move(service);
        } else {
            m_microphoneError = opened.error().description();
            m_ports.messages << "Audio warm-up failed: " << m_microphoneError << std::endl;
        }
    }
}

bool RecordingViewModel::isMicrophoneReady() const {
    return m_audioWarmUpService &&
           m_audioWarmUpService->state() == AudioCaptureService::State::ready;
}

} // namespace tavi
