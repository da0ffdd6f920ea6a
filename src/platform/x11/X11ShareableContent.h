#pragma once

#include "capture/ShareableContent.h"

#include <string>

namespace tavi {

/// Displays by RandR, windows by the window manager's client list. Connects
/// anew for each question.
class X11ShareableContent final : public ShareableContentSource {
public:
    /// `displayName` empty: $DISPLAY.
    explicit X11ShareableContent(std::string displayName = {})
        : m_displayName(std::move(displayName)) {}

    Result<ShareableContent, CaptureError> content() override;

private:
    std::string m_displayName;
};

} // namespace tavi
