#pragma once

#include <filesystem>
#include <string>

namespace tavi {

/// What the desktop does for a program. Thread: main. Nothing blocks and nothing is reported:
/// a desktop that can't do it leaves the user where they were.
class Workspace {
public:
    virtual ~Workspace() = default;

    /// Opens a web page, a document or a settings page. The links to the system's settings that
    /// this program uses are mapped to those of the running desktop.
    virtual void openUrl(const std::string& url) = 0;

    /// Shows a file or folder in the file manager, selected in the folder that holds it.
    virtual void reveal(const std::filesystem::path& path) = 0;
};

} // namespace tavi
