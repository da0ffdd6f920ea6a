#pragma once

#include <string>

namespace tavi {

/// How the editor writes moments and lengths. Any thread.

/// "mm:ss:ff": minutes, seconds, and the thirtieths of a second that have begun.
std::string timeText(double seconds);

/// A length in whole seconds that have gone by.
struct WholeMinutes {
    long long minutes = 0;
    long long seconds = 0; ///< 0 to 59.

    bool operator==(const WholeMinutes&) const = default;
};
WholeMinutes wholeMinutes(double seconds);

} // namespace tavi
