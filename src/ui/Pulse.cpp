#include "ui/Pulse.h"

#include <cmath>
#include <numbers>

namespace tavi {

Pulse::Pulse(QObject* parent) : QObject(parent) {
    m_timer.setInterval(50);
    connect(&m_timer, &QTimer::timeout, this, [this] {
        m_value = valueAt(double(m_clock.elapsed()) / 1e3, m_seconds);
        emit valueChanged();
    });
}

void Pulse::setRunning(bool running) {
    if (running == m_timer.isActive()) {
        return;
    }
    if (running) {
        m_clock.start();
        m_timer.start();
    } else {
        m_timer.stop();
        m_value = 0;
        emit valueChanged();
    }
    emit runningChanged();
}

double Pulse::valueAt(double elapsed, double seconds) {
    return (1 - std::cos(std::numbers::pi * elapsed / seconds)) / 2;
}

} // namespace tavi
