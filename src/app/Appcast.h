#pragma once

#include "base/Message.h"
#include "base/Result.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tavi {

/// One release of an appcast that has a file to fetch.
struct AppcastItem {
    std::string version;     ///< The short version, "1.5.2".
    std::string title;       ///< May be empty.
    std::string url;         ///< Of the file.
    std::int64_t length = 0; ///< Bytes; greater than 0.
    std::string edSignature; ///< In base64; see updateMessage().

    bool operator==(const AppcastItem&) const = default;
};

/// Why a text is no appcast.
struct AppcastError {
    std::string detail;    ///< What is wrong, for who keeps the feed.
    std::int64_t line = 0; ///< Where, from 1.

    Message message() const;
    std::string description() const { return message().english(); }
};

/// Reads an RSS 2.0 feed with the customary extension for versions and signatures.
///
/// Items without version, file, length or signature are passed over. Documents with a document
/// type are refused, since a feed needs no entities of its own. At most kMostAppcastItems are read.
Result<std::vector<AppcastItem>, AppcastError> parseAppcast(std::string_view xml);

inline constexpr std::size_t kMostAppcastItems = 1000;

/// The newest item that is newer than the running version; none when there is none. Versions are
/// numbers with dots between them; what isn't one counts as older than every other.
std::optional<AppcastItem> newestUpdate(const std::vector<AppcastItem>& items,
                                        std::string_view runningVersion);

/// What an update's signature signs: version, length and SHA-512 of the file, so that an old file
/// can't be passed off as a new version.
std::string updateMessage(std::string_view version, std::int64_t length,
                          std::string_view sha512Hex);

} // namespace tavi
