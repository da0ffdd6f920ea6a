#pragma once

#include "base/Geometry.h"
#include "base/PixelBuffer.h"
#include "render/BackgroundPresets.h"
#include "render/ImageView.h"

namespace tavi {

/// Whole backgrounds. All are opaque; colour parts outside of 0..1
/// are limited, what isn't a number counts as 0.
///
/// Shapes: `width` x `height` pixels, which may exceed `area`, the output's exact
///         size, by less than 2 pixels at the top and right. Geometry is worked
///         out on `area` with the origin at the bottom left.
/// Errors: none. Thread: any.

/// One colour. What is translucent shows as over black, since a film has no alpha.
PixelBuffer solidImage(const CodableColor& color, int width, int height);

/// A ramp along the preset's angle between two points half of the longer side
/// away from the centre; beyond them the end colours go on.
PixelBuffer gradientImage(const GradientPreset& preset, Size area, int width, int height);

/// Blobs over a base colour, on all of `out`. Each fades linearly in alpha from its
/// centre to its radius.
void drawWallpaper(const Wallpaper& wallpaper, Size area, ImageView out);

/// The wallpaper at a moment of its slow drift, one turn in 20 seconds.
Wallpaper movedWallpaper(const Wallpaper& wallpaper, double time);

} // namespace tavi
