#include "platform/ffmpeg/WorkingFile.h"

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

} // namespace

std::filesystem::path workingPath(const std::filesystem::path& target) {
    return target.parent_path() /
           ("." + target.filename().string() + ".partial-" + std::to_string(::getpid()));
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

} // namespace tavi
