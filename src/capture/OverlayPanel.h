#pragma once

#include "base/Geometry.h"

#include <memory>

namespace tavi {

/// The panel of a countdown: without frame and shadow, see-through, above all windows and
/// on all desktops, taking neither focus nor clicks. Main thread. The destructor closes it.
class OverlayPanel {
public:
    virtual ~OverlayPanel() = default;

    /// Moves it at once. Global bottom-left-origin space, points.
    virtual void setFrame(const Rect& frame) = 0;

    /// Shows another number.
    virtual void setValue(int value) = 0;

    virtual void orderFront() = 0;
};

/// Makes panels, hidden at first.
class OverlayPanels {
public:
    virtual ~OverlayPanels() = default;
    virtual std::unique_ptr<OverlayPanel> makePanel(const Rect& frame, int value) = 0;
};

} // namespace tavi
