#pragma once

#include "base/PixelBuffer.h"

namespace tavi {

/// The arrow of the cursor theme that the user chose, in about `height` pixels,
/// without the empty margins around it, so that its tip is at the top left.
/// Null where no theme has one.
///
/// The choice is the environment's and the X server's; without a server it is
/// the theme "default". Blocks on files and the server for some milliseconds.
PixelBufferPtr desktopArrow(int height);

} // namespace tavi
