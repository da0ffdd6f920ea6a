#pragma once

#include "capture/CursorMode.h"
#include "capture/InputAccess.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace tavi {

/// One thing that the program needs of the machine. All texts are for people.
struct Finding {
    std::string name;
    bool works = false;
    std::string detail; ///< What was found.
    std::string cost;   ///< What a take or a film lacks where it doesn't work; else empty.
    std::string fix;    ///< What to do where it doesn't work; else empty.

    bool operator==(const Finding&) const = default;
};

/// What was found out about the running desktop.
struct DesktopSupport {
    enum class Session { none, x11, wayland };
    enum class Tray { none, notification, item };
    /// Who keeps the session awake: the system keeps it from sleep only.
    enum class Awake { nobody, system, desktop };

    Session session = Session::none;
    std::string desktop;                        ///< As it calls itself ("GNOME"); may be empty.
    std::optional<std::uint32_t> portalVersion; ///< Of the ScreenCast portal; absent without one.
    bool castsDisplays = true;
    bool castsWindows = true;
    CursorMode cursorMode = CursorMode::metadata;
    bool seesClicks = true;        ///< Without the key helper.
    bool hasHelper = true;         ///< The key helper is installed.
    bool isHelperListening = true; ///< It may see keys.
    InputAccessAdvice inputAccess;
    Tray tray = Tray::item;
    Awake awake = Awake::desktop;
};

/// What works on a desktop, and what each gap costs: session, sources, pointer, keys, tray and
/// sleep. Without a session there is nothing else to tell.
std::vector<Finding> findings(const DesktopSupport& desktop);

} // namespace tavi
