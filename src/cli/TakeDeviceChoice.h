#pragma once

#include "base/Result.h"
#include "capture/CaptureDevices.h"

#include <string>
#include <vector>

namespace tavi::cli {

/// The devices that a command line names; empty for none.
struct TakeDeviceNames {
    std::string microphone; ///< A device's name or id, or "default".
    std::string camera;     ///< Likewise.

    bool isEmpty() const { return microphone.empty() && camera.empty(); }
};

/// The place in `list` of the device of that name or id; "default" is the first. The
/// error is a sentence for the user; `devices` may know why the list is empty.
Result<int, std::string> indexOfDevice(const std::vector<CaptureDevice>& list,
                                       const std::string& name, CaptureDeviceKind kind,
                                       CaptureDevices& devices);

} // namespace tavi::cli
