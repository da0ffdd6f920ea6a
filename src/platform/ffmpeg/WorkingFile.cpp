#include "platform/ffmpeg/WorkingFile.h"

#include <atomic>
#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <string>
#include <unistd.h>

namespace tavi {

namespace {

int synchronize(const std::filesystem::path& path) {
    const int file = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
    if (file < 0) {
        return errno;
    }
    const int error = ::fsync(file) == 0 ? 0 : errno;
    ::close(file);
    return error;
}

int writeAll(int file, std::span<const std::uint8_t> bytes) {
    while (!bytes.empty()) {
        const ssize_t written = ::write(file, bytes.data(), bytes.size());
        if (written < 0 && errno != EINTR) {
            return errno;
        }
        bytes = bytes.subspan(written < 0 ? 0 : static_cast<std::size_t>(written));
    }
    return 0;
}

} // namespace

std::filesystem::path workingPath(const std::filesystem::path& target) {
    static std::atomic<unsigned> calls = 0;
    return target.parent_path() / ("." + target.filename().string() + ".partial-" +
                                   std::to_string(::getpid()) + "-" + std::to_string(++calls));
}

int putInPlace(const std::filesystem::path& working, const std::filesystem::path& target) {
    int error = synchronize(working);
    if (error == 0 && std::rename(working.c_str(), target.c_str()) != 0) {
        error = errno;
    }
    if (error != 0) {
        ::unlink(working.c_str());
    }
    return error;
}

int writeInPlace(const std::filesystem::path& target, std::span<const std::uint8_t> bytes) {
    const std::filesystem::path working = workingPath(target);
    constexpr int kFlags = O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC;
    const int file = ::open(working.c_str(), kFlags, 0666);
    if (file < 0) {
        return errno;
    }
    int error = writeAll(file, bytes);
    if (::close(file) != 0 && error == 0) {
        error = errno;
    }
    if (error != 0) {
        ::unlink(working.c_str());
        return error;
    }
    return putInPlace(working, target);
}

} // namespace tavi
