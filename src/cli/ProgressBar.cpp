#include "cli/ProgressBar.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <unistd.h>

namespace tavi::cli {

namespace {

constexpr std::chrono::milliseconds kRedraw(100);
constexpr int kCells = 30;

} // namespace

ProgressBar::ProgressBar(std::string label)
    : m_label(std::move(label)),
      m_isShown(isatty(STDERR_FILENO) != 0),
      m_start(Clock::now()),
      m_lastDrawn(m_start) {}

ProgressBar::~ProgressBar() {
    if (m_isDrawn) {
        std::fputs("\n", stderr);
    }
}

void ProgressBar::update(double share, std::optional<double> timeLeft) {
    ++m_frames;
    const auto now = Clock::now();
    if (!m_isShown || (now - m_lastDrawn < kRedraw && share < 1)) {
        return;
    }
    m_lastDrawn = now;
    m_isDrawn = true;
    const std::chrono::duration<double> elapsed = now - m_start;
    // Back to the first column, and clear what an earlier, longer line left.
    fmt::print(stderr, "\r\x1b[K{}{}", m_label,
               progressText(share, m_frames, elapsed.count(), timeLeft));
    std::fflush(stderr);
}

std::string progressText(double share, long frames, double elapsedSeconds,
                         std::optional<double> timeLeft) {
    const double done = std::clamp(share, 0.0, 1.0);
    const auto cells = static_cast<std::size_t>(done * kCells);
    std::string text = fmt::format("{:3.0f} % [{}{}]", std::floor(done * 100),
                                   std::string(cells, '#'), std::string(kCells - cells, '.'));
    if (elapsedSeconds > 0) {
        text += fmt::format(" {:.1f} fps", static_cast<double>(frames) / elapsedSeconds);
    }
    if (timeLeft) {
        const auto left = std::lround(*timeLeft);
        text += fmt::format(" {}:{:02} left", left / 60, left % 60);
    }
    return text;
}

} // namespace tavi::cli
