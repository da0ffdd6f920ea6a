#pragma once

#include "keys/KeyLine.h"

#include <xcb/xcb.h>
#include <xcb/xinput.h>
#include <xkbcommon/xkbcommon-compose.h>
#include <xkbcommon/xkbcommon.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <string>

namespace tavi {

/// Key presses of the whole desktop from an X server: raw events, turned into
/// text by the user's layout, group and compose table.
///
/// A held key counts once: raw events tell of real presses only.
/// Threads: one.
class X11KeySource {
public:
    using Handler = std::function<void(const std::string& line)>;

    /// Connects to $DISPLAY and asks for the events; null when there is no
    /// server or it lacks XInput 2 or XKB. `handler` gets whole key lines.
    static std::unique_ptr<X11KeySource> open(Handler handler);
    ~X11KeySource();

    X11KeySource(const X11KeySource&) = delete;
    X11KeySource& operator=(const X11KeySource&) = delete;

    /// Readable when the server has news.
    int descriptor() const { return xcb_get_file_descriptor(m_connection); }

    /// Handles what has come; false when the server is gone.
    bool readEvents();

private:
    explicit X11KeySource(Handler handler) : m_handler(std::move(handler)) {}

    bool connect();
    bool selectKeyEvents();
    bool selectKeyboardEvents();
    bool loadKeymap();
    void loadComposeTable();
    void handleKeyboardEvent(const xcb_generic_event_t& event);
    void handleKeyPress(const xcb_input_raw_key_press_event_t& event);
    std::string textOf(xkb_keycode_t key);
    std::uint32_t modifiers() const;

    Handler m_handler;
    xcb_connection_t* m_connection = nullptr;
    xcb_window_t m_root = 0;
    std::uint8_t m_inputOpcode = 0;
    std::uint8_t m_keyboardEvent = 0;
    std::int32_t m_keyboard = -1; ///< The core keyboard's device number.
    xkb_context* m_context = nullptr;
    xkb_keymap* m_keymap = nullptr;
    xkb_state* m_state = nullptr;
    xkb_compose_table* m_composeTable = nullptr;
    xkb_compose_state* m_composeState = nullptr; ///< Null without a compose table.
};

} // namespace tavi
