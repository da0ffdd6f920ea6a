#pragma once

#include "base/PixelBuffer.h"
#include "capture/Pointer.h"

namespace tavi {

/// The arrow of the cursor theme that the user chose, in about `height` pixels,
/// without the empty margins around it, so that its tip is at the top left.
/// Null where no theme has one.
///
/// The choice is the environment's and the X server's; without a server it is
/// the theme "default". Blocks on files and the server for some milliseconds.
PixelBufferPtr desktopArrow(int height);

/// The same arrow in the size that the user chose, as programs show it; absent where no theme has
/// one. It asks the environment only, so it serves where there is no X server.
std::optional<SystemCursor> desktopArrowCursor();

} // namespace tavi
