#pragma once

#include "base/PixelBuffer.h"

namespace tavi {

/// `source` in another size: each pixel is the mean of the area of the source that it
/// covers, parts of pixels counted as parts. For pictures that become smaller.
///
/// Shapes:   `source` isn't empty; `width` and `height` are positive.
/// Rounding: to nearest, so a plain colour stays what it is.
/// Thread:   any.
PixelBuffer areaScaled(const PixelBuffer& source, int width, int height);

} // namespace tavi
