#include "editor/CustomOutput.h"

#include <algorithm>
#include <cmath>

namespace tavi {

namespace {

constexpr std::int64_t kWidest = 7680;
constexpr std::int64_t kHighest = 4320;
constexpr std::int64_t kFastest = 120;
constexpr double kUsualAspect = 16.0 / 9.0;

/// A typed number of at least 1, limited to `most`.
std::optional<std::int64_t> parsed(std::string_view text, std::int64_t most) {
    if (text.empty()) {
        return std::nullopt;
    }
    std::int64_t value = 0;
    for (const char c : text) {
        if (c < '0' || c > '9') {
            return std::nullopt;
        }
        value = std::min(value * 10 + (c - '0'), most);
    }
    return value >= 1 ? std::optional(value) : std::nullopt;
}

double even(double whole) {
    return whole + std::fmod(whole, 2);
}

double aspectOf(Size source) {
    return source.height > 0 ? source.width / source.height : kUsualAspect;
}

} // namespace

std::optional<Size> customSizeForWidth(std::string_view text, Size source) {
    const auto typed = parsed(text, kWidest);
    if (!typed) {
        return std::nullopt;
    }
    const double width = even(static_cast<double>(*typed));
    return Size{width, even(std::round(width / aspectOf(source)))};
}

std::optional<Size> customSizeForHeight(std::string_view text, Size source) {
    const auto typed = parsed(text, kHighest);
    if (!typed) {
        return std::nullopt;
    }
    const double height = even(static_cast<double>(*typed));
    return Size{even(std::round(height * aspectOf(source))), height};
}

std::optional<std::int64_t> customFrameRate(std::string_view text) {
    return parsed(text, kFastest);
}

} // namespace tavi
