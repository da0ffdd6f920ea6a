#include "capture/InputMonitoringService.h"

#include "base/Utf8.h"

#include <csignal>
#include <utility>

namespace tavi {

namespace {

/// Owns the block that the service knows weakly.
class Waiting final : public KeyPermission::Wait {
public:
    explicit Waiting(std::shared_ptr<std::function<void()>> block) : m_block(std::move(block)) {}

private:
    std::shared_ptr<std::function<void()>> m_block;
};

} // namespace

bool processExists(pid_t pid) {
    return kill(pid, 0) == 0;
}

InputMonitoringService::InputMonitoringService(Ports ports, QObject* parent)
    : QObject(parent),
      m_ports(std::move(ports)) {}

InputMonitoringService::~InputMonitoringService() {
    stopProbe();
}

void InputMonitoringService::startProbe() {
    if (helperPID() >= 1 && m_ports.isAlive(helperPID())) {
        return;
    }
    const auto path = m_ports.helperExecutablePath();
    if (!path) {
        return;
    }
    m_helper.reset();
    m_helper =
        m_ports.launcher.launch(*path, [this, alive = std::weak_ptr(m_alive)](
                                           std::string_view chunk) { readChunk(chunk, alive); });
    if (m_helper) {
        startPolling();
    }
}

void InputMonitoringService::stopProbe() {
    m_helper.reset();
    m_pollTimer.reset();
}

void InputMonitoringService::startPolling() {
    if (!m_isGranted) {
        m_pollTimer = m_ports.timers.repeat(kPollInterval, [this] { poll(); });
    }
}

/// Kept on purpose: a probe that ended by itself counts as alive until it is waited for, so
/// only one whose pid has vanished altogether is noticed.
void InputMonitoringService::poll() {
    if (helperPID() >= 1 && !m_ports.isAlive(helperPID())) {
        m_helper.reset();
        publish(false);
    }
}

void InputMonitoringService::openInputMonitoringSettings() {
    m_ports.openUrl(kSettingsUrl);
    startPolling();
}

void InputMonitoringService::setGranted() {
    publish(true);
    for (const auto& wait : std::exchange(m_waits, {})) {
        m_ports.main.post([wait] {
            if (const auto block = wait.lock()) {
                (*block)();
            }
        });
    }
}

std::unique_ptr<KeyPermission::Wait>
InputMonitoringService::whenGranted(std::function<void()> block) {
    auto owned = std::make_shared<std::function<void()>>(std::move(block));
    m_waits.emplace_back(owned);
    return std::make_unique<Waiting>(std::move(owned));
}

void InputMonitoringService::publish(bool isGranted) {
    if (m_isGranted != isGranted) {
        m_isGranted = isGranted;
        emit isGrantedChanged();
    }
}

/// Kept on purpose: a mark that falls across two chunks is not seen.
void InputMonitoringService::readChunk(std::string_view chunk, std::weak_ptr<Alive> alive) {
    if (!isValidUtf8(chunk) || chunk.find(kHelperReadyMark) == std::string_view::npos) {
        return;
    }
    m_ports.main.post([this, alive = std::move(alive)] {
        if (alive.lock()) {
            setGranted();
            m_pollTimer.reset();
        }
    });
}

} // namespace tavi
