#pragma once

#include "capture/ScreenSystem.h"
#include "platform/x11/X11Pointer.h"
#include "platform/x11/X11PointerMonitors.h"
#include "platform/x11/X11ScreenStreams.h"
#include "platform/x11/X11Screenshots.h"
#include "platform/x11/X11ShareableContent.h"
#include "platform/x11/X11SourceFrames.h"

#include <memory>

namespace tavi {

/// The X server that $DISPLAY names. A program that may connect to it may read it: nobody is
/// asked.
class X11ScreenSystem final : public ScreenSystem {
public:
    ShareableContentSource& content() override { return m_content; }
    Screenshots* screenshots() override { return &m_screenshots; }
    ScreenStreams& streams() override { return m_streams; }
    SourceFrames& frames() override { return m_frames; }
    SourceConsent* consent() override { return nullptr; }
    Result<Pointer, CaptureError> pointer() override;
    CursorMode cursorMode() const override { return CursorMode::metadata; }
    bool seesClicks() const override { return true; }

private:
    X11ShareableContent m_content;
    X11Screenshots m_screenshots;
    X11ScreenStreams m_streams;
    X11SourceFrames m_frames;
    std::unique_ptr<X11Pointer> m_pointer;
    std::unique_ptr<X11PointerMonitors> m_monitors;
};

} // namespace tavi
