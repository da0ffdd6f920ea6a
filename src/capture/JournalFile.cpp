#include "capture/JournalFile.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace tavi {

namespace {

/// What a take needs beside its log: cursor images and some slack. The log needs as much room as
/// the journal has already, once more.
constexpr std::int64_t kLeastReserve = 1 << 20;

std::int64_t wantedReserve(std::int64_t size) {
    return 2 * size + kLeastReserve;
}

bool lock(int file) {
    int code = 0;
    do {
        code = flock(file, LOCK_EX | LOCK_NB);
    } while (code != 0 && errno == EINTR);
    return code == 0;
}

/// True while the open file is what lies at `path`: who was faster may have removed it.
bool liesAt(int file, const std::filesystem::path& path) {
    struct stat opened {};
    struct stat found {};
    return fstat(file, &opened) == 0 && stat(path.c_str(), &found) == 0 &&
           S_ISREG(opened.st_mode) && opened.st_dev == found.st_dev &&
           opened.st_ino == found.st_ino;
}

/// Writes as much as the disk takes; the number of bytes.
std::size_t writeAt(int file, std::string_view text, std::int64_t offset) {
    std::size_t written = 0;
    while (written < text.size()) {
        const ssize_t n = pwrite(file, text.data() + written, text.size() - written,
                                 offset + static_cast<std::int64_t>(written));
        if (n < 0 && errno == EINTR) {
            continue;
        }
        if (n <= 0) {
            break;
        }
        written += static_cast<std::size_t>(n);
    }
    return written;
}

} // namespace

std::unique_ptr<JournalFile> JournalFile::create(const std::filesystem::path& path) {
    const int file = open(path.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
    if (file < 0) {
        return nullptr;
    }
    std::unique_ptr<JournalFile> journal(new JournalFile(path, file));
    if (!lock(file)) {
        journal->remove();
        return nullptr;
    }
    journal->growReserve();
    return journal;
}

std::unique_ptr<JournalFile> JournalFile::openLeftBehind(const std::filesystem::path& path) {
    // Reading is enough for a lock, so that folders without write permission do no harm. A pipe
    // of that name must not be waited for.
    const int file = open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    if (file < 0) {
        return nullptr;
    }
    std::unique_ptr<JournalFile> journal(new JournalFile(path, file));
    return lock(file) && liesAt(file, path) ? std::move(journal) : nullptr;
}

JournalFile::JournalFile(std::filesystem::path path, int file)
    : m_path(std::move(path)),
      m_file(file) {}

JournalFile::~JournalFile() {
    close(m_file);
}

void JournalFile::append(std::string_view text) {
    m_unwritten += text;
    const std::size_t written = writeAt(m_file, m_unwritten, m_size);
    m_size += static_cast<std::int64_t>(written);
    m_unwritten.erase(0, written);
    growReserve();
}

/// Blocks beyond the end of the file, which its size does not tell of. A disk that can't do this
/// has no reserve.
void JournalFile::growReserve() {
    if (!m_keepsReserve || m_reserved >= wantedReserve(m_size)) {
        return;
    }
    // With a step more than is needed, so that this is rare.
    const std::int64_t target = wantedReserve(m_size) + kLeastReserve;
    if (fallocate(m_file, FALLOC_FL_KEEP_SIZE, 0, target) == 0) {
        m_reserved = target;
    }
}

void JournalFile::releaseReserve() {
    m_keepsReserve = false;
    m_reserved = 0;
    // To the size that it has: what lies behind it is let go.
    static_cast<void>(!ftruncate(m_file, m_size));
}

void JournalFile::remove() {
    unlink(m_path.c_str());
}

} // namespace tavi
