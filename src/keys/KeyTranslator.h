#pragma once

#include "keys/XkbHandles.h"

#include <cstdint>
#include <optional>
#include <string>

namespace tavi {

/// Turns key codes into the texts and modifier bits of key lines, by a layout,
/// the modifiers and group in force, and the user's compose table.
///
/// The modifiers come either from keyWentDown() and keyWentUp() or from setMasks().
/// Threads: one.
class KeyTranslator {
public:
    /// Compose sequences are those of the user's locale; without any, dead keys type nothing.
    explicit KeyTranslator(xkb_context& context);

    /// Sets the layout and what is held and locked in it; takes both.
    void setKeymap(XkbHandle<xkb_keymap> keymap, XkbHandle<xkb_state> state);

    /// What a server says is held, latched and locked.
    struct Masks {
        xkb_mod_mask_t held = 0;
        xkb_mod_mask_t latched = 0;
        xkb_mod_mask_t locked = 0;
        xkb_layout_index_t heldGroup = 0;
        xkb_layout_index_t latchedGroup = 0;
        xkb_layout_index_t lockedGroup = 0;
    };
    void setMasks(const Masks& masks);

    /// A key changed; for its text, ask keyLineOf() before.
    void keyWentDown(xkb_keycode_t key);
    void keyWentUp(xkb_keycode_t key);

    /// Switches locks on that were on before anyone listened.
    void lock(bool caps, bool num);

    /// The line of a key that goes down now; absent for modifiers, locks, the first
    /// keys of a composed character, and other keys without a text. `time` is
    /// in milliseconds.
    std::optional<std::string> keyLineOf(xkb_keycode_t key, std::uint32_t time);

private:
    std::string textOf(xkb_keycode_t key, std::uint32_t modifiers);
    xkb_keysym_t symbolOf(xkb_keycode_t key, std::uint32_t modifiers) const;
    std::uint32_t modifiers() const;

    XkbHandle<xkb_compose_table> m_composeTable;
    XkbHandle<xkb_compose_state> m_composeState; ///< Null without a compose table.
    XkbHandle<xkb_keymap> m_keymap;
    XkbHandle<xkb_state> m_state;
};

} // namespace tavi
