#pragma once

#include "base/Result.h"

#include <filesystem>
#include <string>

namespace tavi::cli {

/// Looks whether a file can be put at `file` before any work is done for it: its
/// folder is there and can be written, and what stands there, if anything, is a
/// plain file outside of `take`, whose own files are not to be replaced.
/// The error is a sentence for the user that names the file.
Result<void, std::string> checkOutputFile(const std::filesystem::path& file,
                                          const std::filesystem::path& take);

} // namespace tavi::cli
