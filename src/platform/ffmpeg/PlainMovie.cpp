#include "platform/ffmpeg/PlainMovie.h"

#include "platform/ffmpeg/FfmpegErrors.h"

extern "C" {
#include <libavutil/error.h>
}

#include <cerrno>
#include <utility>

namespace tavi {

namespace {

/// Our index without media in it is a few kilobytes.
constexpr std::uint64_t kMostIndexBytes = std::uint64_t{16} << 20;

ReadBytes reading(const MediaFile& file) {
    return [&file](std::uint64_t offset, std::span<std::uint8_t> bytes) {
        return file.read(offset, bytes);
    };
}

MediaError notMedia(const std::filesystem::path& path, const char* why) {
    return mediaError(MediaError::Kind::notMedia, path, why);
}

/// The header of a "mdat" box of that size, in its long form.
std::vector<std::uint8_t> mediaHeader(std::uint64_t size) {
    return BoxWriter().u32(1).u32(fourCC("mdat")).u64(size).take();
}

} // namespace

PlainMovie::PlainMovie(std::filesystem::path path, std::unique_ptr<MediaFile> file, Index index)
    : m_path(std::move(path)),
      m_file(std::move(file)),
      m_index(std::move(index)),
      m_fragments(noFragments(m_index.box, m_index.range.end)) {}

Result<std::unique_ptr<PlainMovie>, MediaError>
PlainMovie::open(const std::filesystem::path& path) {
    auto file = std::make_unique<MediaFile>(path);
    if (!file->isOpen()) {
        return fail(writeError(path, AVERROR(errno)));
    }
    std::optional<Index> index = findIndex(*file);
    if (!index || !index->box.child(fourCC("mvex"))) {
        return fail(notMedia(path, "it is no fragmented movie"));
    }
    return std::unique_ptr<PlainMovie>(new PlainMovie(path, std::move(file), std::move(*index)));
}

std::optional<PlainMovie::Index> PlainMovie::findIndex(const MediaFile& file) {
    const ReadBytes read = reading(file);
    const std::uint64_t size = file.size();
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

void PlainMovie::readMore() {
    const std::uint64_t before = m_fragments.end;
    readFragments(reading(*m_file), m_file->size(), m_index.box, m_fragments);
    if (m_fragments.end > before) {
        m_file->startSynchronizing(before, m_fragments.end - before);
    }
}

Result<void, MediaError> PlainMovie::complete(const MovieEnds& ends) {
    readMore();
    if (m_fragments.end != m_file->size()) {
        return fail(notMedia(m_path, "its last fragment is not whole"));
    }
    const auto index = makePlainIndex(std::move(m_index.box), std::move(m_fragments), ends);
    if (!index) {
        return fail(notMedia(m_path, "its index is damaged"));
    }
    const int error = replaceIndex(*index);
    return error == 0 ? Result<void, MediaError>() : fail(writeError(m_path, AVERROR(error)));
}

/// Puts the new index behind the media and hides the old one in them. The last step need not
/// be waited for: the movie is whole before it and after it.
int PlainMovie::replaceIndex(const MovieBox& index) const {
    const std::uint64_t end = m_file->size();
    std::vector<std::uint8_t> bytes;
    appendBox(bytes, index);
    int error = m_file->write(end, bytes);
    if (error == 0) {
        error = m_file->synchronize();
    }
    if (error == 0) {
        error = m_file->write(m_index.range.start, mediaHeader(end - m_index.range.start));
    }
    if (error != 0) {
        m_file->cut(end);
    }
    return error;
}

Result<void, MediaError> makePlainMovie(const std::filesystem::path& path, const MovieEnds& ends) {
    const auto movie = PlainMovie::open(path);
    return movie ? (*movie)->complete(ends) : fail(movie.error());
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
