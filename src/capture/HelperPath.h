#pragma once

#include <filesystem>
#include <optional>
#include <string>

namespace tavi {

/// The key helper of an application: beside its executable (a build tree) or in
/// its package, `../lib/tavlin` from there. Absent when no file is at either place.
std::optional<std::string> helperExecutablePath(const std::filesystem::path& executableFolder);

/// The folder of the running program's executable.
std::filesystem::path runningExecutableFolder();

} // namespace tavi
