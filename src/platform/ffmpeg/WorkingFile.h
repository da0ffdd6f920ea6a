#pragma once

#include <filesystem>

namespace tavi {

/// Where a file is made before it takes its place: a hidden name beside
/// `target`, this process's own.
std::filesystem::path workingPath(const std::filesystem::path& target);

/// Makes the finished file `working` durable and puts it in the place of
/// `target`. On failure `working` is removed, `target` is as it was, and the
/// system's error number is returned; 0 for success.
int putInPlace(const std::filesystem::path& working, const std::filesystem::path& target);

} // namespace tavi
