#pragma once

#include "base/Clock.h"
#include "base/Timers.h"
#include "capture/StatusItem.h"

#include <QObject>
#include <QString>

#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace tavi {

/// The running time as the tray shows it: a blank, minutes and seconds of two digits at
/// least. Hours aren't shown, the minutes go on past 59. Time before the start counts as 0.
std::string statusItemTitle(double seconds);

/// Shows the running time of a take in the desktop's tray; a click there ends the take.
///
/// States: idle -> running -> idle. Thread: main. The destructor stops. The item doesn't
/// remove itself at a click: who ends the take calls stop().
class RecordingStatusBarService : public QObject {
    Q_OBJECT
    Q_PROPERTY(QString title READ titleText NOTIFY titleChanged)

public:
    static constexpr double kInterval = 1; ///< Seconds.

    /// All outlive the service.
    struct Ports {
        StatusItems& items;
        const Clock& clock;
        Timers& timers;
    };

    explicit RecordingStatusBarService(Ports ports, QObject* parent = nullptr);
    ~RecordingStatusBarService() override;

    /// Shows the item, its time counted from `date`; `onStop` is what a click does.
    void start(Date date, std::function<void()> onStop);

    /// Removes the item.
    void stop();

    /// The click.
    Q_INVOKABLE void stopRecording();

    bool isRunning() const { return m_statusItem != nullptr; }
    const std::string& title() const { return m_title; }
    QString titleText() const { return QString::fromStdString(m_title); }

signals:
    void titleChanged();

private:
    void setTitle(std::string title);
    void update();

    Ports m_ports;
    std::string m_title;
    std::unique_ptr<StatusItem> m_statusItem;
    std::unique_ptr<Timers::Timer> m_timer;
    std::optional<Date> m_startDate;
    std::function<void()> m_onStop;
};

} // namespace tavi
