#pragma once

#include "base/Result.h"
#include "media/MediaError.h"

#include <filesystem>

namespace tavi {

/// Rewrites a complete fragmented movie as a plain one with a single index,
/// copying its packets, and puts it in the place of the old file. On failure
/// the file is as it was. `timescale` is that of the file's video tracks.
/// Errors: notMedia, cannotWrite, diskFull.
Result<void, MediaError> makePlainMovie(const std::filesystem::path& path, int timescale);

} // namespace tavi
