#pragma once

#include "base/Executor.h"
#include "capture/ScreenSystem.h"
#include "media/ColorConversion.h"

#include <memory>

namespace tavi {

/// The window system that this program records: a Wayland session through its portal, where there
/// is one; else an X server, whether or not one answers. Never null.
///
/// Both arguments outlive it; null `colours` serve where only sources are listed. Main thread;
/// blocks for some seconds at most where a portal must be started first.
std::unique_ptr<ScreenSystem> openScreenSystem(Executor& main,
                                               std::shared_ptr<const ColorConverter> colours);

} // namespace tavi
