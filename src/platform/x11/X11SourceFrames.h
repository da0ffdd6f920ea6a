#pragma once

#include "capture/SourceFrames.h"
#include "platform/x11/XConnection.h"

#include <string>

namespace tavi {

/// Displays and windows of an X server, asked over one connection that is made at the first
/// question. After the server has gone, nothing is anywhere.
class X11SourceFrames final : public SourceFrames {
public:
    /// `displayName` empty: $DISPLAY.
    explicit X11SourceFrames(std::string displayName = {})
        : m_displayName(std::move(displayName)) {}

    std::optional<Rect> displayFrame(std::uint32_t displayId) override;
    std::optional<Rect> windowFrame(std::uint32_t windowId) override;

private:
    const XConnection* connection();

    std::string m_displayName;
    std::optional<XConnection> m_connection;
};

} // namespace tavi
