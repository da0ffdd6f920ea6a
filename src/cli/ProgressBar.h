#pragma once

#include <chrono>
#include <optional>
#include <string>

namespace tavi::cli {

/// One line of progress on standard error, drawn over itself; nothing where
/// standard error is no terminal. The destructor leaves the line.
class ProgressBar {
public:
    /// `label` stands in front.
    explicit ProgressBar(std::string label);
    ~ProgressBar();
    ProgressBar(const ProgressBar&) = delete;
    ProgressBar& operator=(const ProgressBar&) = delete;

    /// One more frame is done; `share` of the whole, 0 to about 1, and the
    /// seconds left where they are known.
    void update(double share, std::optional<double> timeLeft);

private:
    using Clock = std::chrono::steady_clock;

    std::string m_label;
    bool m_isShown;
    bool m_isDrawn = false;
    Clock::time_point m_start;
    Clock::time_point m_lastDrawn;
    long m_frames = 0;
};

/// The line for a share done after some seconds: percent, a bar, frames a second
/// and the time left.
std::string progressText(double share, long frames, double elapsedSeconds,
                         std::optional<double> timeLeft);

} // namespace tavi::cli
