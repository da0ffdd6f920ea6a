#pragma once

#include <filesystem>
#include <string>

namespace tavi {

/// What whoever built the package decided. An absent file or key means the default.
struct PackageConfiguration {
    std::string updateFeed;   ///< https address of the appcast; empty: a package manager updates.
    std::string updateKey;    ///< Ed25519 public key of the updates, 32 bytes in base64.
    std::string changelogUrl; ///< Where the pages of releases are, without a slash at the end.

    bool operator==(const PackageConfiguration&) const = default;
};

/// Reads `package.ini` in the application package's folder.
PackageConfiguration readPackageConfiguration(const std::filesystem::path& packageFolder);

} // namespace tavi
