#pragma once

#include <functional>

namespace tavi {

/// Whether this program may record the screen. Thread: main.
class ScreenPermission {
public:
    virtual ~ScreenPermission() = default;

    /// What is known without asking anybody; quick.
    virtual bool preflight() = 0;

    /// Asks the user where the desktop has such a question; `answer` is called once, on any
    /// thread, at once or later.
    virtual void request(std::function<void(bool)> answer) = 0;
};

/// Opens the place in the system's settings where the screen recording permission is granted;
/// Workspace::openUrl() maps it to this desktop's own.
inline constexpr const char* kScreenCaptureSettingsUrl =
    "x-apple.systempreferences:com.apple.preference.security?Privacy_ScreenCapture";

} // namespace tavi
