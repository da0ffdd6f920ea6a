#pragma once

#include "base/Geometry.h"

namespace tavi {

/// Where the output's frame stands on the editor's canvas, in points, y downwards.
struct CanvasGeometry {
    Rect frame;       ///< Of the output's shape, centred; without area where there is no room.
    double scale = 0; ///< Points of the canvas for one pixel of the output.

    bool operator==(const CanvasGeometry&) const = default;
};

/// The largest frame that leaves a margin on the canvas.
///
/// Units:  `canvas` in points, `output` in pixels.
/// Errors: none; an output without area gives no frame. Any thread.
CanvasGeometry canvasGeometry(Size canvas, Size output);

} // namespace tavi
