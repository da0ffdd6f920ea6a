#pragma once

#include <string>

namespace tavi {

/// True when a compositor shows see-through windows as such. `displayName` empty: $DISPLAY.
/// Any thread.
bool isX11Composited(const std::string& displayName = {});

} // namespace tavi
