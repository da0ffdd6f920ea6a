#pragma once

#include "platform/x11/XTestServer.h"

#include <atomic>
#include <thread>
#include <vector>

namespace tavi::test {

/// Where the pointer of a screen was, from which moment on.
struct PointerStay {
    double since = 0; ///< Host seconds.
    int x = 0;        ///< Pixels from the left upper corner.
    int y = 0;
};

/// Looks at the pointer every millisecond, on a thread of its own.
class PointerWatch {
public:
    explicit PointerWatch(const XTestServer& screen);
    ~PointerWatch();
    PointerWatch(const PointerWatch&) = delete;
    PointerWatch& operator=(const PointerWatch&) = delete;

    /// Ends it.
    std::vector<PointerStay> stop();

private:
    void run();

    Painter m_client;
    std::atomic<bool> m_isStopped = false;
    std::vector<PointerStay> m_stays; ///< Of the thread.
    std::thread m_thread;
};

} // namespace tavi::test
