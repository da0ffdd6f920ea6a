#pragma once

#include "base/Executor.h"
#include "base/Result.h"
#include "capture/CaptureDeviceError.h"

#include <functional>
#include <string>
#include <vector>

namespace tavi {

enum class CaptureDeviceKind { microphone, camera };

/// A microphone or a camera, as one moment's list names it.
struct CaptureDevice {
    /// The same for the same device after it was unplugged and after a restart;
    /// unlike that of every other device. Not for users.
    std::string id;
    std::string name; ///< For users; never empty, perhaps not unique.
    CaptureDeviceKind kind = CaptureDeviceKind::microphone;

    bool operator==(const CaptureDevice&) const = default;
};

/// What microphones and cameras there are.
///
/// Threads: one controlling thread (the main one); handlers run on the executor
/// that the implementation was made with, which is that same thread.
class CaptureDevices {
public:
    virtual ~CaptureDevices() = default;

    /// Asks whether devices of a kind may be used, and the user where the system
    /// wants that. Calls `handler` exactly once, later: false when they may not, or
    /// when nothing answers.
    virtual void requestAccess(CaptureDeviceKind kind, std::function<void(bool)> handler) = 0;

    /// The devices of a kind that are plugged in, the system's default first, then
    /// by name. What only plays other programs' sound (the monitor of a loudspeaker) is no
    /// microphone. Blocks for a moment at most. Errors: noService.
    virtual Result<std::vector<CaptureDevice>, CaptureDeviceError>
    devices(CaptureDeviceKind kind) = 0;

    /// Calls `handler` after devices came, went or took another place in the list;
    /// several changes may share one call. Replaces the handler before; an empty one
    /// ends the calls, none comes after this returns.
    virtual void setChangeHandler(std::function<void()> handler) = 0;
};

} // namespace tavi
