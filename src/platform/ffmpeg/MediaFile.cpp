#include "platform/ffmpeg/MediaFile.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace tavi {

MediaFile::MediaFile(const std::filesystem::path& path)
    : m_file(::open(path.c_str(), O_RDWR | O_CLOEXEC)) {}

MediaFile::~MediaFile() {
    if (m_file >= 0) {
        ::close(m_file);
    }
}

std::uint64_t MediaFile::size() const {
    struct stat status {};
    return ::fstat(m_file, &status) == 0 ? static_cast<std::uint64_t>(status.st_size) : 0;
}

bool MediaFile::read(std::uint64_t offset, std::span<std::uint8_t> bytes) const {
    while (!bytes.empty()) {
        const ssize_t got = ::pread(m_file, bytes.data(), bytes.size(), static_cast<off_t>(offset));
        if (got == 0 || (got < 0 && errno != EINTR)) {
            return false;
        }
        const auto some = static_cast<std::size_t>(got < 0 ? 0 : got);
        bytes = bytes.subspan(some);
        offset += some;
    }
    return true;
}

int MediaFile::write(std::uint64_t offset, std::span<const std::uint8_t> bytes) const {
    while (!bytes.empty()) {
        const ssize_t put =
            ::pwrite(m_file, bytes.data(), bytes.size(), static_cast<off_t>(offset));
        if (put < 0 && errno != EINTR) {
            return errno;
        }
        const auto some = static_cast<std::size_t>(put < 0 ? 0 : put);
        bytes = bytes.subspan(some);
        offset += some;
    }
    return 0;
}

int MediaFile::synchronize() const {
    return ::fdatasync(m_file) == 0 ? 0 : errno;
}

void MediaFile::startSynchronizing(std::uint64_t offset, std::uint64_t bytes) const {
    (void)::sync_file_range(m_file, static_cast<off_t>(offset), static_cast<off_t>(bytes),
                            SYNC_FILE_RANGE_WRITE);
}

void MediaFile::cut(std::uint64_t size) const {
    (void)!::ftruncate(m_file, static_cast<off_t>(size));
}

} // namespace tavi
