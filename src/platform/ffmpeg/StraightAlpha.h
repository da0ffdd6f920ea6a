#pragma once

#include "base/PixelBuffer.h"

#include <cstddef>
#include <cstdint>

namespace tavi {

/// Straight RGBA, 8 bits, into a premultiplied BGRA picture of the same size,
/// rounded to nearest. `stride` is the source's, in bytes.
void premultiply(const std::uint8_t* rgba, std::size_t stride, PixelBuffer& to);

/// The way back. Where alpha is 0 the colour is black; a colour above its alpha
/// is limited to full.
void unpremultiply(const PixelBuffer& from, std::uint8_t* rgba, std::size_t stride);

} // namespace tavi
