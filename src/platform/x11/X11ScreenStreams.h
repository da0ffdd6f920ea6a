#pragma once

#include "capture/ScreenStream.h"

#include <string>

namespace tavi {

/// Streams of an X server's displays and windows, each on a connection and a thread of its own.
class X11ScreenStreams final : public ScreenStreams {
public:
    /// `displayName` empty: $DISPLAY.
    explicit X11ScreenStreams(std::string displayName = {})
        : m_displayName(std::move(displayName)) {}

    Result<std::unique_ptr<ScreenStream>, CaptureError>
    makeStream(const ScreenFilter& filter, const ScreenStreamConfiguration& configuration) override;

private:
    std::string m_displayName;
};

} // namespace tavi
