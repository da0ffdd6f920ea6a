#pragma once

#include "autozoom/UnifiedAutoZoom.h"

#include <vector>

namespace tavi::test {

/// An event of the log, y counted from the top.
inline CursorEvent eventAt(double time, double x, double y, CursorEventType type) {
    return {time, x, y, type, 0, {}, {}};
}

/// A full-HD video of 100 s for a 16:9 output, one pixel a log unit.
inline UnifiedAutoZoom::Inputs fullHd(double aggressiveness) {
    UnifiedAutoZoom::Inputs inputs;
    inputs.scale = 1;
    inputs.video = {1920, 1080};
    inputs.base = {1920, 1080};
    inputs.duration = 100;
    inputs.aggressiveness = aggressiveness;
    return inputs;
}

} // namespace tavi::test
