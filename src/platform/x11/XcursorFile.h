#pragma once

#include "base/PixelBuffer.h"

#include <cstdint>
#include <optional>
#include <span>

namespace tavi {

/// One picture of a cursor file.
struct XcursorImage {
    PixelBuffer image; ///< Premultiplied.
    int hotSpotX = 0;
    int hotSpotY = 0;
};

/// The first picture whose nominal size is nearest to `size`, in a file in the
/// Xcursor format (man 3 Xcursor). Absent for anything else. Any thread.
std::optional<XcursorImage> readXcursor(std::span<const std::uint8_t> bytes, int size);

} // namespace tavi
