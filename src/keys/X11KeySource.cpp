#include "keys/X11KeySource.h"

#include <xkbcommon/xkbcommon-x11.h>

#include <cstdlib>
#include <utility>

// The header has a field that is named like a keyword of C++.
#define explicit explicitComponents
#include <xcb/xkb.h>
#undef explicit

namespace tavi {

namespace {

struct FreeMemory {
    void operator()(void* p) const { std::free(p); }
};
template<typename T>
using Owned = std::unique_ptr<T, FreeMemory>;

} // namespace

std::unique_ptr<X11KeySource> X11KeySource::open(Handler handler) {
    XkbHandle<xkb_context> context(xkb_context_new(XKB_CONTEXT_NO_FLAGS));
    if (!context) {
        return nullptr;
    }
    std::unique_ptr<X11KeySource> source(new X11KeySource(std::move(handler), std::move(context)));
    const bool isListening = source->connect() && source->selectKeyboardEvents() &&
                             source->loadKeymap() && source->selectKeyEvents();
    return isListening ? std::move(source) : nullptr;
}

X11KeySource::X11KeySource(Handler handler, XkbHandle<xkb_context> context)
    : m_handler(std::move(handler)),
      m_context(std::move(context)),
      m_translator(*m_context) {}

X11KeySource::~X11KeySource() {
    xcb_disconnect(m_connection);
}

bool X11KeySource::connect() {
    int number = 0;
    m_connection = xcb_connect(nullptr, &number);
    if (xcb_connection_has_error(m_connection) != 0) {
        return false;
    }
    auto screens = xcb_setup_roots_iterator(xcb_get_setup(m_connection));
    for (; number > 0 && screens.rem > 1; --number) {
        xcb_screen_next(&screens);
    }
    m_root = screens.data->root;
    return true;
}

/// Asks for every change of the layout and of modifiers and group. They come on
/// the same connection as the keys, so each key meets the state of its moment.
bool X11KeySource::selectKeyboardEvents() {
    const int isThere = xkb_x11_setup_xkb_extension(
        m_connection, XKB_X11_MIN_MAJOR_XKB_VERSION, XKB_X11_MIN_MINOR_XKB_VERSION,
        XKB_X11_SETUP_XKB_EXTENSION_NO_FLAGS, nullptr, nullptr, &m_keyboardEvent, nullptr);
    m_keyboard = isThere != 0 ? xkb_x11_get_core_keyboard_device_id(m_connection) : -1;
    if (m_keyboard < 0) {
        return false;
    }
    constexpr std::uint16_t kEvents = XCB_XKB_EVENT_TYPE_NEW_KEYBOARD_NOTIFY |
                                      XCB_XKB_EVENT_TYPE_MAP_NOTIFY |
                                      XCB_XKB_EVENT_TYPE_STATE_NOTIFY;
    constexpr std::uint16_t kMapParts =
        XCB_XKB_MAP_PART_KEY_TYPES | XCB_XKB_MAP_PART_KEY_SYMS | XCB_XKB_MAP_PART_MODIFIER_MAP |
        XCB_XKB_MAP_PART_KEY_ACTIONS | XCB_XKB_MAP_PART_VIRTUAL_MODS |
        XCB_XKB_MAP_PART_VIRTUAL_MOD_MAP;
    xcb_xkb_select_events_details_t details{};
    details.affectNewKeyboard = XCB_XKB_NKN_DETAIL_KEYCODES;
    details.newKeyboardDetails = XCB_XKB_NKN_DETAIL_KEYCODES;
    constexpr std::uint16_t kStateParts =
        XCB_XKB_STATE_PART_MODIFIER_BASE | XCB_XKB_STATE_PART_MODIFIER_LATCH |
        XCB_XKB_STATE_PART_MODIFIER_LOCK | XCB_XKB_STATE_PART_GROUP_BASE |
        XCB_XKB_STATE_PART_GROUP_LATCH | XCB_XKB_STATE_PART_GROUP_LOCK;
    details.affectState = kStateParts;
    details.stateDetails = kStateParts;
    const auto cookie = xcb_xkb_select_events_aux_checked(
        m_connection, static_cast<xcb_xkb_device_spec_t>(m_keyboard), kEvents, 0, 0, kMapParts,
        kMapParts, &details);
    return Owned<xcb_generic_error_t>(xcb_request_check(m_connection, cookie)) == nullptr;
}

bool X11KeySource::selectKeyEvents() {
    const auto* extension = xcb_get_extension_data(m_connection, &xcb_input_id);
    if (extension == nullptr || extension->present == 0) {
        return false;
    }
    m_inputOpcode = extension->major_opcode;
    // From 2.1 on, raw events come even while another program grabs the keyboard.
    const Owned<xcb_input_xi_query_version_reply_t> version(xcb_input_xi_query_version_reply(
        m_connection, xcb_input_xi_query_version(m_connection, 2, 2), nullptr));
    if (!version || version->major_version < 2) {
        return false;
    }
    struct {
        xcb_input_event_mask_t head;
        std::uint32_t mask;
    } selection{{XCB_INPUT_DEVICE_ALL_MASTER, 1}, XCB_INPUT_XI_EVENT_MASK_RAW_KEY_PRESS};
    const auto cookie =
        xcb_input_xi_select_events_checked(m_connection, m_root, 1, &selection.head);
    return Owned<xcb_generic_error_t>(xcb_request_check(m_connection, cookie)) == nullptr;
}

bool X11KeySource::loadKeymap() {
    XkbHandle<xkb_keymap> keymap(xkb_x11_keymap_new_from_device(
        m_context.get(), m_connection, m_keyboard, XKB_KEYMAP_COMPILE_NO_FLAGS));
    if (!keymap) {
        return false;
    }
    XkbHandle<xkb_state> state(
        xkb_x11_state_new_from_device(keymap.get(), m_connection, m_keyboard));
    if (!state) {
        return false;
    }
    m_translator.setKeymap(std::move(keymap), std::move(state));
    return true;
}

bool X11KeySource::readEvents() {
    while (const Owned<xcb_generic_event_t> event{xcb_poll_for_event(m_connection)}) {
        const auto& generic = reinterpret_cast<const xcb_ge_generic_event_t&>(*event);
        const std::uint8_t type = event->response_type & 0x7F;
        if (type == XCB_GE_GENERIC && generic.extension == m_inputOpcode &&
            generic.event_type == XCB_INPUT_RAW_KEY_PRESS) {
            handleKeyPress(reinterpret_cast<const xcb_input_raw_key_press_event_t&>(*event));
        } else if (type == m_keyboardEvent) {
            handleKeyboardEvent(*event);
        }
    }
    return xcb_connection_has_error(m_connection) == 0;
}

void X11KeySource::handleKeyboardEvent(const xcb_generic_event_t& event) {
    // All events of the extension share one number; their kind follows it.
    if (event.pad0 != XCB_XKB_STATE_NOTIFY) {
        loadKeymap();
        return;
    }
    const auto& s = reinterpret_cast<const xcb_xkb_state_notify_event_t&>(event);
    m_translator.setMasks({.held = s.baseMods,
                           .latched = s.latchedMods,
                           .locked = s.lockedMods,
                           .heldGroup = static_cast<xkb_layout_index_t>(s.baseGroup),
                           .latchedGroup = static_cast<xkb_layout_index_t>(s.latchedGroup),
                           .lockedGroup = s.lockedGroup});
}

void X11KeySource::handleKeyPress(const xcb_input_raw_key_press_event_t& event) {
    if (const auto line = m_translator.keyLineOf(event.detail, event.time)) {
        m_handler(*line);
    }
}

} // namespace tavi
