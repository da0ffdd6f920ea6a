#include "platform/qt/QtTimers.h"

#include <QTimer>

#include <cmath>

namespace tavi {

namespace {

class QtTimer final : public Timers::Timer {
public:
    QtTimer(double interval, std::function<void()> tick) : m_timer(new QTimer) {
        m_timer->setTimerType(Qt::PreciseTimer);
        QObject::connect(m_timer, &QTimer::timeout, std::move(tick));
        m_timer->start(static_cast<int>(std::lround(interval * 1000)));
    }
    ~QtTimer() override {
        // The timer may be what calls us: it goes once its tick has returned.
        m_timer->stop();
        m_timer->disconnect();
        m_timer->deleteLater();
    }
    QtTimer(const QtTimer&) = delete;
    QtTimer& operator=(const QtTimer&) = delete;

private:
    QTimer* m_timer;
};

} // namespace

std::unique_ptr<Timers::Timer> QtTimers::repeat(double interval, std::function<void()> tick) {
    return std::make_unique<QtTimer>(interval, std::move(tick));
}

} // namespace tavi
