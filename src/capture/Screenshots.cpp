#include "capture/Screenshots.h"

#include <algorithm>

namespace tavi {

ScreenshotConfiguration thumbnailConfiguration(double sourceWidth, double sourceHeight,
                                               bool showsCursor) {
    constexpr int kWidth = 640;
    const int height = static_cast<int>(kWidth * sourceHeight / sourceWidth);
    return {kWidth, std::max(height, 1), showsCursor};
}

} // namespace tavi
