#include "keys/KeyText.h"

#include <xkbcommon/xkbcommon-keysyms.h>

#include <algorithm>
#include <array>
#include <string_view>

namespace tavi {

namespace {

struct NamedKey {
    xkb_keysym_t symbol;
    std::string_view name;
};

constexpr std::array kNamedKeys{
    NamedKey{XKB_KEY_Return, "Return"},
    NamedKey{XKB_KEY_KP_Enter, "Return"},
    NamedKey{XKB_KEY_Tab, "Tab"},
    NamedKey{XKB_KEY_KP_Tab, "Tab"},
    NamedKey{XKB_KEY_ISO_Left_Tab, "Tab"}, // with Shift
    NamedKey{XKB_KEY_space, "Space"},
    NamedKey{XKB_KEY_KP_Space, "Space"},
    NamedKey{XKB_KEY_BackSpace, "Delete"},
    NamedKey{XKB_KEY_Delete, "ForwardDelete"},
    NamedKey{XKB_KEY_KP_Delete, "ForwardDelete"},
    NamedKey{XKB_KEY_Escape, "Escape"},
    NamedKey{XKB_KEY_Left, "←"},
    NamedKey{XKB_KEY_KP_Left, "←"},
    NamedKey{XKB_KEY_Right, "→"},
    NamedKey{XKB_KEY_KP_Right, "→"},
    NamedKey{XKB_KEY_Up, "↑"},
    NamedKey{XKB_KEY_KP_Up, "↑"},
    NamedKey{XKB_KEY_Down, "↓"},
    NamedKey{XKB_KEY_KP_Down, "↓"},
    NamedKey{XKB_KEY_Home, "Home"},
    NamedKey{XKB_KEY_KP_Home, "Home"},
    NamedKey{XKB_KEY_End, "End"},
    NamedKey{XKB_KEY_KP_End, "End"},
    NamedKey{XKB_KEY_Page_Up, "PgUp"},
    NamedKey{XKB_KEY_KP_Page_Up, "PgUp"},
    NamedKey{XKB_KEY_Page_Down, "PgDn"},
    NamedKey{XKB_KEY_KP_Page_Down, "PgDn"},
    NamedKey{XKB_KEY_Insert, "Ins"},
    NamedKey{XKB_KEY_KP_Insert, "Ins"},
    NamedKey{XKB_KEY_Print, "Print"},
    NamedKey{XKB_KEY_Menu, "Menu"},
};

} // namespace

std::string keyText(xkb_keysym_t symbol) {
    const auto* named = std::find_if(kNamedKeys.begin(), kNamedKeys.end(),
                                     [symbol](const NamedKey& k) { return k.symbol == symbol; });
    if (named != kNamedKeys.end()) {
        return std::string(named->name);
    }
    if (symbol >= XKB_KEY_F1 && symbol <= XKB_KEY_F35) {
        return "F" + std::to_string(symbol - XKB_KEY_F1 + 1);
    }
    std::array<char, 8> text{};
    if (xkb_keysym_to_utf8(symbol, text.data(), text.size()) <= 0) {
        return {};
    }
    const auto first = static_cast<unsigned char>(text[0]);
    const bool isControl = first < 0x20 || first == 0x7F;
    return isControl ? std::string() : std::string(text.data());
}

} // namespace tavi
