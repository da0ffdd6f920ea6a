#pragma once

#include "capture/ScreenCaptureService.h"

#include <cstdio>
#include <string>

namespace tavi::bench {

/// Records a source until the standard input ends. Prints a line at the first picture, and at the
/// end one with the pictures taken and dropped.
inline Result<void, CaptureError> recordUntilTold(ScreenCaptureService& service,
                                                  const ScreenFilter& filter, int width, int height,
                                                  const std::string& path) {
    service.onSessionStarted = [] {
        std::puts("recording");
        std::fflush(stdout);
    };
    if (auto started = service.startCapture(filter, width, height, path); !started) {
        return started;
    }
    while (std::getchar() != EOF) {
    }
    const auto taken = service.appendedFrames();
    const auto dropped = service.droppedFrames();
    service.stopCapture();
    std::printf("%llu %llu\n", static_cast<unsigned long long>(taken),
                static_cast<unsigned long long>(dropped));
    return {};
}

} // namespace tavi::bench
