#pragma once

#include "base/Result.h"
#include "platform/x11/XConnection.h"

#include <cstdint>
#include <string>
#include <vector>

namespace tavi {

/// A monitor as RandR 1.5 describes it.
struct Monitor {
    std::uint32_t id = 0; ///< The atom of its name.
    std::string name;
    PixelRect area; ///< On the root window.
    bool isPrimary = false;
};

/// The active monitors, in the server's order. A server without any has its
/// whole root window as one.
Result<std::vector<Monitor>, CaptureError> activeMonitors(const XConnection& connection);

/// Has the connection be told when monitors come, go or change; the number of the first of those
/// events, of which there are two. activeMonitors() has been asked before.
int watchMonitors(const XConnection& connection);

} // namespace tavi
