#pragma once

#include "base/Result.h"
#include "capture/TakeRecorder.h"

#include <functional>
#include <string>

namespace tavi::cli {

/// The devices that a command line names; empty for none.
struct TakeDeviceNames {
    std::string microphone; ///< A device's name or id, or "default".
    std::string camera;     ///< Likewise.

    bool isEmpty() const { return microphone.empty() && camera.empty(); }
};

/// Finds the devices and warms the microphone up. The warm-up may still be preparing
/// when this returns. The error is a sentence for the user.
Result<TakeDevices, std::string>
findTakeDevices(const TakeDeviceNames& names, CaptureDevices& devices, CaptureSessions& sessions);

/// Waits until the microphone's format holds still, without which a take is silent.
/// `waits` runs the program for a moment and answers false to give up. False for a
/// microphone that sends nothing for five seconds.
bool waitForMicrophone(const TakeDevices& devices, const std::function<bool()>& waits);

} // namespace tavi::cli
