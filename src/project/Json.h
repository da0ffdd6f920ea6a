#pragma once

#include "base/Result.h"

#include <filesystem>
#include <string>
#include <string_view>

namespace tavi {

/// Why a JSON text could not be read or written.
struct JsonError {
    enum class Kind {
        unreadable, ///< The file is missing or can't be read.
        tooLarge,   ///< Larger than any take's sidecar can be.
        syntax,     ///< No JSON, invalid UTF-8, nested too deep, or a number beyond a double.
        missingKey, ///< A required key is absent.
        wrongType,  ///< A value has another type than its field.
        badValue,   ///< Right type, but no value of the field (an unknown name, a bad identity).
        notFinite,  ///< A number without a JSON form.
    };

    Kind kind = Kind::syntax;
    std::string detail; ///< The key in question, or what the parser said.

    bool operator==(const JsonError&) const = default;

    /// One line for the user.
    std::string description() const;
};

/// The whole content of a file.
Result<std::string, JsonError> readTextFile(const std::filesystem::path& path);

/// Writes `text` to `path` in place, whole and not atomically. False on failure.
bool writeTextFile(const std::filesystem::path& path, std::string_view text);

/// Writes `text` beside `path` and then puts it in its place, so that a crash or a full disk
/// leaves the old content or the new. It is on the disk when this returns. False on failure.
bool createTextFile(const std::filesystem::path& path, std::string_view text);

/// The same; where the folder allows no second file it writes in place.
bool replaceTextFile(const std::filesystem::path& path, std::string_view text);

} // namespace tavi
