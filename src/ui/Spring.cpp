#include "ui/Spring.h"

namespace tavi {

namespace {

/// Values are factors from 0 to 1 or lengths of some pixels: less can't be seen.
constexpr double kInvisible = 0.0005;

} // namespace

Spring::Spring(QObject* parent) : QObject(parent) {
    connect(&m_ticker, &QAbstractAnimation::stateChanged, this, &Spring::runningChanged);
}

void Spring::setTo(double to) {
    if (to == m_to) {
        return;
    }
    if (m_complete) {
        m_state.displacement += m_to - to; // the value stays where it is
    }
    m_to = to;
    emit toChanged();
    if (!m_complete) {
        emit valueChanged();
        return;
    }
    m_start = m_state;
    m_ticker.stop();
    m_ticker.start();
}

void Spring::moveTo(double seconds) {
    if (seconds < m_delay) {
        return;
    }
    m_state = advance(shape(), m_start, seconds - m_delay);
    if (isSettled(shape(), m_state, kInvisible)) {
        m_state = {};
        m_ticker.stop();
    }
    emit valueChanged();
}

} // namespace tavi
