#pragma once

#include "base/PixelBuffer.h"
#include "capture/Pointer.h"

#include <cstdint>
#include <optional>
#include <span>
#include <vector>

namespace tavi {

/// A cursor's picture as one comparable run of bytes: width, height, hot spot
/// x and y as little-endian 32-bit integers, then the rows top-down without
/// padding, premultiplied BGRA. Equal pictures with an equal hot spot give equal bytes.
std::vector<std::uint8_t> cursorImageBytes(const PixelBuffer& image, int hotSpotX, int hotSpotY);

/// The picture in `bytes`; absent when they aren't of that form.
std::optional<PixelBuffer> cursorImageFromBytes(std::span<const std::uint8_t> bytes);

/// A cursor of these pixels; premultiplied, the hot spot from the top left corner.
SystemCursor systemCursor(const PixelBuffer& image, int hotSpotX, int hotSpotY);

} // namespace tavi
