#pragma once

#include <QElapsedTimer>
#include <QObject>
#include <QQmlEngine>
#include <QTimer>

namespace tavi {

/// A number that swings between 0 and 1 for ever: one way, easing in and out,
/// takes `seconds`.
///
/// Made for small lights that may shine for hours: it ticks twenty times a
/// second instead of at every frame, which the eye can't tell from a smooth
/// fade, and not at all while `running` is false (bind it to what is visible).
/// Thread: main.
class Pulse : public QObject {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(double value READ value NOTIFY valueChanged)
    Q_PROPERTY(double seconds MEMBER m_seconds NOTIFY secondsChanged)
    Q_PROPERTY(bool running READ isRunning WRITE setRunning NOTIFY runningChanged)

public:
    explicit Pulse(QObject* parent = nullptr);

    double value() const { return m_value; }
    bool isRunning() const { return m_timer.isActive(); }
    void setRunning(bool running);

    /// The value `elapsed` seconds after the start of a swing of `seconds`.
    static double valueAt(double elapsed, double seconds);

signals:
    void valueChanged();
    void secondsChanged();
    void runningChanged();

private:
    double m_seconds = 1;
    double m_value = 0;
    QTimer m_timer;
    QElapsedTimer m_clock;
};

} // namespace tavi
