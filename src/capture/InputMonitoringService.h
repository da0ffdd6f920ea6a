#pragma once

#include "base/Executor.h"
#include "base/Timers.h"
#include "capture/HelperLauncher.h"

#include <QObject>
#include <QString>

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <sys/types.h>
#include <vector>

namespace tavi {

/// Knows whether keys may be seen: it runs the key helper as a probe, which says so when it can
/// listen. One instance for the whole process.
///
/// States of the probe: none (pid 0) -> running, its life watched -> ready (granted, not watched
///         any more) -> none. What was granted stays granted when the probe is stopped.
/// Thread: main. The helper is read on a thread of its own, whose news come through `main`.
/// The destructor stops the probe.
class InputMonitoringService : public QObject, public KeyPermission {
    Q_OBJECT
    Q_PROPERTY(bool isGranted READ isGranted NOTIFY isGrantedChanged)
    Q_PROPERTY(QString accessCommand READ accessCommand CONSTANT)

public:
    static constexpr double kPollInterval = 1.5; ///< Seconds between two looks at the probe.
    static constexpr const char* kSettingsUrl =
        "x-apple.systempreferences:com.apple.preference.security?Privacy_ListenEvent";

    /// All outlive the service.
    struct Ports {
        HelperLauncher& launcher;
        Timers& timers;
        Executor& main;
        /// Where the helper is; absent when the package has none. Asked at each start.
        std::function<std::optional<std::string>()> helperExecutablePath;
        /// Whether a process of that pid exists; see processExists().
        std::function<bool(pid_t)> isAlive;
        /// Opens a link, kSettingsUrl, in this desktop's own way.
        std::function<void(const std::string& url)> openUrl;
        /// What gives the user the right, where one is needed and no page of settings gives it;
        /// empty elsewhere.
        std::string accessCommand = {};
    };

    explicit InputMonitoringService(Ports ports, QObject* parent = nullptr);
    ~InputMonitoringService() override;

    bool isGranted() const { return m_isGranted; }
    QString accessCommand() const { return QString::fromStdString(m_ports.accessCommand); }

    /// Of the probe; 0 when none runs.
    pid_t helperPID() const { return m_helper ? m_helper->pid() : 0; }

    /// Starts the helper; nothing when it runs. A helper that can't be started is not tried again.
    Q_INVOKABLE void startProbe();

    /// Ends the helper.
    Q_INVOKABLE void stopProbe() final;

    /// Watches the probe's life from now on; nothing when keys may be seen.
    void startPolling();

    /// Opens the place in the system's settings where the user can grant.
    Q_INVOKABLE void openInputMonitoringSettings();

    /// A helper said that it can listen.
    void setGranted() final;

    std::unique_ptr<Wait> whenGranted(std::function<void()> block) final;

signals:
    void isGrantedChanged();

private:
    struct Alive {};

    void publish(bool isGranted);
    void readChunk(std::string_view chunk, std::weak_ptr<Alive> alive);
    void poll();

    Ports m_ports;
    bool m_isGranted = false;
    std::shared_ptr<Alive> m_alive = std::make_shared<Alive>(); ///< Held weakly by closures.
    std::vector<std::weak_ptr<std::function<void()>>> m_waits;
    std::unique_ptr<Timers::Timer> m_pollTimer;
    std::unique_ptr<HelperProcess> m_helper; ///< Goes first: its reader looks at the rest.
};

/// True when there is a process of that pid, a child that ended and was not waited for included.
bool processExists(pid_t pid);

} // namespace tavi
