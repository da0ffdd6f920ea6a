#pragma once

#include "capture/ScreenStream.h"

#include <string>

namespace tavi {

/// Streams of an X server's displays and windows, each on a connection and a thread of its own.
///
/// An X server gives a display's picture only as it is on the screen, so no window can be left
/// out of it: ScreenFilter::exceptingWindows is not looked at. A program that is not to be in the
/// picture hides its windows before it starts the stream.
class X11ScreenStreams final : public ScreenStreams {
public:
    /// `displayName` empty: $DISPLAY.
    explicit X11ScreenStreams(std::string displayName = {})
        : m_displayName(std::move(displayName)) {}

    bool hasAlpha(const ScreenFilter& filter) override;

    Result<std::unique_ptr<ScreenStream>, CaptureError>
    makeStream(const ScreenFilter& filter, const ScreenStreamConfiguration& configuration) override;

private:
    std::string m_displayName;
};

} // namespace tavi
