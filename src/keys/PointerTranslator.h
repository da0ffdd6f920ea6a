#pragma once

#include "keys/KeyLine.h"

#include <libinput.h>

#include <array>
#include <functional>
#include <string>

namespace tavi {

/// Turns what mice, touchpads and tablets do into pointer lines: the left button going down and
/// up, the right one going down, ticks of a wheel. The tip of a pen is a left button. Moves and
/// other buttons give none.
///
/// A finger that scrolls ticks at distances at which X servers tick too. A button that is held on
/// two devices went down once. Threads: one.
class PointerTranslator {
public:
    /// Gets whole lines.
    using Handler = std::function<void(const std::string& line)>;

    void handle(libinput_event& event, const Handler& print);

private:
    enum class Unit { wheel, finger };

    static void handleButton(libinput_event_pointer& event, const Handler& print);
    static void handleTip(libinput_event_tablet_tool& event, const Handler& print);
    void handleScroll(libinput_event_pointer& event, Unit unit, const Handler& print);

    /// What was scrolled since the last tick, in the unit's own measure: vertically, horizontally.
    std::array<double, 2> m_scrolled{};
};

} // namespace tavi
