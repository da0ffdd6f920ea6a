#include "platform/x11/X11PointerMonitors.h"

#include <xcb/xinput.h>

#include <algorithm>

namespace tavi {

namespace {

constexpr std::uint32_t kLeftButton = 1;
constexpr std::uint32_t kRightButton = 3;
constexpr std::uint32_t kFirstWheelButton = 4; ///< Up; then down, left, right.
constexpr std::uint32_t kLastWheelButton = 7;

/// From 2.1 on, raw events come even while another program grabs the pointer.
constexpr std::uint16_t kMajorVersion = 2;
constexpr std::uint16_t kMinorVersion = 2;

/// True when the pointer itself moved: axes 0 and 1 are its x and y, the
/// others are wheels, pressure and the like.
bool movesPointer(const xcb_ge_generic_event_t& event) {
    const auto& motion = reinterpret_cast<const xcb_input_raw_button_press_event_t&>(event);
    if (xcb_input_raw_button_press_valuator_mask_length(&motion) == 0) {
        return false;
    }
    return (xcb_input_raw_button_press_valuator_mask(&motion)[0] & 3U) != 0;
}

std::uint32_t buttonOf(const xcb_ge_generic_event_t& event) {
    return reinterpret_cast<const xcb_input_raw_button_press_event_t&>(event).detail;
}

} // namespace

Result<std::unique_ptr<X11PointerMonitors>, CaptureError>
X11PointerMonitors::open(const std::string& displayName) {
    auto x = XConnection::open(displayName);
    if (!x) {
        return fail(x.error());
    }
    const auto extension = x->require(xcb_input_id, "XInput 2");
    if (!extension) {
        return fail(extension.error());
    }
    const XOwned<xcb_input_xi_query_version_reply_t> version(xcb_input_xi_query_version_reply(
        x->get(), xcb_input_xi_query_version(x->get(), kMajorVersion, kMinorVersion), nullptr));
    if (!version || version->major_version < kMajorVersion) {
        return fail(CaptureError{CaptureError::Kind::missingExtension, "XInput 2"});
    }
    const std::uint8_t opcode = (*extension)->major_opcode;
    return std::unique_ptr<X11PointerMonitors>(new X11PointerMonitors(std::move(*x), opcode));
}

X11PointerMonitors::X11PointerMonitors(XConnection x, std::uint8_t extensionOpcode)
    : m_x(std::move(x)),
      m_extensionOpcode(extensionOpcode),
      m_notifier(xcb_get_file_descriptor(m_x.get()), QSocketNotifier::Read) {
    QObject::connect(&m_notifier, &QSocketNotifier::activated, &m_notifier,
                     [this] { readEvents(); });
}

std::optional<PointerMonitors::Token>
X11PointerMonitors::addGlobalMonitor(PointerEventKind kind, std::function<void()> handler) {
    if (m_x.isBroken()) {
        return std::nullopt;
    }
    if (m_monitors.isEmpty()) {
        selectEvents(true);
    }
    return m_monitors.add(kind, std::move(handler));
}

void X11PointerMonitors::removeMonitor(Token token) {
    if (m_monitors.remove(token) && m_monitors.isEmpty()) {
        selectEvents(false);
    }
}

/// Nothing wakes the program up while nobody listens.
void X11PointerMonitors::selectEvents(bool wanted) {
    struct {
        xcb_input_event_mask_t head;
        std::uint32_t mask;
    } selection{};
    selection.head.deviceid = XCB_INPUT_DEVICE_ALL_MASTER;
    selection.head.mask_len = 1;
    selection.mask = wanted ? XCB_INPUT_XI_EVENT_MASK_RAW_MOTION |
                                  XCB_INPUT_XI_EVENT_MASK_RAW_BUTTON_PRESS |
                                  XCB_INPUT_XI_EVENT_MASK_RAW_BUTTON_RELEASE
                            : 0U;
    xcb_input_xi_select_events(m_x.get(), m_x.root(), 1, &selection.head);
    if (!wanted) {
        xcb_flush(m_x.get());
        return;
    }
    readMapping();
    const XOwned<xcb_query_pointer_reply_t> pointer(
        xcb_query_pointer_reply(m_x.get(), xcb_query_pointer(m_x.get(), m_x.root()), nullptr));
    m_isLeftDown = pointer && (pointer->mask & XCB_BUTTON_MASK_1) != 0;
    // What the replies brought along is in the queue by now and wakes nobody.
    QMetaObject::invokeMethod(
        &m_notifier, [this] { readEvents(); }, Qt::QueuedConnection);
}

/// Raw events name the physical button; a left-handed user swaps them here.
void X11PointerMonitors::readMapping() {
    for (std::size_t i = 0; i < m_mapping.size(); ++i) {
        m_mapping[i] = static_cast<std::uint8_t>(i + 1);
    }
    const XOwned<xcb_get_pointer_mapping_reply_t> reply(
        xcb_get_pointer_mapping_reply(m_x.get(), xcb_get_pointer_mapping(m_x.get()), nullptr));
    if (reply) {
        const auto count =
            static_cast<std::size_t>(xcb_get_pointer_mapping_map_length(reply.get()));
        std::copy_n(xcb_get_pointer_mapping_map(reply.get()), std::min(count, m_mapping.size()),
                    m_mapping.begin());
    }
}

std::uint32_t X11PointerMonitors::logicalButton(std::uint32_t physicalButton) const {
    const bool isKnown = physicalButton >= 1 && physicalButton <= m_mapping.size();
    return isKnown ? m_mapping[physicalButton - 1] : physicalButton;
}

void X11PointerMonitors::readEvents() {
    while (const XOwned<xcb_generic_event_t> event{xcb_poll_for_event(m_x.get())}) {
        handleEvent(*event);
    }
    if (m_x.isBroken()) {
        m_notifier.setEnabled(false);
    }
}

void X11PointerMonitors::handleEvent(const xcb_generic_event_t& event) {
    const std::uint8_t type = event.response_type & 0x7F;
    if (type == XCB_MAPPING_NOTIFY) {
        readMapping();
        return;
    }
    const auto& generic = reinterpret_cast<const xcb_ge_generic_event_t&>(event);
    if (type != XCB_GE_GENERIC || generic.extension != m_extensionOpcode) {
        return;
    }
    switch (generic.event_type) {
    case XCB_INPUT_RAW_MOTION:
        handleMotion(generic);
        break;
    case XCB_INPUT_RAW_BUTTON_PRESS:
        handlePress(logicalButton(buttonOf(generic)));
        break;
    case XCB_INPUT_RAW_BUTTON_RELEASE:
        handleRelease(logicalButton(buttonOf(generic)));
        break;
    default:
        break;
    }
}

void X11PointerMonitors::handlePress(std::uint32_t button) {
    if (button == kLeftButton) {
        m_isLeftDown = true;
        m_monitors.notify(PointerEventKind::leftMouseDown);
    } else if (button == kRightButton) {
        m_monitors.notify(PointerEventKind::rightMouseDown);
    } else if (button >= kFirstWheelButton && button <= kLastWheelButton) {
        m_monitors.notify(PointerEventKind::scrollWheel);
    }
}

void X11PointerMonitors::handleRelease(std::uint32_t button) {
    if (button == kLeftButton) {
        m_isLeftDown = false;
        m_monitors.notify(PointerEventKind::leftMouseUp);
    }
}

void X11PointerMonitors::handleMotion(const xcb_ge_generic_event_t& event) {
    if (movesPointer(event)) {
        m_monitors.notify(m_isLeftDown ? PointerEventKind::leftMouseDragged
                                       : PointerEventKind::mouseMoved);
    }
}

} // namespace tavi
