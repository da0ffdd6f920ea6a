#pragma once

#include <chrono>
#include <functional>
#include <thread>

namespace tavi::test {

/// Waits until `condition` holds; false when it doesn't within a minute, which a busy machine may
/// need.
inline bool eventually(const std::function<bool()>& condition) {
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(60);
    while (!condition()) {
        if (std::chrono::steady_clock::now() > end) {
            return false;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    return true;
}

} // namespace tavi::test
