#include "platform/x11/XcursorTheme.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <fstream>
#include <iterator>
#include <set>
#include <string_view>

namespace tavi {

namespace {

/// What programs of different ages call the arrow.
constexpr std::array kArrowNames{"left_ptr", "default", "arrow"};
constexpr const char* kDefaultFolders =
    "~/.local/share/icons:~/.icons:/usr/share/icons:/usr/share/pixmaps";
constexpr std::uint32_t kLongestResources = 65536; ///< In units of 4 bytes.

std::string environment(const char* name) {
    const char* value = std::getenv(name);
    return value != nullptr ? value : "";
}

int numberIn(std::string_view text) {
    int number = 0;
    std::from_chars(text.data(), text.data() + text.size(), number);
    return number;
}

std::string_view trimmed(std::string_view text) {
    constexpr std::string_view kBlanks = " \t\r";
    text.remove_prefix(std::min(text.find_first_not_of(kBlanks), text.size()));
    const std::size_t last = text.find_last_not_of(kBlanks);
    return text.substr(0, last == std::string_view::npos ? 0 : last + 1);
}

/// The pieces of `text` between any of `separators`, trimmed, empty ones left out.
std::vector<std::string> pieces(std::string_view text, std::string_view separators) {
    std::vector<std::string> found;
    while (!text.empty()) {
        const std::size_t end = std::min(text.find_first_of(separators), text.size());
        if (const auto piece = trimmed(text.substr(0, end)); !piece.empty()) {
            found.emplace_back(piece);
        }
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    return found;
}

std::string serverResources(const XConnection& x) {
    const XOwned<xcb_get_property_reply_t> reply(
        xcb_get_property_reply(x.get(),
                               xcb_get_property(x.get(), 0, x.root(), XCB_ATOM_RESOURCE_MANAGER,
                                                XCB_ATOM_STRING, 0, kLongestResources),
                               nullptr));
    if (!reply) {
        return {};
    }
    return {static_cast<const char*>(xcb_get_property_value(reply.get())),
            static_cast<std::size_t>(xcb_get_property_value_length(reply.get()))};
}

/// The value of a line "name: value"; empty when there is none.
std::string resource(const std::string& resources, const std::string& name) {
    for (const auto& line : pieces(resources, "\n")) {
        if (line.starts_with(name + ":")) {
            return std::string(trimmed(std::string_view(line).substr(name.size() + 1)));
        }
    }
    return {};
}

/// As every toolkit does: 16 points at the text resolution, else a 48th of the screen.
int usualSize(const XConnection& x, const std::string& resources) {
    const int dotsPerInch = numberIn(resource(resources, "Xft.dpi"));
    if (dotsPerInch > 0) {
        return dotsPerInch * 16 / 72;
    }
    return std::min(x.screen().width_in_pixels, x.screen().height_in_pixels) / 48;
}

std::vector<std::uint8_t> fileBytes(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

std::vector<std::string> parentsOf(const std::filesystem::path& theme) {
    std::ifstream file(theme / "index.theme");
    constexpr std::string_view kKey = "Inherits";
    for (std::string line; std::getline(file, line);) {
        const std::size_t equals = line.find('=');
        if (equals != std::string::npos && trimmed(line.substr(0, equals)) == kKey) {
            return pieces(std::string_view(line).substr(equals + 1), ",;");
        }
    }
    return {};
}

std::optional<XcursorImage> arrowIn(const std::filesystem::path& theme, int size) {
    for (const char* name : kArrowNames) {
        if (auto cursor = readXcursor(fileBytes(theme / "cursors" / name), size)) {
            return cursor;
        }
    }
    return std::nullopt;
}

/// What the environment says, else the resources; a size of 0 where neither does.
XcursorChoice choiceFrom(const std::string& resources) {
    XcursorChoice choice;
    for (const auto& theme : {environment("XCURSOR_THEME"), resource(resources, "Xcursor.theme")}) {
        if (!theme.empty()) {
            choice.theme = theme;
            break;
        }
    }
    choice.size = 0;
    for (const auto& size : {environment("XCURSOR_SIZE"), resource(resources, "Xcursor.size")}) {
        if (numberIn(size) > 0) {
            choice.size = numberIn(size);
            break;
        }
    }
    return choice;
}

} // namespace

XcursorChoice xcursorChoice() {
    XcursorChoice choice = choiceFrom({});
    if (choice.size == 0) {
        choice.size = XcursorChoice{}.size;
    }
    return choice;
}

XcursorChoice xcursorChoice(const XConnection& connection) {
    const std::string resources = serverResources(connection);
    XcursorChoice choice = choiceFrom(resources);
    if (choice.size == 0) {
        choice.size = usualSize(connection, resources);
    }
    return choice;
}

std::vector<std::filesystem::path> xcursorFolders() {
    const std::string chosen = environment("XCURSOR_PATH");
    std::vector<std::filesystem::path> folders;
    for (const auto& folder : pieces(chosen.empty() ? kDefaultFolders : chosen, ":")) {
        const bool isBelowHome = folder.starts_with("~/");
        folders.push_back(isBelowHome ? environment("HOME") + folder.substr(1) : folder);
    }
    return folders;
}

std::optional<XcursorImage> themeArrow(const XcursorChoice& choice,
                                       const std::vector<std::filesystem::path>& folders) {
    std::vector<std::string> themes{choice.theme};
    std::set<std::string> seen; // themes may inherit from each other in a ring
    for (std::size_t i = 0; i < themes.size(); ++i) {
        if (!seen.insert(themes[i]).second) {
            continue;
        }
        const std::string theme = themes[i];
        for (const auto& folder : folders) {
            if (auto arrow = arrowIn(folder / theme, choice.size)) {
                return arrow;
            }
            const auto parents = parentsOf(folder / theme);
            themes.insert(themes.end(), parents.begin(), parents.end());
        }
    }
    return std::nullopt;
}

} // namespace tavi
