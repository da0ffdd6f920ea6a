#pragma once

#include "app/Workspace.h"

#include <filesystem>
#include <optional>
#include <string>

namespace tavi {

/// Where a link to the system's settings leads on a desktop: a settings program with its
/// arguments, or, where the desktop has no such page, a page of the program's own help.
struct SettingsTarget {
    std::string program; ///< Empty: there is none.
    std::string argument;
    std::string helpPage; ///< A file's name in the help folder.

    bool operator==(const SettingsTarget&) const = default;
};

/// The target of a link; none for what is no link to the settings. `desktop` is
/// $XDG_CURRENT_DESKTOP; `isWayland` tells whether programs need a permission for the screen.
std::optional<SettingsTarget> settingsTarget(const std::string& url, const std::string& desktop,
                                             bool isWayland);

/// The running desktop: its browser, its settings, its file manager (org.freedesktop.FileManager1
/// on the session bus, else whatever opens folders).
class DesktopWorkspace final : public Workspace {
public:
    /// `helpFolder` holds the help pages.
    explicit DesktopWorkspace(std::filesystem::path helpFolder);

    void openUrl(const std::string& url) override;
    void reveal(const std::filesystem::path& path) override;

private:
    void openSettings(const SettingsTarget& target) const;

    std::filesystem::path m_helpFolder;
};

} // namespace tavi
