#include "editor/CanvasGeometry.h"

#include <algorithm>

namespace tavi {

namespace {

constexpr double kMargin = 24; ///< Points of each axis that the frame leaves.

} // namespace

CanvasGeometry canvasGeometry(Size canvas, Size output) {
    if (!(output.width > 0) || !(output.height > 0)) {
        return {};
    }
    const Size room{std::max(canvas.width - kMargin, 0.0), std::max(canvas.height - kMargin, 0.0)};
    const double aspect = output.width / output.height;
    const bool isWide = room.width / aspect <= room.height;
    const Size frame =
        isWide ? Size{room.width, room.width / aspect} : Size{room.height * aspect, room.height};
    return {{(canvas.width - frame.width) / 2, (canvas.height - frame.height) / 2, frame.width,
             frame.height},
            frame.width / output.width};
}

} // namespace tavi
