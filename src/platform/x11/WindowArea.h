#pragma once

#include "platform/x11/XConnection.h"

#include <optional>

namespace tavi {

/// Where a window is on the root, without its decoration; absent for one that is gone.
std::optional<PixelRect> areaOnRoot(const XConnection& connection, xcb_window_t window);

} // namespace tavi
