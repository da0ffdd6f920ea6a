#pragma once

#include "base/PixelBuffer.h"

namespace tavi {

/// Continues the last column and row of the `width` x `height` pixels at the
/// top left to the picture's edges. Both are positive.
void repeatEdges(PixelBuffer& picture, int width, int height);

} // namespace tavi
