#include "capture/OfferedWindows.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <string_view>

namespace tavi {

namespace {

/// A side of this length or less belongs to a palette or a status window. Points.
constexpr double kLargestAuxiliarySide = 100;
/// From this height on a window without a title is no mere helper of another one. Points.
constexpr double kUntitledHeight = 200;

/// Programs whose windows are the desktop: its panels, wallpaper, notifications
/// and task switchers, where their windows don't say so themselves.
constexpr std::array<std::string_view, 14> kDesktopPrograms{
    "gnome-shell", "org.gnome.Shell", "plasmashell",   "org.kde.plasmashell",
    "kwin_x11",    "xfce4-panel",     "Xfce4-panel",   "xfdesktop",
    "Xfdesktop",   "xfce4-notifyd",   "Xfce4-notifyd", "mate-panel",
    "lxqt-panel",  "cinnamon"};

bool isOffered(const Window& window) {
    const bool isLarge =
        window.frame.width > kLargestAuxiliarySide && window.frame.height > kLargestAuxiliarySide;
    const bool isOfDesktop = std::find(kDesktopPrograms.begin(), kDesktopPrograms.end(),
                                       window.applicationId) != kDesktopPrograms.end();
    const bool isTold = !window.title.empty() || window.frame.height >= kUntitledHeight;
    return window.isOnScreen && isLarge && !isOfDesktop && !window.applicationName.empty() &&
           isTold;
}

} // namespace

std::vector<Window> offeredWindows(std::span<const Window> windows, const std::string& ownId) {
    std::vector<Window> offered;
    std::copy_if(windows.begin(), windows.end(), std::back_inserter(offered),
                 [&](const Window& window) {
                     const bool isOwn = !ownId.empty() && window.applicationId == ownId;
                     return !isOwn && isOffered(window);
                 });
    return offered;
}

std::vector<std::uint32_t> windowsOfProgram(std::span<const Window> windows,
                                            const std::string& applicationId) {
    std::vector<std::uint32_t> ids;
    for (const Window& window : windows) {
        if (window.isOnScreen && !applicationId.empty() && window.applicationId == applicationId) {
            ids.push_back(window.id);
        }
    }
    return ids;
}

} // namespace tavi
