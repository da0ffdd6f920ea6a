#pragma once

#include "render/RenderGeometry.h"
#include "support/Pictures.h"

#include <algorithm>

namespace tavi::test {

/// The smallest area that holds every pixel that is not `plain`, rows from the
/// top; empty when there is none.
inline PixelBounds areaDifferingFrom(const PixelBuffer& image, Pixel plain) {
    PixelBounds area{image.width(), image.height(), 0, 0};
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            if (pixelAt(image, x, y) != plain) {
                area = {std::min(area.left, x), std::min(area.top, y), std::max(area.right, x + 1),
                        std::max(area.bottom, y + 1)};
            }
        }
    }
    return area;
}

} // namespace tavi::test
