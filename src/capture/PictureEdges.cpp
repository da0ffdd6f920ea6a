#include "capture/PictureEdges.h"

#include <algorithm>
#include <cstring>

namespace tavi {

void repeatEdges(PixelBuffer& picture, int width, int height) {
    for (int y = 0; width < picture.width() && y < height; ++y) {
        auto* row = reinterpret_cast<std::uint32_t*>(picture.row(y));
        std::fill(row + width, row + picture.width(), row[width - 1]);
    }
    for (int y = height; y < picture.height(); ++y) {
        std::memcpy(picture.row(y), picture.row(height - 1), picture.stride());
    }
}

} // namespace tavi
