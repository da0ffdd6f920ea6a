#include "cli/TakeDeviceChoice.h"

#include <algorithm>
#include <string_view>

namespace tavi::cli {

namespace {

std::string_view word(CaptureDeviceKind kind) {
    return kind == CaptureDeviceKind::microphone ? "microphone" : "camera";
}

} // namespace

Result<int, std::string> indexOfDevice(const std::vector<CaptureDevice>& list,
                                       const std::string& name, CaptureDeviceKind kind,
                                       CaptureDevices& devices) {
    const auto found = std::find_if(list.begin(), list.end(), [&](const CaptureDevice& device) {
        return name == "default" || device.name == name || device.id == name;
    });
    if (found != list.end()) {
        return static_cast<int>(found - list.begin());
    }
    if (const auto asked = devices.devices(kind); !asked) {
        return fail(asked.error().description());
    }
    return fail("There is no " + std::string(word(kind)) + " \"" + name +
                "\"; `tavi sources` lists them.");
}

} // namespace tavi::cli
