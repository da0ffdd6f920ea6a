#pragma once

#include <filesystem>
#include <functional>
#include <optional>
#include <string>

namespace tavi {

/// Asks the user where a new file is to go. Thread: main.
class SavePanel {
public:
    /// What the user chose; absent for a panel that was left any other way.
    using Answer = std::function<void(std::optional<std::filesystem::path>)>;

    virtual ~SavePanel() = default;

    /// Shows a modal panel in which folders can be made too. `proposedName` ends
    /// in the extension that the file is to have. Calls `answer` once, at once or later.
    virtual void chooseFile(const std::string& proposedName, Answer answer) = 0;
};

/// Shows a file to the user in the desktop's file manager. Thread: main.
class FileViewer {
public:
    virtual ~FileViewer() = default;

    /// Opens the file's folder with the file selected.
    virtual void select(const std::filesystem::path& file) = 0;
};

} // namespace tavi
