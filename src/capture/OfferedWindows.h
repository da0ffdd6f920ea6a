#pragma once

#include "capture/ShareableContent.h"

#include <span>
#include <vector>

namespace tavi {

/// The windows that a user may choose from, in their order: shown, larger than
/// 100 x 100 points, of a program with a name that isn't part of the desktop itself, and
/// with a title unless they are at least 200 points high. Those of the program with the desktop
/// entry `ownId` are left out: it is minimized while it records.
std::vector<Window> offeredWindows(std::span<const Window> windows, const std::string& ownId = {});

/// The ids of the windows on screen that belong to the program with that desktop entry; none
/// for an empty id.
std::vector<std::uint32_t> windowsOfProgram(std::span<const Window> windows,
                                            const std::string& applicationId);

} // namespace tavi
