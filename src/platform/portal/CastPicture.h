#pragma once

#include "base/PixelBuffer.h"
#include "media/ColorConversion.h"

#include <cstddef>
#include <cstdint>
#include <spa/buffer/meta.h>
#include <spa/param/video/raw.h>
#include <span>

namespace tavi {

/// A part of a picture in whole pixels, rows downwards.
struct CastArea {
    int x = 0;
    int y = 0;
    int width = 0;
    int height = 0;

    bool operator==(const CastArea&) const = default;
};

/// A picture as a compositor delivered it; borrowed.
struct CastPicture {
    spa_video_format format = SPA_VIDEO_FORMAT_UNKNOWN;
    int width = 0; ///< Pixels of the whole buffer.
    int height = 0;
    /// Bytes from one row of the first plane to the next; negative: the top row lies last in
    /// memory.
    std::ptrdiff_t stride = 0;
    std::span<const std::uint8_t> bytes;  ///< The first plane, of NV12 perhaps both.
    std::ptrdiff_t chromaStride = 0;      ///< Of a second plane of its own.
    std::span<const std::uint8_t> chroma; ///< Empty: behind the first plane, in rows as long.
    YuvEncoding encoding;                 ///< Of NV12.
    CastArea crop;                        ///< What of the buffer is shown; inside it.
    /// How the compositor turned the picture; it is turned back.
    spa_meta_videotransform_value transform = SPA_META_TRANSFORMATION_None;
};

/// The formats that are read, the cheapest to read first.
inline constexpr spa_video_format kCastFormats[] = {
    SPA_VIDEO_FORMAT_BGRx, SPA_VIDEO_FORMAT_BGRA, SPA_VIDEO_FORMAT_RGBx,
    SPA_VIDEO_FORMAT_RGBA, SPA_VIDEO_FORMAT_NV12,
};

/// What is shown of a picture once it is turned back, at the origin.
CastArea shownArea(const CastPicture& picture);

/// Where a point of the buffer, in pixels from its top left corner, is in what is shown.
struct CastPoint {
    int x = 0;
    int y = 0;

    bool operator==(const CastPoint&) const = default;
};
CastPoint shownPoint(const CastPicture& picture, CastPoint point);

/// The first byte of the picture's top left pixel where its pixels are just those of a
/// PixelBuffer of `width` x `height`, row for row; else null.
const std::uint8_t* asPixelBuffer(const CastPicture& picture, int width, int height);

/// Draws what is shown at the top left of `to`, cut off there or continued by its last
/// column and row. Alpha of BGRA and RGBA is kept, of other formats the fourth byte means nothing.
/// False when bytes are missing or the format is none of those above; `to` is then undefined.
///
/// `colours` may be null; NV12 is then not read. Thread: any.
bool drawCastPicture(const CastPicture& picture, const ColorConverter* colours, PixelBuffer& to);

} // namespace tavi
