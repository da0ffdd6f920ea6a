#pragma once

#include "base/Date.h"
#include "base/MediaTime.h"

namespace tavi {

/// The two clocks of the program. Any thread.
class Clock {
public:
    virtual ~Clock() = default;

    /// Wall-clock time; may be set back or forward by the system.
    virtual Date now() const = 0;

    /// The host clock of all media (CLOCK_MONOTONIC), in nanoseconds.
    virtual MediaTime hostTime() const = 0;
};

/// The machine's own clocks.
class SystemClock final : public Clock {
public:
    Date now() const override;
    MediaTime hostTime() const override;
};

} // namespace tavi
