#include "keys/X11KeySource.h"

#include "keys/KeyText.h"

#include <xkbcommon/xkbcommon-keysyms.h>
#include <xkbcommon/xkbcommon-x11.h>

#include <array>
#include <cstdlib>

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

struct NamedModifier {
    const char* name;
    std::uint32_t bit;
};

constexpr std::array kModifiers{
    NamedModifier{XKB_MOD_NAME_CTRL, modifier::kControl},
    NamedModifier{XKB_MOD_NAME_ALT, modifier::kOption},
    NamedModifier{XKB_MOD_NAME_SHIFT, modifier::kShift},
    NamedModifier{XKB_MOD_NAME_LOGO, modifier::kCommand},
};

/// The user's locale, as the C library decides it; compose tables hang from it.
const char* localeName() {
    for (const char* variable : {"LC_ALL", "LC_CTYPE", "LANG"}) {
        const char* value = std::getenv(variable);
        if (value != nullptr && *value != '\0') {
            return value;
        }
    }
    return "C";
}

} // namespace

std::unique_ptr<X11KeySource> X11KeySource::open(Handler handler) {
    std::unique_ptr<X11KeySource> source(new X11KeySource(std::move(handler)));
    const bool isListening = source->connect() && source->selectKeyboardEvents() &&
                             source->loadKeymap() && source->selectKeyEvents();
    if (!isListening) {
        return nullptr;
    }
    source->loadComposeTable();
    return source;
}

X11KeySource::~X11KeySource() {
    xkb_compose_state_unref(m_composeState);
    xkb_compose_table_unref(m_composeTable);
    xkb_state_unref(m_state);
    xkb_keymap_unref(m_keymap);
    xkb_context_unref(m_context);
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
    m_context = xkb_context_new(XKB_CONTEXT_NO_FLAGS);
    return m_context != nullptr;
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
    xkb_keymap* keymap = xkb_x11_keymap_new_from_device(m_context, m_connection, m_keyboard,
                                                        XKB_KEYMAP_COMPILE_NO_FLAGS);
    if (keymap == nullptr) {
        return false;
    }
    xkb_state* state = xkb_x11_state_new_from_device(keymap, m_connection, m_keyboard);
    if (state == nullptr) {
        xkb_keymap_unref(keymap);
        return false;
    }
    xkb_state_unref(m_state);
    xkb_keymap_unref(m_keymap);
    m_keymap = keymap;
    m_state = state;
    return true;
}

void X11KeySource::loadComposeTable() {
    m_composeTable =
        xkb_compose_table_new_from_locale(m_context, localeName(), XKB_COMPOSE_COMPILE_NO_FLAGS);
    if (m_composeTable != nullptr) {
        m_composeState = xkb_compose_state_new(m_composeTable, XKB_COMPOSE_STATE_NO_FLAGS);
    }
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
    xkb_state_update_mask(m_state, s.baseMods, s.latchedMods, s.lockedMods,
                          static_cast<xkb_layout_index_t>(s.baseGroup),
                          static_cast<xkb_layout_index_t>(s.latchedGroup),
                          static_cast<xkb_layout_index_t>(s.lockedGroup));
}

void X11KeySource::handleKeyPress(const xcb_input_raw_key_press_event_t& event) {
    const std::string text = textOf(event.detail);
    if (!text.empty()) {
        m_handler(keyLine(event.time, text, modifiers()));
    }
}

/// The press's text. A key that only starts or continues a composed character
/// has none; the key that completes it has all of it.
std::string X11KeySource::textOf(xkb_keycode_t key) {
    const xkb_keysym_t symbol = xkb_state_key_get_one_sym(m_state, key);
    if (m_composeState == nullptr ||
        xkb_compose_state_feed(m_composeState, symbol) == XKB_COMPOSE_FEED_IGNORED) {
        return keyText(symbol);
    }
    switch (xkb_compose_state_get_status(m_composeState)) {
    case XKB_COMPOSE_COMPOSING:
        return {};
    case XKB_COMPOSE_COMPOSED: {
        std::array<char, 64> text{};
        xkb_compose_state_get_utf8(m_composeState, text.data(), text.size());
        xkb_compose_state_reset(m_composeState);
        return text.data();
    }
    case XKB_COMPOSE_CANCELLED:
        xkb_compose_state_reset(m_composeState);
        return keyText(symbol);
    case XKB_COMPOSE_NOTHING:
        break;
    }
    return keyText(symbol);
}

std::uint32_t X11KeySource::modifiers() const {
    std::uint32_t bits = 0;
    for (const auto& m : kModifiers) {
        if (xkb_state_mod_name_is_active(m_state, m.name, XKB_STATE_MODS_EFFECTIVE) > 0) {
            bits |= m.bit;
        }
    }
    return bits;
}

} // namespace tavi
