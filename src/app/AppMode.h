#pragma once

#include <filesystem>
#include <utility>

namespace tavi {

/// Which screen shows.
struct AppMode {
    enum class Screen { splash, permission, home, recording, editing };

    Screen screen = Screen::splash;
    std::filesystem::path url; ///< The take's folder while editing; empty else.

    static AppMode splash() { return {Screen::splash, {}}; }
    static AppMode permission() { return {Screen::permission, {}}; }
    static AppMode home() { return {Screen::home, {}}; }
    static AppMode recording() { return {Screen::recording, {}}; }
    static AppMode editing(std::filesystem::path url) { return {Screen::editing, std::move(url)}; }

    bool operator==(const AppMode&) const = default;
};

} // namespace tavi
