#pragma once

#include "base/Message.h"
#include "base/Result.h"

#include <cstdint>
#include <filesystem>
#include <functional>
#include <string>

namespace tavi {

/// Why a file of the network could not be had.
struct DownloadError {
    Message detail; ///< A sentence for the user.

    Message message() const { return detail; }
    std::string description() const { return message().english(); }
};

/// Fetches from the network. Thread: main.
class Downloads {
public:
    using Text = std::function<void(Result<std::string, DownloadError>)>;
    using File = std::function<void(Result<void, DownloadError>)>;

    virtual ~Downloads() = default;

    /// Fetches a text of at most `limit` bytes; a longer one, and one that takes longer than
    /// `seconds`, is an error. Calls `done` once, later. Not while another fetch of it runs.
    virtual void fetchText(const std::string& url, std::int64_t limit, double seconds,
                           Text done) = 0;

    /// Fetches a file of exactly `length` bytes to `path`; what is there is replaced, and removed
    /// again at an error. A server that sends nothing for `seconds` is one.
    virtual void fetchFile(const std::string& url, const std::filesystem::path& path,
                           std::int64_t length, double seconds, File done) = 0;

    /// Ends what runs; its `done` isn't called.
    virtual void cancel() = 0;
};

/// Checks where files come from. Any thread.
class Signatures {
public:
    virtual ~Signatures() = default;

    /// True when `signature` is `key`'s Ed25519 signature of `message`. Key (32 bytes) and
    /// signature (64 bytes) are in base64; anything else is false.
    virtual bool isSignedBy(const std::string& key, const std::string& message,
                            const std::string& signature) const = 0;

    /// The SHA-512 of a file in lower-case hexadecimal digits; empty when it can't be read.
    virtual std::string sha512(const std::filesystem::path& path) const = 0;
};

} // namespace tavi
