#pragma once

#include "base/Geometry.h"

#include <cstdint>
#include <optional>
#include <string_view>

namespace tavi {

/// What the typed fields of the export settings mean: whole numbers in ASCII digits. Absent
/// for anything else and for 0: then nothing changes. Any thread.

/// The size for a typed width: at most 7680, made even, with a height that keeps the source's
/// aspect (16 to 9 for a source without height) and is even too.
std::optional<Size> customSizeForWidth(std::string_view text, Size source);

/// The same for a typed height of at most 4320.
std::optional<Size> customSizeForHeight(std::string_view text, Size source);

/// Frames per second, at most 120.
std::optional<std::int64_t> customFrameRate(std::string_view text);

} // namespace tavi
