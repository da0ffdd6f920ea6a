#pragma once

#include "base/Geometry.h"
#include "base/Result.h"
#include "capture/CaptureError.h"

#include <cstdint>
#include <string>
#include <vector>

namespace tavi {

/// A display that can be recorded.
struct Display {
    std::uint32_t id =
        0;               ///< The window system's own number; stable while the display is connected.
    std::string name;    ///< As the system names its output ("HDMI-1").
    int width = 0;       ///< Points.
    int height = 0;      ///< Points.
    Rect frame;          ///< Global space, bottom-left origin, points.
    bool isMain = false; ///< The display that the user chose as first.
    /// Where a compositor has it, in units of its own, rows downwards: only to know it again by.
    /// Empty where nobody tells.
    Rect place = {};

    bool operator==(const Display&) const = default;
};

/// A window of a program, as the window manager lists it.
struct Window {
    std::uint32_t id = 0;
    std::string title;           ///< May be empty.
    std::string applicationName; ///< The program, for the user's eyes; may be empty.
    std::string applicationId;   ///< What its desktop entry is called; empty when nothing tells.
    Rect frame;                  ///< Global space, bottom-left origin, points; without decoration.
    bool isOnScreen = false;     ///< Shown and not minimized.

    bool operator==(const Window&) const = default;
};

/// What can be recorded at this moment.
struct ShareableContent {
    std::vector<Display> displays; ///< In the system's order.
    /// Bottom to top; panels, docks, desktops, menus and notifications are not among them.
    std::vector<Window> windows;
};

/// Lists the sources. Any thread.
class ShareableContentSource {
public:
    virtual ~ShareableContentSource() = default;
    virtual Result<ShareableContent, CaptureError> content() = 0;
};

} // namespace tavi
