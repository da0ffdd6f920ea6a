#include "capture/RecorderLock.h"

#include <cstdlib>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace tavi {

namespace {

constexpr const char* kFileName = "recorder.lock";

RecorderLockError noFolder(const std::filesystem::path& folder) {
    return {RecorderLockError::Kind::noFolder, folder.string()};
}

/// A lock on the whole file; given back with its holder by F_GETLK.
struct flock wholeFile() {
    struct flock lock {};
    lock.l_type = F_WRLCK;
    lock.l_whence = SEEK_SET;
    return lock;
}

/// True for a folder that is really one, and that nobody else may enter.
bool isPrivate(const std::filesystem::path& folder) {
    struct stat status {};
    return lstat(folder.c_str(), &status) == 0 && S_ISDIR(status.st_mode) &&
           status.st_uid == getuid() && (status.st_mode & 077) == 0;
}

} // namespace

Message RecorderLockError::message() const {
    switch (kind) {
    case Kind::alreadyRunning:
        return TAVI_TEXT("Errors", "A recording is running already; `tavi stop` ends it.");
    case Kind::noFolder:
        return {TAVI_TEXT("Errors", "The folder %1 can't be used; set XDG_RUNTIME_DIR to a folder "
                                    "that is yours alone."),
                {detail}};
    }
    return detail;
}

Result<std::filesystem::path, RecorderLockError> RecorderLock::folder() {
    const char* runtime = std::getenv("XDG_RUNTIME_DIR");
    const bool hasRuntime = runtime != nullptr && *runtime == '/';
    const std::filesystem::path folder =
        hasRuntime ? std::filesystem::path(runtime) / "tavlin"
                   : std::filesystem::path("/tmp/tavlin-" + std::to_string(getuid()));
    mkdir(folder.c_str(), 0700);
    if (!isPrivate(folder)) {
        return fail(noFolder(folder));
    }
    return folder;
}

Result<RecorderLock, RecorderLockError> RecorderLock::acquire(const std::filesystem::path& folder) {
    RecorderLock lock(open((folder / kFileName).c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600));
    if (lock.m_fd < 0) {
        return fail(noFolder(folder));
    }
    auto request = wholeFile();
    if (fcntl(lock.m_fd, F_SETLK, &request) != 0) {
        return fail(RecorderLockError{RecorderLockError::Kind::alreadyRunning, ""});
    }
    return lock;
}

std::optional<pid_t> RecorderLock::holder(const std::filesystem::path& folder) {
    const RecorderLock file(open((folder / kFileName).c_str(), O_RDWR | O_CLOEXEC));
    auto request = wholeFile();
    if (file.m_fd < 0 || fcntl(file.m_fd, F_GETLK, &request) != 0 || request.l_type == F_UNLCK) {
        return std::nullopt;
    }
    return request.l_pid;
}

RecorderLock::RecorderLock(RecorderLock&& other) noexcept : m_fd(std::exchange(other.m_fd, -1)) {}

RecorderLock::~RecorderLock() {
    if (m_fd >= 0) {
        close(m_fd);
    }
}

} // namespace tavi
