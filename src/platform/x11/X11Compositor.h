#pragma once

#include <string>

namespace tavi {

/// True when a compositor shows see-through windows as such. `displayName` empty: $DISPLAY.
/// Any thread.
bool isX11Composited(const std::string& displayName = {});

/// True when a panel has a tray of the older kind, whose items are windows. Any thread.
bool hasX11Tray(const std::string& displayName = {});

} // namespace tavi
