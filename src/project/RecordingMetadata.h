#pragma once

#include "base/Date.h"
#include "project/CursorEvent.h"

#include <vector>

namespace tavi {

/// The sidecar of a take, `metadata.json`: written once when capture stops.
struct RecordingMetadata {
    Date startDate;
    double duration = 0;                   ///< Seconds on the elapsed counter at stop.
    std::int64_t screenWidth = 0;          ///< Points.
    std::int64_t screenHeight = 0;         ///< Points.
    std::vector<CursorEvent> cursorEvents; ///< In order of arrival.
    std::vector<CursorImageInfo> cursorImageInfos;
    bool hasCameraRecording = false;
    bool hasAudioRecording = false;
    double cameraStartDelay = 0; ///< Seconds from the first screen frame to the first camera frame.

    bool operator==(const RecordingMetadata&) const = default;
};

} // namespace tavi
