#pragma once

#include "capture/ShareableContent.h"

#include <span>
#include <vector>

namespace tavi {

/// The windows that a user may choose from, in their order: shown, larger than
/// 100 x 100 points, of a program with a name that isn't part of the desktop itself, and
/// with a title unless they are at least 200 points high.
std::vector<Window> offeredWindows(std::span<const Window> windows);

} // namespace tavi
