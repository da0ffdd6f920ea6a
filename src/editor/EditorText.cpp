#include "editor/EditorText.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>

namespace tavi {

namespace {

constexpr double kLongest = 1e12; ///< Seconds; limits what may come from a broken file.

double limited(double seconds) {
    return std::isfinite(seconds) ? std::clamp(seconds, 0.0, kLongest) : 0;
}

} // namespace

std::string timeText(double seconds) {
    const double time = limited(seconds);
    const auto whole = static_cast<long long>(time);
    const auto frames = static_cast<int>((time - static_cast<double>(whole)) * 30);
    return fmt::format("{:02}:{:02}:{:02}", whole / 60, whole % 60, frames);
}

WholeMinutes wholeMinutes(double seconds) {
    const auto whole = static_cast<long long>(limited(seconds));
    return {whole / 60, whole % 60};
}

} // namespace tavi
