#pragma once

#include "base/Timers.h"
#include "capture/OverlayPanel.h"
#include "capture/SourceFrames.h"

#include <QObject>

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>

namespace tavi {

/// Counts down over the area that will be recorded.
///
/// States: idle -> counting -> idle, by the last tick or by cancel().
/// Thread: main. The destructor cancels. The service may be destroyed in `onComplete`.
class CountdownOverlayService : public QObject {
    Q_OBJECT
    Q_PROPERTY(int countdownValue READ countdownValue NOTIFY countdownValueChanged)

public:
    static constexpr int kStartValue = 5;              ///< Seconds.
    static constexpr double kCountInterval = 1;        ///< Seconds.
    static constexpr double kTrackInterval = 1.0 / 30; ///< Seconds; as a screen shows motion.

    /// All outlive the service.
    struct Ports {
        OverlayPanels& panels;
        SourceFrames& frames;
        Timers& timers;
    };

    /// `startValue` is how many seconds are counted, at least 1.
    explicit CountdownOverlayService(Ports ports, int startValue = kStartValue,
                                     QObject* parent = nullptr);
    ~CountdownOverlayService() override;

    /// The seconds left, counting the current one.
    int countdownValue() const { return m_countdownValue; }

    bool isCounting() const { return m_panel != nullptr; }

    /// Shows the panel over `frame` (global bottom-left-origin space, points) and counts;
    /// `onComplete` is called once, when the last second is over and the panel closed.
    void start(const Rect& frame, std::function<void()> onComplete);

    /// The same over a window, which the panel follows. A window that is closed meanwhile
    /// leaves the panel where it is.
    void start(std::uint32_t windowID, const Rect& frame, std::function<void()> onComplete);

    /// Closes the panel; `onComplete` isn't called. Nothing when idle.
    void cancel();

signals:
    void countdownValueChanged();

private:
    void setCountdownValue(int value);
    void count();
    void followWindow();

    Ports m_ports;
    int m_startValue;
    int m_countdownValue;
    std::unique_ptr<OverlayPanel> m_panel;
    std::unique_ptr<Timers::Timer> m_countdownTimer;
    std::unique_ptr<Timers::Timer> m_trackingTimer;
    std::optional<std::uint32_t> m_trackedWindowID;
    std::function<void()> m_onComplete;
};

} // namespace tavi
