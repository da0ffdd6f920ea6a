#pragma once

#include "ui/SpringMotion.h"

#include <QAbstractAnimation>
#include <QObject>
#include <QQmlEngine>
#include <QQmlParserStatus>

namespace tavi {

/// A number that follows another one as a spring: bind `to`, read `value`.
///
/// A new `to` in mid-flight keeps the velocity. The first `to` is taken without
/// motion. Ticks with the frames of the screen and only while it moves.
/// Thread: main.
class Spring : public QObject, public QQmlParserStatus {
    Q_OBJECT
    Q_INTERFACES(QQmlParserStatus)
    QML_ELEMENT
    Q_PROPERTY(double to READ to WRITE setTo NOTIFY toChanged)
    Q_PROPERTY(double value READ value NOTIFY valueChanged)
    /// Seconds and fraction, see SpringShape.
    Q_PROPERTY(double response MEMBER m_response NOTIFY shapeChanged)
    Q_PROPERTY(double damping MEMBER m_damping NOTIFY shapeChanged)
    /// Seconds from a new `to` to its motion.
    Q_PROPERTY(double delay MEMBER m_delay NOTIFY shapeChanged)
    Q_PROPERTY(bool running READ isRunning NOTIFY runningChanged)

public:
    explicit Spring(QObject* parent = nullptr);

    double to() const { return m_to; }
    void setTo(double to);
    double value() const { return m_to + m_state.displacement; }
    bool isRunning() const { return m_ticker.state() == QAbstractAnimation::Running; }

    void classBegin() override {}
    void componentComplete() override { m_complete = true; }

signals:
    void toChanged();
    void valueChanged();
    void shapeChanged();
    void runningChanged();

private:
    /// Ticks with the frames until it is stopped.
    class Ticker : public QAbstractAnimation {
    public:
        explicit Ticker(Spring& spring) : m_spring(spring) {}
        int duration() const override { return -1; }

    protected:
        void updateCurrentTime(int milliseconds) override { m_spring.moveTo(milliseconds / 1e3); }

    private:
        Spring& m_spring;
    };

    void moveTo(double seconds);
    SpringShape shape() const { return {m_response, m_damping}; }

    double m_to = 0;
    double m_response = 0.5;
    double m_damping = 1;
    double m_delay = 0;
    SpringState m_state; ///< Now.
    SpringState m_start; ///< When the last `to` came.
    bool m_complete = false;
    Ticker m_ticker{*this};
};

} // namespace tavi
