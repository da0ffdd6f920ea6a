#pragma once

#include "keys/XkbHandles.h"

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace tavi {

/// A keyboard as the keyboard library's rules name it; what is empty is left to the library.
struct KeyboardLayout {
    std::string model;
    std::string layout; ///< "de", or several: "us,gr"
    std::string variant;
    std::string options;

    bool operator==(const KeyboardLayout&) const = default;
};

/// Reads assignments of a shell (/etc/default/keyboard, /etc/vconsole.conf). Absent
/// where no layout is assigned.
std::optional<KeyboardLayout> layoutFromAssignments(std::string_view text);

/// Reads the options of an X server's input class (xorg.conf.d/00-keyboard.conf). Absent
/// where no layout is named.
std::optional<KeyboardLayout> layoutFromServerConfiguration(std::string_view text);

/// The system's layout where no X server tells one: from what the system's tools write below
/// `root` (Debian's, then localectl's); empty where nothing is written.
KeyboardLayout systemLayout(const std::filesystem::path& root = "/");

/// The keymap of XKB_DEFAULT_LAYOUT and its sisters where that is set, else of
/// the system's layout, else the library's own. Null when not even that is there.
XkbHandle<xkb_keymap> systemKeymap(xkb_context& context);

} // namespace tavi
