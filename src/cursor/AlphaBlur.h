#pragma once

#include <vector>

namespace tavi {

/// A picture of one number a pixel, rows top-down without gaps.
struct AlphaPicture {
    AlphaPicture() = default;
    AlphaPicture(int pictureWidth, int pictureHeight)
        : width(pictureWidth),
          height(pictureHeight),
          values(static_cast<std::size_t>(pictureWidth) * static_cast<std::size_t>(pictureHeight)) {
    }

    float& at(int x, int y) { return values[index(x, y)]; }
    float at(int x, int y) const { return values[index(x, y)]; }

    int width = 0;
    int height = 0;
    std::vector<float> values;

private:
    std::size_t index(int x, int y) const {
        return static_cast<std::size_t>(y) * static_cast<std::size_t>(width) +
               static_cast<std::size_t>(x);
    }
};

/// The picture convolved with a gaussian of standard deviation `sigma`, in
/// pixels, cut off at 4 deviations; nothing lies beyond its edges. A sigma that
/// isn't positive blurs nothing. The cost grows with sigma: for small shadows.
AlphaPicture gaussianBlurred(const AlphaPicture& picture, double sigma);

} // namespace tavi
