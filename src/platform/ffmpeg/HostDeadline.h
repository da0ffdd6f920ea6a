#pragma once

#include "base/Clock.h"

#include <chrono>

namespace tavi {

/// Now, on the host clock.
inline MediaTime hostNow() {
    return SystemClock().hostTime();
}

/// A moment of the host clock as threads wait for it: the library's steady clock is
/// CLOCK_MONOTONIC too.
inline std::chrono::steady_clock::time_point hostDeadline(MediaTime host) {
    return std::chrono::steady_clock::time_point(
        std::chrono::nanoseconds(host.rescaled(MediaTime::kNanoseconds).value));
}

} // namespace tavi
