#include "capture/DesktopSupport.h"

namespace tavi {

namespace {

using Session = DesktopSupport::Session;

/// From this version of the portal on, an answer of its user can be remembered.
constexpr std::uint32_t kRememberingPortal = 4;

std::string named(const std::string& kind, const std::string& desktop) {
    return desktop.empty() ? kind : kind + " (" + desktop + ")";
}

Finding sessionOf(const DesktopSupport& desktop) {
    if (desktop.session == Session::none) {
        return {"session", false, "No graphical session", "Nothing can be recorded",
                "Run it inside a graphical session, or set DISPLAY or WAYLAND_DISPLAY"};
    }
    if (desktop.session == Session::x11) {
        return {"session", true, named("X11", desktop.desktop), {}, {}};
    }
    const std::string wayland = named("Wayland", desktop.desktop);
    if (!desktop.portalVersion) {
        return {"session", false, wayland + " without a ScreenCast portal",
                "Nothing can be recorded",
                "Install xdg-desktop-portal with the back end of this desktop "
                "(xdg-desktop-portal-gnome, -kde, -wlr, ...) and log in again"};
    }
    return {
        "session",
        true,
        wayland + ", ScreenCast portal version " + std::to_string(*desktop.portalVersion) +
            (*desktop.portalVersion < kRememberingPortal ? ", which asks before every take" : ""),
        {},
        {}};
}

Finding sourcesOf(const DesktopSupport& desktop) {
    if (desktop.castsDisplays && desktop.castsWindows) {
        return {"sources", true, "displays and windows", {}, {}};
    }
    if (desktop.castsDisplays) {
        return {"sources", false, "displays only", "A single window can't be recorded",
                "Record the display, or use a desktop whose portal shows windows, such as GNOME "
                "or KDE"};
    }
    return {"sources", false, "windows only", "A whole display can't be recorded",
            "Record windows, or use a desktop whose portal shows displays"};
}

Finding pointerOf(const DesktopSupport& desktop) {
    const std::string fix =
        "Use a desktop whose portal tells of the pointer, such as GNOME or KDE, "
        "or an X11 session";
    switch (desktop.cursorMode) {
    case CursorMode::metadata:
        break;
    case CursorMode::hidden:
        return {"pointer", false, "The desktop doesn't tell where the pointer is",
                "The pointer can't be drawn, and automatic zoom finds nothing to zoom to", fix};
    case CursorMode::embedded:
        return {"pointer", false, "The desktop paints the pointer into the picture",
                "The editor can't move, restyle or hide it, and automatic zoom finds nothing to "
                "zoom to",
                fix};
    }
    return {"pointer", true, "drawn apart from the picture", {}, {}};
}

Finding keysOf(const DesktopSupport& desktop) {
    if (!desktop.hasHelper) {
        return {"keys", false, "The key helper TaviKeys is missing",
                desktop.seesClicks ? "Takes have no keys"
                                   : "Takes have no clicks, no scrolling and no keys",
                "Install the program again"};
    }
    if (desktop.isHelperListening) {
        return {
            "keys", true, desktop.seesClicks ? "seen" : "seen, clicks and scrolling too", {}, {}};
    }
    if (desktop.seesClicks) {
        return {"keys", false, "The X server doesn't tell of keys", "Takes have no keys",
                "Use an X server with XInput 2.2 and XKB"};
    }
    return {
        "keys", false, "There is no right to read the input devices, or no keyboard",
        "Takes have no clicks, no scrolling and no keys; automatic zoom finds little to zoom to",
        desktop.inputAccess.description() + ". " + kInputAccessRisk};
}

Finding trayOf(const DesktopSupport& desktop) {
    if (desktop.tray == DesktopSupport::Tray::item) {
        return {"tray", true, "shows the running take", {}, {}};
    }
    const bool isGnome = desktop.desktop.find("GNOME") != std::string::npos;
    const std::string fix = isGnome
                                ? "Install the extension AppIndicator (Debian, Ubuntu and Fedora: "
                                  "gnome-shell-extension-appindicator) and switch it on"
                                : "Add a system tray to a panel of this desktop";
    if (desktop.tray == DesktopSupport::Tray::notification) {
        return {"tray", false, "There is none; a notification with \"Stop\" stands in for it",
                "The running time isn't shown", fix};
    }
    return {"tray", false, "There is none, and nobody shows notifications",
            "A take is ended in its window or by `tavi stop`", fix};
}

Finding awakeOf(const DesktopSupport& desktop) {
    switch (desktop.awake) {
    case DesktopSupport::Awake::desktop:
        return {"sleep", true, "The desktop stays awake during a take", {}, {}};
    case DesktopSupport::Awake::system:
        return {"sleep", false, "The system doesn't fall asleep, but nobody holds the screen saver",
                "The screen may be blanked or locked during a long take",
                "Switch the screen saver off while you record"};
    case DesktopSupport::Awake::nobody:
        break;
    }
    return {"sleep", false, "Nobody keeps this session awake",
            "The screen may be blanked or locked, and the machine may sleep, during a long take",
            "Switch the screen saver and automatic sleep off while you record"};
}

} // namespace

std::vector<Finding> findings(const DesktopSupport& desktop) {
    std::vector<Finding> all{sessionOf(desktop)};
    if (desktop.session == Session::none) {
        return all;
    }
    if (all.front().works) {
        all.push_back(sourcesOf(desktop));
        all.push_back(pointerOf(desktop));
    }
    all.push_back(keysOf(desktop));
    all.push_back(trayOf(desktop));
    all.push_back(awakeOf(desktop));
    return all;
}

} // namespace tavi
