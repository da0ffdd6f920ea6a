#include "capture/RecordingStatusBarService.h"

#include <algorithm>
#include <cstdio>
#include <utility>

namespace tavi {

std::string statusItemTitle(double seconds) {
    const auto whole = static_cast<long long>(std::max(seconds, 0.0));
    char text[32];
    std::snprintf(text, sizeof text, " %02lld:%02lld", whole / 60, whole % 60);
    return text;
}

RecordingStatusBarService::RecordingStatusBarService(Ports ports, QObject* parent)
    : QObject(parent),
      m_ports(ports) {}

RecordingStatusBarService::~RecordingStatusBarService() {
    stop();
}

void RecordingStatusBarService::start(Date date, std::function<void()> onStop) {
    m_startDate = date;
    m_onStop = std::move(onStop);
    setTitle(statusItemTitle(0));
    m_statusItem = m_ports.items.makeItem({"record.circle", "Recording", m_title},
                                          [this] { stopRecording(); });
    m_timer = m_ports.timers.repeat(kInterval, [this] { update(); });
}

void RecordingStatusBarService::stop() {
    m_timer.reset();
    m_statusItem.reset();
    m_onStop = nullptr;
    m_startDate.reset();
}

void RecordingStatusBarService::stopRecording() {
    // A copy, since the call may stop or destroy this.
    if (const auto onStop = m_onStop) {
        onStop();
    }
}

void RecordingStatusBarService::setTitle(std::string title) {
    if (m_title != title) {
        m_title = std::move(title);
        emit titleChanged();
    }
}

void RecordingStatusBarService::update() {
    if (!m_startDate) {
        return;
    }
    setTitle(statusItemTitle(m_ports.clock.now().since(*m_startDate)));
    m_statusItem->setTitle(m_title);
}

} // namespace tavi
