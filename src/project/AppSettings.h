#pragma once

#include "project/AppearanceSettings.h"
#include "project/AutoZoomSettings.h"
#include "project/CameraSettings.h"
#include "project/CursorSettings.h"
#include "project/OutputSettings.h"

#include <filesystem>

namespace tavi {

/// The defaults of new takes.
struct AppSettings {
    bool defaultCameraEnabled = false;
    bool defaultAudioEnabled = false;
    OutputSettings outputSettings;
    CursorSettings cursorSettings;
    AppearanceSettings appearanceSettings;
    CameraSettings cameraSettings;
    AutoZoomSettings autoZoomSettings;

    bool operator==(const AppSettings&) const = default;
};

/// Reads `settings.json` of a library folder. A file that is absent, unreadable
/// or broken in any one place counts as a whole as absent: the built-in defaults.
AppSettings loadAppSettings(const std::filesystem::path& recordingsDirectory);

/// Writes `settings.json` whole, creating the library folder. Every failure is
/// dropped: the settings in memory stand and the next save tries again.
void saveAppSettings(const AppSettings& settings, const std::filesystem::path& recordingsDirectory);

} // namespace tavi
