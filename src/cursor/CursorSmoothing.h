#pragma once

#include "project/CursorEvent.h"
#include "project/CursorSettings.h"

#include <span>
#include <vector>

namespace tavi {

/// A point of the smoothed pointer path.
struct SmoothedCursorSample {
    double timestamp = 0; ///< Seconds, of the event it was made from.
    double x = 0;         ///< Log units.
    double y = 0;         ///< Log units from the bottom edge: already flipped.

    bool operator==(const SmoothedCursorSample&) const = default;
};

/// Smooths a whole log with a mass-spring-damper that is run forwards and
/// backwards over it; the two runs are averaged. Clicks are anchors: there the
/// path passes through the real point.
///
/// Shapes: one sample per event, in the same order.
/// Units:  seconds and log units; `videoHeight` flips y.
/// Errors: none. Pairs of events a second or more apart, at one time or running
///         backwards are not integrated across: the path jumps.
/// Thread: any; pure.
std::vector<SmoothedCursorSample> smoothCursorEvents(std::span<const CursorEvent> events,
                                                     CursorSmoothingPreset preset,
                                                     double videoHeight);

} // namespace tavi
