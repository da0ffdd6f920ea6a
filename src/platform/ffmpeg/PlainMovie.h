#pragma once

#include "base/Result.h"
#include "media/MediaError.h"

#include <cstdint>
#include <filesystem>
#include <span>

namespace tavi {

/// Rewrites a complete fragmented movie as a plain one with a single index,
/// copying its packets, and puts it in the place of the old file. On failure
/// the file is as it was. `timescale` is that of the file's video tracks and of
/// `lastDurations`: how long the last packet of each track lasts, which a
/// fragmented file does not tell.
/// Errors: notMedia, cannotWrite, diskFull.
Result<void, MediaError> makePlainMovie(const std::filesystem::path& path, int timescale,
                                        std::span<const std::int64_t> lastDurations);

} // namespace tavi
