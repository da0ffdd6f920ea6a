#pragma once

#include "base/Result.h"
#include "capture/CursorMode.h"
#include "capture/Pointer.h"
#include "capture/ScreenStream.h"
#include "capture/Screenshots.h"
#include "capture/ShareableContent.h"
#include "capture/SourceConsent.h"
#include "capture/SourceFrames.h"

namespace tavi {

/// All that takes need of the window system that the program runs in. Threads: as the ports tell;
/// the object itself belongs to the main one. What it hands out lives as long as it does.
class ScreenSystem {
public:
    struct Pointer {
        PointerMonitors& monitors;
        const PointerLocation& location;
        CursorImages& images;
    };

    virtual ~ScreenSystem() = default;

    virtual ShareableContentSource& content() = 0;

    /// Null where sources can't be looked at before their user has agreed.
    virtual Screenshots* screenshots() = 0;

    virtual ScreenStreams& streams() = 0;
    virtual SourceFrames& frames() = 0;

    /// Null where nobody is asked.
    virtual SourceConsent* consent() = 0;

    /// The pointer of the whole desktop, connected to at the first call.
    virtual Result<Pointer, CaptureError> pointer() = 0;

    virtual CursorMode cursorMode() const = 0;

    /// Whether the pointer's monitors tell of buttons and wheels. Where they don't, the key
    /// helper does (kHelperPointerOption).
    virtual bool seesClicks() const = 0;
};

} // namespace tavi
