#include "keys/KeyTranslator.h"

#include "keys/KeyLine.h"
#include "keys/KeyText.h"

#include <array>
#include <cstdlib>
#include <utility>

namespace tavi {

namespace {

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

/// The last letter of the Latin scripts in Unicode's order (Latin Extended-B).
constexpr std::uint32_t kLastLatin = 0x24F;

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

bool isPrintableAscii(xkb_keysym_t symbol) {
    return symbol > 0x20 && symbol < 0x7F;
}

/// What the key types in the first of the other layouts that has a character of ASCII there.
std::optional<xkb_keysym_t> latinSymbol(xkb_keymap& keymap, xkb_state& state, xkb_keycode_t key) {
    const xkb_layout_index_t layouts = xkb_keymap_num_layouts_for_key(&keymap, key);
    for (xkb_layout_index_t layout = 0; layout < layouts; ++layout) {
        const xkb_level_index_t level = xkb_state_key_get_level(&state, key, layout);
        const xkb_keysym_t* symbols = nullptr;
        const int count = xkb_keymap_key_get_syms_by_level(&keymap, key, layout, level, &symbols);
        if (count == 1 && isPrintableAscii(*symbols)) {
            return *symbols;
        }
    }
    return std::nullopt;
}

} // namespace

KeyTranslator::KeyTranslator(xkb_context& context)
    : m_composeTable(
          xkb_compose_table_new_from_locale(&context, localeName(), XKB_COMPOSE_COMPILE_NO_FLAGS)) {
    if (m_composeTable) {
        m_composeState.reset(
            xkb_compose_state_new(m_composeTable.get(), XKB_COMPOSE_STATE_NO_FLAGS));
    }
}

void KeyTranslator::setKeymap(XkbHandle<xkb_keymap> keymap, XkbHandle<xkb_state> state) {
    m_state = std::move(state);
    m_keymap = std::move(keymap);
}

void KeyTranslator::setMasks(const Masks& masks) {
    xkb_state_update_mask(m_state.get(), masks.held, masks.latched, masks.locked, masks.heldGroup,
                          masks.latchedGroup, masks.lockedGroup);
}

void KeyTranslator::keyWentDown(xkb_keycode_t key) {
    xkb_state_update_key(m_state.get(), key, XKB_KEY_DOWN);
}

void KeyTranslator::keyWentUp(xkb_keycode_t key) {
    xkb_state_update_key(m_state.get(), key, XKB_KEY_UP);
}

void KeyTranslator::lock(bool caps, bool num) {
    xkb_mod_mask_t locked = xkb_state_serialize_mods(m_state.get(), XKB_STATE_MODS_LOCKED);
    for (const auto& [isOn, name] :
         {std::pair(caps, XKB_MOD_NAME_CAPS), std::pair(num, XKB_MOD_NAME_NUM)}) {
        const xkb_mod_index_t index = xkb_keymap_mod_get_index(m_keymap.get(), name);
        if (isOn && index != XKB_MOD_INVALID) {
            locked |= xkb_mod_mask_t{1} << index;
        }
    }
    setMasks({.locked = locked});
}

std::optional<std::string> KeyTranslator::keyLineOf(xkb_keycode_t key, std::uint32_t time) {
    const std::uint32_t bits = modifiers();
    const std::string text = textOf(key, bits);
    return text.empty() ? std::nullopt : std::optional(keyLine(time, text, bits));
}

/// The press's text. A key that only starts or continues a composed character
/// has none; the key that completes it has all of it.
std::string KeyTranslator::textOf(xkb_keycode_t key, std::uint32_t modifiers) {
    const xkb_keysym_t symbol = symbolOf(key, modifiers);
    if (!m_composeState ||
        xkb_compose_state_feed(m_composeState.get(), symbol) == XKB_COMPOSE_FEED_IGNORED) {
        return keyText(symbol);
    }
    switch (xkb_compose_state_get_status(m_composeState.get())) {
    case XKB_COMPOSE_COMPOSING:
        return {};
    case XKB_COMPOSE_COMPOSED: {
        std::array<char, 64> text{};
        xkb_compose_state_get_utf8(m_composeState.get(), text.data(), text.size());
        xkb_compose_state_reset(m_composeState.get());
        return text.data();
    }
    case XKB_COMPOSE_CANCELLED:
        xkb_compose_state_reset(m_composeState.get());
        return keyText(symbol);
    case XKB_COMPOSE_NOTHING:
        break;
    }
    return keyText(symbol);
}

/// A shortcut is known by its Latin letter on keyboards of other scripts too: Control with
/// the key that types psi is Control+C, for programs as for people.
xkb_keysym_t KeyTranslator::symbolOf(xkb_keycode_t key, std::uint32_t modifiers) const {
    const xkb_keysym_t symbol = xkb_state_key_get_one_sym(m_state.get(), key);
    const bool isShortcut = (modifiers & (modifier::kControl | modifier::kCommand)) != 0;
    if (!isShortcut || xkb_keysym_to_utf32(symbol) <= kLastLatin) {
        return symbol;
    }
    return latinSymbol(*m_keymap, *m_state, key).value_or(symbol);
}

std::uint32_t KeyTranslator::modifiers() const {
    std::uint32_t bits = 0;
    for (const auto& m : kModifiers) {
        if (xkb_state_mod_name_is_active(m_state.get(), m.name, XKB_STATE_MODS_EFFECTIVE) > 0) {
            bits |= m.bit;
        }
    }
    return bits;
}

} // namespace tavi
