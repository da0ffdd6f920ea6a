#pragma once

#include "capture/DesktopSupport.h"

#include <vector>

namespace tavi::cli {

/// Looks at everything: the desktop with its portal, pointer, keys, tray and sleep, the displays,
/// the encoders (by trial encodes, a second or two) and the library folder. Needs a
/// QCoreApplication.
std::vector<Finding> examineMachine();

} // namespace tavi::cli
