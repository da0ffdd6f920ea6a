#pragma once

#include <string>

namespace tavi {

/// How the editor writes moments and lengths. Any thread.

/// "mm:ss:ff": minutes, seconds, and the thirtieths of a second that have begun.
std::string timeText(double seconds);

/// "1m 5s left", below a minute "5s left": whole seconds.
std::string remainingText(double seconds);

} // namespace tavi
