#include "project/OutputSettings.h"

#include <cmath>

namespace tavi {

Size resolvedOutputSize(Size resolution, bool autoAspectRatio, Size video) {
    if (!autoAspectRatio || !(video.width > 0) || !(video.height > 0)) {
        return resolution;
    }
    double width = std::round((video.width / video.height) * resolution.height);
    if (std::fmod(width, 2.0) != 0) {
        width += 1;
    }
    return {width, resolution.height};
}

} // namespace tavi
