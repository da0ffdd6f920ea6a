#pragma once

#include "platform/x11/XConnection.h"
#include "platform/x11/XcursorFile.h"

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace tavi {

/// Which cursors the user chose.
struct XcursorChoice {
    std::string theme = "default";
    int size = 24; ///< Nominal, in pixels.
};

/// The choice by $XCURSOR_THEME and $XCURSOR_SIZE, else by the server's
/// resources, else what programs use without any: the theme "default" in a size
/// that goes with the screen's resolution.
XcursorChoice xcursorChoice(const XConnection& connection);

/// The same where there is no server to ask.
XcursorChoice xcursorChoice();

/// The folders that hold cursor themes: $XCURSOR_PATH, else the usual ones.
std::vector<std::filesystem::path> xcursorFolders();

/// The arrow of a theme or of those that it inherits from; absent when none has one.
std::optional<XcursorImage> themeArrow(const XcursorChoice& choice,
                                       const std::vector<std::filesystem::path>& folders);

} // namespace tavi
