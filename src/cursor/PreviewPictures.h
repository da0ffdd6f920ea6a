#pragma once

#include "cursor/CursorPictures.h"

namespace tavi {

/// The pointer's pictures where they are drawn otherwise on the editor's canvas than in a
/// film: there the user looks at them at any size.
///
/// Units:  pixels of the canvas. Errors: none; a size that isn't positive gives an empty picture.
/// Thread: any.

/// A white disc, slightly see-through, with a soft shadow that lies outside of it: the picture
/// is larger than `diameter`, with the disc in its middle.
PixelBufferPtr previewCircleImage(double diameter);

/// The ring of a click around `middle` (origin at the bottom left), `progress` from 0 to 1 of its
/// life. Grows to two and a half times `diameter` and fades; `rim` is the width of its line.
PlacedPicture previewRingImage(Point middle, double progress, double diameter, double rim);

} // namespace tavi
