#pragma once

#include "base/Result.h"
#include "media/MediaError.h"
#include "platform/ffmpeg/MovieIndex.h"

#include <filesystem>

namespace tavi {

/// Turns a complete fragmented movie into a plain one with a single index, in
/// place and without touching its media.
///
/// The plain index is appended and made durable; then the old index's first 16
/// bytes become the header of one "mdat" box that holds all that lies between, and the
/// new index finds the media inside of it. Whatever moment the process or the
/// machine dies at, the file is a whole movie: a fragmented one with something
/// behind it that readers skip, or the plain one.
/// On failure the file is as it was. Errors: notMedia, cannotWrite, diskFull.
Result<void, MediaError> makePlainMovie(const std::filesystem::path& path, const MovieEnds& ends);

/// Gives the `track`-th track of a fragmented movie's header (all bytes in front
/// of the first fragment) an edit list that begins at `mediaTime` of the track.
std::vector<std::uint8_t> withEditList(std::span<const std::uint8_t> header, std::size_t track,
                                       std::int64_t mediaTime);

} // namespace tavi
