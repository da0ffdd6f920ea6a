#include "keys/PointerTranslator.h"

#include <cmath>
#include <linux/input-event-codes.h>

namespace tavi {

namespace {

/// A wheel's notch; wheels of high resolution report parts of it.
constexpr double kNotch = 120;
/// The way of a finger that counts as a tick, in the device library's units.
constexpr double kFingerTick = 15;

} // namespace

void PointerTranslator::handle(libinput_event& event, const Handler& print) {
    switch (libinput_event_get_type(&event)) {
    case LIBINPUT_EVENT_POINTER_BUTTON:
        handleButton(*libinput_event_get_pointer_event(&event), print);
        break;
    case LIBINPUT_EVENT_POINTER_SCROLL_WHEEL:
        handleScroll(*libinput_event_get_pointer_event(&event), Unit::wheel, print);
        break;
    case LIBINPUT_EVENT_POINTER_SCROLL_FINGER:
    case LIBINPUT_EVENT_POINTER_SCROLL_CONTINUOUS:
        handleScroll(*libinput_event_get_pointer_event(&event), Unit::finger, print);
        break;
    case LIBINPUT_EVENT_TABLET_TOOL_TIP:
        handleTip(*libinput_event_get_tablet_tool_event(&event), print);
        break;
    default:
        break;
    }
}

void PointerTranslator::handleButton(libinput_event_pointer& event, const Handler& print) {
    const std::uint32_t button = libinput_event_pointer_get_button(&event);
    const std::uint32_t holders = libinput_event_pointer_get_seat_button_count(&event);
    const std::uint64_t time = libinput_event_pointer_get_time_usec(&event);
    const bool isDown =
        libinput_event_pointer_get_button_state(&event) == LIBINPUT_BUTTON_STATE_PRESSED;
    if (button == BTN_LEFT && holders == (isDown ? 1 : 0)) {
        print(pointerLine(time, isDown ? PointerDeed::leftMouseDown : PointerDeed::leftMouseUp));
    } else if (button == BTN_RIGHT && isDown && holders == 1) {
        print(pointerLine(time, PointerDeed::rightClick));
    }
}

void PointerTranslator::handleTip(libinput_event_tablet_tool& event, const Handler& print) {
    const bool isDown =
        libinput_event_tablet_tool_get_tip_state(&event) == LIBINPUT_TABLET_TOOL_TIP_DOWN;
    print(pointerLine(libinput_event_tablet_tool_get_time_usec(&event),
                      isDown ? PointerDeed::leftMouseDown : PointerDeed::leftMouseUp));
}

/// The end of a finger's way is reported as a way of 0.
void PointerTranslator::handleScroll(libinput_event_pointer& event, Unit unit,
                                     const Handler& print) {
    for (const auto axis :
         {LIBINPUT_POINTER_AXIS_SCROLL_VERTICAL, LIBINPUT_POINTER_AXIS_SCROLL_HORIZONTAL}) {
        if (libinput_event_pointer_has_axis(&event, axis) == 0) {
            continue;
        }
        const bool isWheel = unit == Unit::wheel;
        const double way = isWheel ? libinput_event_pointer_get_scroll_value_v120(&event, axis)
                                   : libinput_event_pointer_get_scroll_value(&event, axis);
        double& scrolled = m_scrolled[axis];
        const bool turnsBack = way * scrolled < 0;
        scrolled = way == 0 || turnsBack ? way : scrolled + way;
        const double tick = isWheel ? kNotch : kFingerTick;
        for (; std::abs(scrolled) >= tick; scrolled -= std::copysign(tick, scrolled)) {
            print(pointerLine(libinput_event_pointer_get_time_usec(&event), PointerDeed::scroll));
        }
    }
}

} // namespace tavi
