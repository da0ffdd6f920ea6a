#include "cli/TakeDeviceChoice.h"

#include <algorithm>
#include <chrono>

namespace tavi::cli {

namespace {

constexpr std::chrono::seconds kPatience{5};

std::string_view word(CaptureDeviceKind kind) {
    return kind == CaptureDeviceKind::microphone ? "microphone" : "camera";
}

/// The device of that name or id; "default" is the first of the list.
Result<CaptureDevice, std::string> findDevice(CaptureDevices& devices, CaptureDeviceKind kind,
                                              const std::string& name) {
    const auto list = devices.devices(kind);
    if (!list) {
        return fail(list.error().description());
    }
    const auto found = std::find_if(list->begin(), list->end(), [&](const CaptureDevice& device) {
        return name == "default" || device.name == name || device.id == name;
    });
    if (found == list->end()) {
        return fail("There is no " + std::string(word(kind)) + " \"" + name +
                    "\"; `tavi sources` lists them.");
    }
    return *found;
}

} // namespace

Result<TakeDevices, std::string>
findTakeDevices(const TakeDeviceNames& names, CaptureDevices& devices, CaptureSessions& sessions) {
    TakeDevices found;
    if (!names.camera.empty()) {
        auto camera = findDevice(devices, CaptureDeviceKind::camera, names.camera);
        if (!camera) {
            return fail(std::move(camera.error()));
        }
        found.camera = *std::move(camera);
    }
    if (!names.microphone.empty()) {
        auto microphone = findDevice(devices, CaptureDeviceKind::microphone, names.microphone);
        if (!microphone) {
            return fail(std::move(microphone.error()));
        }
        found.microphone = *std::move(microphone);
        found.audioWarmUpService = std::make_unique<AudioCaptureService>(sessions);
        if (const auto started = found.audioWarmUpService->startWarmUp(*found.microphone);
            !started) {
            return fail(started.error().description());
        }
    }
    return found;
}

bool waitForMicrophone(const TakeDevices& devices, const std::function<bool()>& waits) {
    const AudioCaptureService* warmUp = devices.audioWarmUpService.get();
    const auto end = std::chrono::steady_clock::now() + kPatience;
    while (warmUp && warmUp->state() == AudioCaptureService::State::preparing) {
        if (!waits() || std::chrono::steady_clock::now() > end) {
            return false;
        }
    }
    return true;
}

} // namespace tavi::cli
