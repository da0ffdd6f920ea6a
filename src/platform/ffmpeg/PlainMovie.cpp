#include "platform/ffmpeg/PlainMovie.h"

#include "platform/ffmpeg/FfmpegErrors.h"

extern "C" {
#include <libavutil/error.h>
}

#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace tavi {

namespace {

/// Our index without media in it is a few kilobytes.
constexpr std::uint64_t kMostIndexBytes = std::uint64_t{16} << 20;

/// An open file; calls give 0 or the system's error number.
class OpenFile {
public:
    explicit OpenFile(const std::filesystem::path& path)
        : m_file(::open(path.c_str(), O_RDWR | O_CLOEXEC)) {}
    ~OpenFile() {
        if (m_file >= 0) {
            ::close(m_file);
        }
    }
    OpenFile(const OpenFile&) = delete;
    OpenFile& operator=(const OpenFile&) = delete;

    bool isOpen() const { return m_file >= 0; }

    std::uint64_t size() const {
        struct stat status {};
        return ::fstat(m_file, &status) == 0 ? static_cast<std::uint64_t>(status.st_size) : 0;
    }

    bool read(std::uint64_t offset, std::span<std::uint8_t> bytes) const {
        while (!bytes.empty()) {
            const ssize_t got =
                ::pread(m_file, bytes.data(), bytes.size(), static_cast<off_t>(offset));
            if (got == 0 || (got < 0 && errno != EINTR)) {
                return false;
            }
            const auto some = static_cast<std::size_t>(got < 0 ? 0 : got);
            bytes = bytes.subspan(some);
            offset += some;
        }
        return true;
    }

    int write(std::uint64_t offset, std::span<const std::uint8_t> bytes) const {
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

    int synchronize() const { return ::fdatasync(m_file) == 0 ? 0 : errno; }

    void cut(std::uint64_t size) const { (void)!::ftruncate(m_file, static_cast<off_t>(size)); }

private:
    int m_file;
};

/// The old index and where it lies.
struct Index {
    BoxRange range;
    MovieBox box;
};

std::optional<Index> findIndex(const ReadBytes& read, std::uint64_t size) {
    std::optional<BoxRange> range = readBox(read, 0, size);
    while (range && range->type != fourCC("moov") && range->type != fourCC("moof")) {
        range = readBox(read, range->end, size);
    }
    if (!range || range->type != fourCC("moov") || range->end - range->begin > kMostIndexBytes) {
        return std::nullopt;
    }
    std::vector<std::uint8_t> content(range->end - range->begin);
    if (!read(range->begin, content)) {
        return std::nullopt;
    }
    return Index{*range, {range->type, {}, parseBoxes(content)}};
}

/// The header of a "mdat" box of that size, in its long form.
std::vector<std::uint8_t> mediaHeader(std::uint64_t size) {
    return BoxWriter().u32(1).u32(fourCC("mdat")).u64(size).take();
}

/// Puts the new index behind the media and hides the old one in them.
int replaceIndex(const OpenFile& file, const BoxRange& old, const MovieBox& index) {
    const std::uint64_t end = file.size();
    std::vector<std::uint8_t> bytes;
    appendBox(bytes, index);
    int error = file.write(end, bytes);
    if (error == 0) {
        error = file.synchronize();
    }
    if (error == 0) {
        error = file.write(old.start, mediaHeader(end - old.start));
    }
    if (error != 0) {
        file.cut(end);
        return error;
    }
    return file.synchronize();
}

} // namespace

Result<void, MediaError> makePlainMovie(const std::filesystem::path& path, const MovieEnds& ends) {
    using Kind = MediaError::Kind;
    const OpenFile file(path);
    if (!file.isOpen()) {
        return fail(writeError(path, AVERROR(errno)));
    }
    const ReadBytes read = [&file](std::uint64_t offset, std::span<std::uint8_t> bytes) {
        return file.read(offset, bytes);
    };
    const std::uint64_t size = file.size();
    std::optional<Index> old = findIndex(read, size);
    if (!old || !old->box.child(fourCC("mvex"))) {
        return fail(mediaError(Kind::notMedia, path, "it is no fragmented movie"));
    }
    MovieFragments fragments = readFragments(read, old->range.end, size, old->box);
    if (fragments.end != size) {
        return fail(mediaError(Kind::notMedia, path, "its last fragment is not whole"));
    }
    const auto index = makePlainIndex(std::move(old->box), std::move(fragments), ends);
    if (!index) {
        return fail(mediaError(Kind::notMedia, path, "its index is damaged"));
    }
    if (const int error = replaceIndex(file, old->range, *index); error != 0) {
        return fail(writeError(path, AVERROR(error)));
    }
    return {};
}

std::vector<std::uint8_t> withEditList(std::span<const std::uint8_t> header, std::size_t track,
                                       std::int64_t mediaTime) {
    std::vector<MovieBox> boxes = parseBoxes(header);
    std::size_t number = 0;
    for (MovieBox& moov : boxes) {
        for (MovieBox& trak : moov.children) {
            if (trak.type == fourCC("trak") && number++ == track && !trak.children.empty()) {
                trak.children.insert(trak.children.begin() + 1, makeEditList(0, 0, mediaTime));
            }
        }
    }
    std::vector<std::uint8_t> bytes;
    for (const MovieBox& box : boxes) {
        appendBox(bytes, box);
    }
    return bytes;
}

} // namespace tavi
