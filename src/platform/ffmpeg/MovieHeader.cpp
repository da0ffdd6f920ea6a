#include "platform/ffmpeg/MovieHeader.h"

#include <algorithm>
#include <array>
#include <fstream>
#include <limits>

namespace tavi {

namespace {

/// More boxes than any sound file has before its index; a bound on the work
/// that a damaged file can cause.
constexpr int kMostBoxes = 4096;

std::optional<BoxRange> findBox(const ReadBytes& read, std::uint32_t type, std::uint64_t begin,
                                std::uint64_t end) {
    for (int i = 0; i < kMostBoxes; ++i) {
        const std::optional<BoxRange> box = readBox(read, begin, end);
        if (!box || box->type == type) {
            return box;
        }
        begin = box->end;
    }
    return std::nullopt;
}

std::optional<MediaTime> durationOf(const ReadBytes& read, const BoxRange& mvhd) {
    std::array<std::uint8_t, 32> bytes{};
    const std::span<std::uint8_t> content(bytes);
    if (mvhd.end - mvhd.begin < 20 || !read(mvhd.begin, content.first(20))) {
        return std::nullopt;
    }
    const bool isLong = bytes[0] == 1;
    if (isLong && (mvhd.end - mvhd.begin < 32 || !read(mvhd.begin, content))) {
        return std::nullopt;
    }
    const std::uint64_t timescale = bigEndian(content.subspan(isLong ? 20 : 12, 4));
    const std::uint64_t duration = bigEndian(content.subspan(isLong ? 24 : 16, isLong ? 8 : 4));
    const bool isUnknown = !isLong && duration == std::numeric_limits<std::uint32_t>::max();
    if (bytes[0] > 1 || timescale == 0 || timescale > std::numeric_limits<std::int32_t>::max() ||
        duration == 0 || duration > std::numeric_limits<std::int64_t>::max() || isUnknown) {
        return std::nullopt;
    }
    return MediaTime{static_cast<std::int64_t>(duration), static_cast<std::int32_t>(timescale)};
}

bool opensMovie(std::uint32_t type) {
    constexpr std::array kTypes{fourCC("ftyp"), fourCC("moov"), fourCC("mdat"), fourCC("wide"),
                                fourCC("free"), fourCC("skip"), fourCC("pnot")};
    return std::find(kTypes.begin(), kTypes.end(), type) != kTypes.end();
}

} // namespace

MovieHeader parseMovieHeader(const ReadBytes& read, std::uint64_t size) {
    MovieHeader header;
    const std::optional<BoxRange> first = readBox(read, 0, size);
    header.isMovie = first && opensMovie(first->type);
    if (!header.isMovie) {
        return header;
    }
    const std::optional<BoxRange> moov = findBox(read, fourCC("moov"), 0, size);
    header.hasIndex = moov.has_value();
    if (moov) {
        const auto mvhd = findBox(read, fourCC("mvhd"), moov->begin, moov->end);
        header.duration = mvhd ? durationOf(read, *mvhd) : std::nullopt;
    }
    return header;
}

MovieHeader readMovieHeader(const std::filesystem::path& path) {
    std::error_code failure;
    const std::uintmax_t size = std::filesystem::file_size(path, failure);
    std::ifstream file(path, std::ios::binary);
    if (failure || !file) {
        return {};
    }
    const auto read = [&file](std::uint64_t offset, std::span<std::uint8_t> bytes) {
        file.clear();
        file.seekg(static_cast<std::streamoff>(offset));
        file.read(reinterpret_cast<char*>(bytes.data()),
                  static_cast<std::streamsize>(bytes.size()));
        return static_cast<std::size_t>(file.gcount()) == bytes.size();
    };
    return parseMovieHeader(read, size);
}

} // namespace tavi
