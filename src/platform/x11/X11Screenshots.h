#pragma once

#include "capture/Screenshots.h"

#include <string>

namespace tavi {

/// Pictures of an X server's displays and windows, each on a connection of its own.
class X11Screenshots final : public Screenshots {
public:
    /// `displayName` empty: $DISPLAY.
    explicit X11Screenshots(std::string displayName = {}) : m_displayName(std::move(displayName)) {}

    /// A window must be shown; the cursor is never in its picture. Errors: as those of a stream.
    Result<PixelBufferPtr, CaptureError>
    captureImage(const ScreenFilter& filter, const ScreenshotConfiguration& configuration) override;

private:
    std::string m_displayName;
};

} // namespace tavi
