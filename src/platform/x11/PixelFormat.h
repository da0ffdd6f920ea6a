#pragma once

#include "base/Result.h"
#include "platform/x11/XConnection.h"

namespace tavi {

/// Checks that drawables of this visual and depth have pixels of 32 bits that lie in
/// memory as blue, green, red and alpha or nothing.
Result<void, CaptureError> requirePixelFormat(const XConnection& x, xcb_visualid_t visual,
                                              int depth);

} // namespace tavi
