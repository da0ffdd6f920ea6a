#include "cli/OutputFile.h"

#include "base/SystemReason.h"
#include "project/RecordingFolder.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <unistd.h>

namespace tavi::cli {

namespace fs = std::filesystem;

namespace {

/// The file of the take that `file` is, by whatever path; null for none.
const char* fileOfTake(const fs::path& file, const fs::path& take) {
    constexpr std::array kFiles{take::kVideo, take::kCamera, take::kMetadata, take::kProject};
    const auto found = std::find_if(kFiles.begin(), kFiles.end(), [&](const char* name) {
        std::error_code error;
        return fs::equivalent(file, take / name, error);
    });
    return found == kFiles.end() ? nullptr : *found;
}

} // namespace

Result<void, std::string> checkOutputFile(const fs::path& file, const fs::path& take) {
    std::error_code error;
    const std::string name = file.string();
    if (file.empty() || !file.has_filename()) {
        return fail("The output needs a file name: " + name);
    }
    const fs::file_status status = fs::status(file, error);
    if (fs::is_directory(status)) {
        return fail("The output can't be written, a folder has this name: " + name);
    }
    if (fs::exists(status) && !fs::is_regular_file(status)) {
        return fail("The output can't be written, this is no plain file: " + name);
    }
    if (const char* own = fileOfTake(file, take)) {
        return fail(std::string("The output would replace the take's own ") + own + ": " + name);
    }
    const fs::path folder = file.has_parent_path() ? file.parent_path() : fs::path(".");
    if (!fs::is_directory(folder, error)) {
        return fail("The output can't be written, there is no such folder: " + folder.string());
    }
    if (access(folder.c_str(), W_OK | X_OK) != 0) {
        return fail("The output can't be written: " + name + " (" + systemReason(errno) + ")");
    }
    return {};
}

} // namespace tavi::cli
