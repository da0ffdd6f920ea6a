#include "platform/qt/QtExecutor.h"

#include <QObject>

#include <deque>
#include <mutex>

namespace tavi {

namespace {

/// The blocks that wait for the main thread. Qt only carries the news that there is one: what
/// blocks hold is handed over under a lock of our own, where the thread sanitizer sees it.
class MainQueue : public QObject {
    Q_OBJECT

public:
    void post(std::function<void()> block) {
        {
            const std::lock_guard lock(m_mutex);
            m_blocks.push_back(std::move(block));
        }
        QMetaObject::invokeMethod(this, "runNext", Qt::QueuedConnection);
    }

    Q_INVOKABLE void runNext() {
        std::unique_lock lock(m_mutex);
        const auto block = std::move(m_blocks.front());
        m_blocks.pop_front();
        lock.unlock();
        block();
    }

private:
    std::mutex m_mutex;
    std::deque<std::function<void()>> m_blocks;
};

/// Lives on the thread that asks first.
MainQueue& mainQueue() {
    static auto* const queue = new MainQueue; // threads may still post while the process ends
    return *queue;
}

} // namespace

QtExecutor::QtExecutor() {
    mainQueue();
}

void QtExecutor::post(std::function<void()> block) {
    mainQueue().post(std::move(block));
}

} // namespace tavi

#include <QtExecutor.moc>
