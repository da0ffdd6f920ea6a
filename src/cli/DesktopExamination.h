#pragma once

#include "capture/DesktopSupport.h"

namespace tavi::cli {

/// Tries everything that a take needs of the running desktop: asks its portal, has the key helper
/// listen, and keeps the session awake for a moment. Takes some seconds where nobody answers.
/// Needs a QCoreApplication.
DesktopSupport examineDesktop();

} // namespace tavi::cli
