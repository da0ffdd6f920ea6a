#include "capture/CountdownOverlayService.h"

#include <utility>

namespace tavi {

CountdownOverlayService::CountdownOverlayService(Ports ports, int startValue, QObject* parent)
    : QObject(parent),
      m_ports(ports),
      m_startValue(startValue),
      m_countdownValue(startValue) {}

CountdownOverlayService::~CountdownOverlayService() {
    cancel();
}

void CountdownOverlayService::start(const Rect& frame, std::function<void()> onComplete) {
    m_onComplete = std::move(onComplete);
    setCountdownValue(m_startValue);
    m_panel = m_ports.panels.makePanel(frame, m_countdownValue);
    m_panel->setFrame(frame);
    m_panel->orderFront();
    m_countdownTimer = m_ports.timers.repeat(kCountInterval, [this] { count(); });
}

void CountdownOverlayService::start(std::uint32_t windowID, const Rect& frame,
                                    std::function<void()> onComplete) {
    m_trackedWindowID = windowID;
    start(frame, std::move(onComplete));
    m_trackingTimer = m_ports.timers.repeat(kTrackInterval, [this] { followWindow(); });
}

void CountdownOverlayService::cancel() {
    m_countdownTimer.reset();
    m_trackingTimer.reset();
    m_trackedWindowID.reset();
    m_panel.reset();
    m_onComplete = nullptr;
}

void CountdownOverlayService::setCountdownValue(int value) {
    if (m_countdownValue != value) {
        m_countdownValue = value;
        emit countdownValueChanged();
    }
}

void CountdownOverlayService::count() {
    if (m_countdownValue < 2) {
        const auto onComplete = std::move(m_onComplete);
        cancel();
        onComplete(); // may have destroyed this
        return;
    }
    setCountdownValue(m_countdownValue - 1);
    m_panel->setValue(m_countdownValue);
}

void CountdownOverlayService::followWindow() {
    if (!m_trackedWindowID) {
        return;
    }
    if (const auto frame = m_ports.frames.windowFrame(*m_trackedWindowID)) {
        m_panel->setFrame(*frame);
    }
}

} // namespace tavi
