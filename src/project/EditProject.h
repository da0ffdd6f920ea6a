#pragma once

#include "base/PixelBuffer.h"
#include "project/AppearanceSettings.h"
#include "project/AutoZoomSettings.h"
#include "project/CameraSettings.h"
#include "project/CursorEvent.h"
#include "project/CursorSettings.h"
#include "project/OutputSettings.h"
#include "project/TrimState.h"
#include "project/ZoomKeyframe.h"

#include <string>
#include <vector>

namespace tavi {

/// The edit of one take. The first eight fields are what the user decided and go
/// to `project.json`; the rest is what the recording says, is never stored there
/// and is refilled from the take's folder at every opening.
struct EditProject {
    std::string recordingPath; ///< File URL of the take's folder.
    std::vector<ZoomKeyframe> keyframes;
    OutputSettings outputSettings;
    CursorSettings cursorSettings;
    AutoZoomSettings autoZoomSettings;
    AppearanceSettings appearanceSettings;
    CameraSettings cameraSettings;
    TrimState trimState;

    std::vector<CursorEvent> cursorEvents; ///< In log order.
    std::vector<CursorImageInfo> cursorImageInfos;
    std::vector<PixelBufferPtr> cursorImages; ///< Those that could be read, without gaps.
    double videoHeight = 0;      ///< Height of the capture in log units; 0 when unknown.
    double cameraStartDelay = 0; ///< Seconds.

    bool operator==(const EditProject&) const = default;
};

} // namespace tavi
