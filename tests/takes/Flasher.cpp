#include "takes/Flasher.h"

#include "platform/pipewire/DeviceCapture.h"

#include <algorithm>
#include <chrono>
#include <cmath>

namespace tavi::test {

namespace {

constexpr double kLength = 0.1; // seconds

} // namespace

double hostSeconds() {
    return static_cast<double>(hostNanoseconds()) / 1e9;
}

void sleepUntil(double time) {
    std::this_thread::sleep_for(std::chrono::duration<double>(time - hostSeconds()));
}

Flasher::Flasher(const XTestServer& screen) : m_painter(screen), m_thread([this] { run(); }) {}

Flasher::~Flasher() {
    stop();
}

std::map<std::int64_t, double> Flasher::stop() {
    m_isStopped = true;
    if (m_thread.joinable()) {
        m_thread.join();
    }
    return m_flashes;
}

void Flasher::run() {
    for (double second = std::ceil(hostSeconds()); waitUntil(second); second += 1) {
        const double before = hostSeconds();
        m_painter.fill(0, 0, kSide, kSide, 0xFFFFFF);
        m_flashes[static_cast<std::int64_t>(second)] = (before + hostSeconds()) / 2;
        waitUntil(second + kLength);
        m_painter.fill(0, 0, kSide, kSide, 0x000000);
    }
}

/// In short steps, so that stop() does not wait; false when it came.
bool Flasher::waitUntil(double time) const {
    constexpr double kStep = 0.05; // seconds
    for (double left = time - hostSeconds(); left > 0 && !m_isStopped;
         left = time - hostSeconds()) {
        std::this_thread::sleep_for(std::chrono::duration<double>(std::min(left, kStep)));
    }
    return !m_isStopped;
}

} // namespace tavi::test
