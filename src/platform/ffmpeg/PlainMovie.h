#pragma once

#include "base/Result.h"
#include "media/MediaError.h"
#include "platform/ffmpeg/MediaFile.h"
#include "platform/ffmpeg/MovieIndex.h"

#include <filesystem>
#include <memory>
#include <optional>

namespace tavi {

/// Turns a fragmented movie into a plain one with a single index, in place and without
/// touching its media.
///
/// The tables of the fragments can be read while the movie grows. At its end nothing has to be
/// read then: what a long take began with has long left the memory of the system, and thousands
/// of places on a disk are seconds.
/// Threads: one at a time.
class PlainMovie {
public:
    /// Opens a movie that begins with a whole index; fragments may follow already.
    /// Errors: notMedia, cannotWrite.
    static Result<std::unique_ptr<PlainMovie>, MediaError> open(const std::filesystem::path& path);

    /// Reads the tables of the fragments that became whole since the last call, and has
    /// the system write them to the disk soon, so that little is left to wait for at the end.
    void readMore();

    /// Makes it plain; nothing can be done with it afterwards.
    ///
    /// The plain index is appended and made durable; then the old index's first 16
    /// bytes become the header of one "mdat" box that holds all that lies between, and the
    /// new index finds the media inside of it. Whatever moment the process or the
    /// machine dies at, the file is a whole movie: a fragmented one with something
    /// behind it that readers skip, or the plain one.
    /// On failure the file is as it was. Errors: notMedia, cannotWrite, diskFull.
    Result<void, MediaError> complete(const MovieEnds& ends);

private:
    /// Where the old index lies, and what is in it.
    struct Index {
        BoxRange range;
        MovieBox box;
    };

    PlainMovie(std::filesystem::path path, std::unique_ptr<MediaFile> file, Index index);

    static std::optional<Index> findIndex(const MediaFile& file);
    int replaceIndex(const MovieBox& index) const;

    std::filesystem::path m_path;
    std::unique_ptr<MediaFile> m_file;
    Index m_index;
    MovieFragments m_fragments;
};

/// The same for a movie that is complete.
Result<void, MediaError> makePlainMovie(const std::filesystem::path& path, const MovieEnds& ends);

/// Gives the `track`-th track of a fragmented movie's header (all bytes in front
/// of the first fragment) an edit list that begins at `mediaTime` of the track.
std::vector<std::uint8_t> withEditList(std::span<const std::uint8_t> header, std::size_t track,
                                       std::int64_t mediaTime);

} // namespace tavi
