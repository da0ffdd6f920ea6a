#pragma once

#include "platform/x11/XTestServer.h"

#include <atomic>
#include <cstdint>
#include <map>
#include <thread>

namespace tavi::test {

/// Paints a bright square on a dark screen for a tenth of each second of the host clock, on a
/// thread of its own, and notes when the server had painted it.
class Flasher {
public:
    static constexpr int kSide = 96; ///< Of the square at the left upper corner, pixels.

    explicit Flasher(const XTestServer& screen);
    ~Flasher();
    Flasher(const Flasher&) = delete;
    Flasher& operator=(const Flasher&) = delete;

    /// Ends it: by the second of the host clock, when it was painted, seconds.
    std::map<std::int64_t, double> stop();

private:
    void run();
    bool waitUntil(double time) const;

    Painter m_painter;
    std::atomic<bool> m_isStopped = false;
    std::map<std::int64_t, double> m_flashes; ///< Of the thread.
    std::thread m_thread;
};

/// The host clock (CLOCK_MONOTONIC) in seconds.
double hostSeconds();

void sleepUntil(double hostSeconds);

} // namespace tavi::test
