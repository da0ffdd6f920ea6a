#pragma once

#include "base/MediaTime.h"

namespace tavi {

/// Where an item stands on its own timeline: still, or moving with the host clock.
struct PlayerClock {
    double rate = 0;    ///< Item seconds a host second; 0: it stands.
    MediaTime time;     ///< Where it stands, or is at `hostTime`.
    MediaTime hostTime; ///< When it moves on from `time`; before, it stands there.

    static PlayerClock standing(MediaTime time) { return {0, time, {}}; }

    bool isMoving() const { return rate > 0; }

    /// The item's time at a moment of the host clock; to the nanosecond while it moves.
    MediaTime at(MediaTime host) const;

    /// When a moving item is at `itemTime`; not before it moves at all.
    MediaTime hostTimeOf(MediaTime itemTime) const;
};

} // namespace tavi
