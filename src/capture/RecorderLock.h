#pragma once

#include "base/Message.h"
#include "base/Result.h"

#include <filesystem>
#include <optional>
#include <string>
#include <sys/types.h>

namespace tavi {

/// Why a user's recorder lock can't be had.
struct RecorderLockError {
    enum class Kind {
        alreadyRunning, ///< Another process of this user records.
        noFolder,       ///< There is no safe place for the lock.
    };

    Kind kind = Kind::noFolder;
    std::string detail;

    Message message() const;
    std::string description() const { return message().english(); }
};

/// One recorder per user: held from before a take starts until its files are
/// complete, so that others can find the recorder and wait for it.
///
/// The kernel lets the lock go when its process ends, however it ends; a file
/// that was left behind means nothing. The lock belongs to the process: it
/// holds one at a time, for one folder.
class RecorderLock {
public:
    /// Where this user's lock lies: below $XDG_RUNTIME_DIR, else in a folder
    /// below /tmp that belongs to the user alone. Makes the folder.
    static Result<std::filesystem::path, RecorderLockError> folder();

    static Result<RecorderLock, RecorderLockError> acquire(const std::filesystem::path& folder);

    /// The process that records; absent when none does. Not for use by the holder.
    static std::optional<pid_t> holder(const std::filesystem::path& folder);

    ~RecorderLock();
    RecorderLock(RecorderLock&& other) noexcept;
    RecorderLock& operator=(RecorderLock&&) = delete;

private:
    explicit RecorderLock(int fd) : m_fd(fd) {}

    int m_fd;
};

} // namespace tavi
