#pragma once

#include "base/PixelBuffer.h"
#include "media/ColorConversion.h"

#include <cstddef>
#include <cstdint>
#include <spa/param/video/raw.h>
#include <span>

namespace tavi {

/// A picture as a camera delivered it; borrowed.
struct CameraPicture {
    spa_video_format format = SPA_VIDEO_FORMAT_UNKNOWN; ///< See CameraFormat.
    int width = 0;                                      ///< Pixels.
    int height = 0;
    std::ptrdiff_t stride = 0; ///< Bytes of a row of the first plane; 0: no padding.
    YuvMatrix matrix = YuvMatrix::bt601;
    YuvRange range = YuvRange::limited;
    std::span<const std::uint8_t> bytes; ///< All planes, one after the other.
};

/// Whether the picture is its mirror image, left to right.
enum class Mirroring { off, on };

/// Fills `to` with opaque pixels: the left upper part of the picture in the size of `to`, which is
/// not larger. False when the bytes are too few, or no picture; `to` is then undefined.
/// Thread: any.
bool readCameraPicture(const CameraPicture& picture, Mirroring mirroring, PixelBuffer& to);

} // namespace tavi
