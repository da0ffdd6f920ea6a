#include "keys/SystemLayout.h"

#include <array>
#include <cctype>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <sstream>
#include <vector>

namespace tavi {

namespace {

struct NamedField {
    std::string_view name; ///< "Layout" of "XKBLAYOUT" and "XkbLayout".
    std::string KeyboardLayout::*field;
};

constexpr std::array kFields{
    NamedField{"model", &KeyboardLayout::model},
    NamedField{"layout", &KeyboardLayout::layout},
    NamedField{"variant", &KeyboardLayout::variant},
    NamedField{"options", &KeyboardLayout::options},
};

std::string lowerCase(std::string_view text) {
    std::string lower(text);
    for (char& c : lower) {
        c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    }
    return lower;
}

void assign(KeyboardLayout& layout, std::string_view name, std::string_view value) {
    const std::string lower = lowerCase(name);
    for (const auto& field : kFields) {
        if (lower == "xkb" + std::string(field.name)) {
            layout.*field.field = value;
        }
    }
}

std::optional<KeyboardLayout> ifNamed(KeyboardLayout layout) {
    return layout.layout.empty() ? std::nullopt : std::optional(std::move(layout));
}

/// The words of a line; quotes hold a word together, a "#" outside of them ends the line.
std::vector<std::string> words(std::string_view line) {
    std::vector<std::string> found;
    bool isInWord = false;
    char quote = '\0';
    for (const char c : line) {
        const bool isSpace = std::isspace(static_cast<unsigned char>(c)) != 0;
        if (quote == '\0' && (isSpace || (c == '#' && !isInWord))) {
            isInWord = false;
            if (c == '#') {
                break;
            }
            continue;
        }
        if (!isInWord) {
            found.emplace_back();
            isInWord = true;
        }
        if (c == quote) {
            quote = '\0';
        } else if (quote == '\0' && (c == '"' || c == '\'')) {
            quote = c;
        } else {
            found.back() += c;
        }
    }
    return found;
}

template<typename Read>
std::optional<KeyboardLayout> readLines(std::string_view text, const Read& read) {
    KeyboardLayout layout;
    std::istringstream lines{std::string(text)};
    for (std::string line; std::getline(lines, line);) {
        read(words(line), layout);
    }
    return ifNamed(std::move(layout));
}

std::string contents(const std::filesystem::path& file) {
    std::ifstream stream(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

const char* orNull(const std::string& text) {
    return text.empty() ? nullptr : text.c_str();
}

} // namespace

std::optional<KeyboardLayout> layoutFromAssignments(std::string_view text) {
    return readLines(text, [](const auto& line, KeyboardLayout& layout) {
        if (line.empty()) {
            return;
        }
        const std::string& word = line.front() == "export" && line.size() > 1 ? line[1] : line[0];
        if (const auto equals = word.find('='); equals != std::string::npos) {
            assign(layout, word.substr(0, equals), word.substr(equals + 1));
        }
    });
}

std::optional<KeyboardLayout> layoutFromServerConfiguration(std::string_view text) {
    return readLines(text, [](const auto& line, KeyboardLayout& layout) {
        if (line.size() >= 3 && lowerCase(line[0]) == "option") {
            assign(layout, line[1], line[2]);
        }
    });
}

KeyboardLayout systemLayout(const std::filesystem::path& root) {
    const auto etc = root / "etc";
    if (auto layout = layoutFromAssignments(contents(etc / "default/keyboard"))) {
        return *layout;
    }
    if (auto layout =
            layoutFromServerConfiguration(contents(etc / "X11/xorg.conf.d/00-keyboard.conf"))) {
        return *layout;
    }
    return layoutFromAssignments(contents(etc / "vconsole.conf")).value_or(KeyboardLayout{});
}

XkbHandle<xkb_keymap> systemKeymap(xkb_context& context) {
    const char* chosen = std::getenv("XKB_DEFAULT_LAYOUT");
    const bool isChosen = chosen != nullptr && *chosen != '\0';
    const KeyboardLayout layout = isChosen ? KeyboardLayout{} : systemLayout();
    const xkb_rule_names names{nullptr, orNull(layout.model), orNull(layout.layout),
                               orNull(layout.variant), orNull(layout.options)};
    XkbHandle<xkb_keymap> keymap(
        xkb_keymap_new_from_names(&context, &names, XKB_KEYMAP_COMPILE_NO_FLAGS));
    if (!keymap) {
        // A layout that doesn't exist: keys of the library's own are better than none.
        const xkb_rule_names plain{"evdev", "pc105", "us", nullptr, nullptr};
        keymap.reset(xkb_keymap_new_from_names(&context, &plain, XKB_KEYMAP_COMPILE_NO_FLAGS));
    }
    return keymap;
}

} // namespace tavi
