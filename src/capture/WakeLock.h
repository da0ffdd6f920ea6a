#pragma once

#include <memory>
#include <string>

namespace tavi {

/// Keeps the session awake: its screen is neither blanked nor locked for idleness, and the machine
/// does not fall asleep by itself. The destructor lets go; so does the end of the program.
class WakeLock {
public:
    virtual ~WakeLock() = default;
};

/// Makes wake locks. Thread: main.
class WakeLocks {
public:
    virtual ~WakeLocks() = default;

    /// Asks at once and waits for nobody; where nobody can keep the session awake, nothing
    /// happens. `reason` is shown to users who look what keeps their desktop awake. Never null.
    virtual std::unique_ptr<WakeLock> acquire(const std::string& reason) = 0;
};

} // namespace tavi
