#pragma once

#include <QCoreApplication>
#include <QElapsedTimer>

#include <functional>

namespace tavi::test {

/// Runs the main loop until `condition` holds; false after a minute without.
inline bool runLoopUntil(const std::function<bool()>& condition) {
    constexpr int kPatience = 60'000; // milliseconds
    QElapsedTimer timer;
    timer.start();
    while (!condition()) {
        if (timer.elapsed() > kPatience) {
            return false;
        }
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents | QEventLoop::AllEvents, 10);
    }
    return true;
}

} // namespace tavi::test
