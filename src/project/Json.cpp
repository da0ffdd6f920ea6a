#include "project/Json.h"

#include "base/SystemReason.h"

#include <cerrno>
#include <fcntl.h>
#include <fstream>
#include <sys/stat.h>
#include <unistd.h>

namespace tavi {

namespace {

const char* sentence(JsonError::Kind kind) {
    switch (kind) {
    case JsonError::Kind::unreadable:
        return "can't be read";
    case JsonError::Kind::tooLarge:
        return "is too large";
    case JsonError::Kind::syntax:
        return "is not valid JSON";
    case JsonError::Kind::missingKey:
        return "lacks a required key";
    case JsonError::Kind::wrongType:
        return "holds a value of the wrong type";
    case JsonError::Kind::badValue:
        return "holds a value that is not known";
    case JsonError::Kind::notFinite:
        return "would hold a number that is not finite";
    }
    return "is broken";
}

/// Closes a file descriptor at the end of its scope.
struct Descriptor {
    int fd;
    ~Descriptor() {
        if (fd >= 0) {
            close(fd);
        }
    }
};

bool writeAll(int fd, std::string_view text) {
    while (!text.empty()) {
        const ssize_t n = write(fd, text.data(), text.size());
        if (n < 0 && errno == EINTR) {
            continue;
        }
        if (n <= 0) {
            return false;
        }
        text.remove_prefix(static_cast<std::size_t>(n));
    }
    return true;
}

bool writeAndSync(const std::filesystem::path& path, std::string_view text, int flags) {
    const Descriptor file{open(path.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC | flags, 0666)};
    return file.fd >= 0 && writeAll(file.fd, text) && fsync(file.fd) == 0;
}

} // namespace

std::string JsonError::description() const {
    std::string text = sentence(kind);
    if (!detail.empty()) {
        text += " (" + detail + ")";
    }
    return text;
}

Result<std::string, JsonError> readTextFile(const std::filesystem::path& path) {
    const Descriptor file{open(path.c_str(), O_RDONLY | O_CLOEXEC)};
    struct stat info {};
    if (file.fd < 0 || fstat(file.fd, &info) != 0) {
        return fail(JsonError{JsonError::Kind::unreadable, systemReason(errno)});
    }
    if (!S_ISREG(info.st_mode)) {
        return fail(JsonError{JsonError::Kind::unreadable, "not a regular file"});
    }
    std::string text(static_cast<std::size_t>(info.st_size), '\0');
    std::size_t filled = 0;
    while (filled < text.size()) {
        const ssize_t n = read(file.fd, text.data() + filled, text.size() - filled);
        if (n < 0 && errno == EINTR) {
            continue;
        }
        if (n < 0) {
            return fail(JsonError{JsonError::Kind::unreadable, systemReason(errno)});
        }
        if (n == 0) {
            break; // shortened while it was read
        }
        filled += static_cast<std::size_t>(n);
    }
    text.resize(filled);
    return text;
}

bool writeTextFile(const std::filesystem::path& path, std::string_view text) {
    const Descriptor file{open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666)};
    return file.fd >= 0 && writeAll(file.fd, text);
}

bool createTextFile(const std::filesystem::path& path, std::string_view text) {
    const std::filesystem::path beside =
        path.parent_path() /
        ("." + path.filename().string() + "." + std::to_string(getpid()) + ".new");
    unlink(beside.c_str()); // of a process that died and had the same number
    if (writeAndSync(beside, text, O_EXCL) && rename(beside.c_str(), path.c_str()) == 0) {
        return true;
    }
    const int error = errno;
    unlink(beside.c_str());
    errno = error;
    return false;
}

bool replaceTextFile(const std::filesystem::path& path, std::string_view text) {
    if (createTextFile(path, text)) {
        return true;
    }
    // Never for want of room: the old content would be gone before that shows.
    return (errno == EACCES || errno == EPERM) && writeTextFile(path, text);
}

} // namespace tavi
