#pragma once

#include "base/Geometry.h"
#include "base/PixelBuffer.h"
#include "project/CursorEvent.h"

#include <span>

namespace tavi {

/// The drawn cursors. Each kind keeps the last picture it made, process-wide, by
/// its exact size: in a steady stretch of film nothing is drawn anew.
///
/// Units:  sizes in output pixels; pictures are rounded up to whole pixels.
/// Errors: none; never null. A size that isn't positive gives an empty picture.
/// Thread: any.

/// The desktop's arrow, `size` pixels high; the built-in one where no desktop
/// arrow is set or it can't be drawn. The hot spot is the top left corner.
PixelBufferPtr pointerImage(double size);

/// Gives the desktop's arrow, at any size, or null for the built-in one.
void setDesktopArrow(PixelBufferPtr arrow);

/// A white disc with a soft shadow. The hot spot is the middle.
PixelBufferPtr circleImage(double size);

/// The captured cursor `id`, `size` pixels high, with the aspect of its info, or
/// of its pixels without one; the pointer where there is no such picture.
PixelBufferPtr systemImage(std::int64_t id, double size, std::span<const PixelBufferPtr> images,
                           std::span<const CursorImageInfo> infos);

/// A picture with a place: `origin` is its lower left corner, y upwards.
struct PlacedPicture {
    PixelBufferPtr image;
    Point origin;
};

/// The ripple of a click at (x, y), which grows to two and a half times `radius`
/// and fades as `progress` goes from 0 to 1. Empty for a radius that isn't positive.
PlacedPicture clickEffectImage(double x, double y, double progress, double radius);

} // namespace tavi
