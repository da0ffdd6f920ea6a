#pragma once

#include "keys/KeySource.h"
#include "keys/KeyTranslator.h"

#include <xcb/xcb.h>
#include <xcb/xinput.h>

#include <cstdint>
#include <memory>

namespace tavi {

/// Key presses from an X server: raw events, read by the layout, modifiers and group that
/// the server tells of on the same connection.
class X11KeySource final : public KeySource {
public:
    /// Connects to $DISPLAY and asks for the events; null when there is no
    /// server or it lacks XInput 2 or XKB.
    static std::unique_ptr<X11KeySource> open(Handler handler);
    ~X11KeySource() override;

    X11KeySource(const X11KeySource&) = delete;
    X11KeySource& operator=(const X11KeySource&) = delete;

    int descriptor() const override { return xcb_get_file_descriptor(m_connection); }
    bool readEvents() override;
    bool isListening() const override { return xcb_connection_has_error(m_connection) == 0; }

private:
    X11KeySource(Handler handler, XkbHandle<xkb_context> context);

    bool connect();
    bool selectKeyEvents();
    bool selectKeyboardEvents();
    bool loadKeymap();
    void handleKeyboardEvent(const xcb_generic_event_t& event);
    void handleKeyPress(const xcb_input_raw_key_press_event_t& event);

    Handler m_handler;
    XkbHandle<xkb_context> m_context;
    KeyTranslator m_translator;
    xcb_connection_t* m_connection = nullptr;
    xcb_window_t m_root = 0;
    std::uint8_t m_inputOpcode = 0;
    std::uint8_t m_keyboardEvent = 0;
    std::int32_t m_keyboard = -1; ///< The core keyboard's device number.
};

} // namespace tavi
