#include "capture/AreaScaling.h"

#include "capture/Screenshots.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>

namespace tavi {
namespace {

PixelBuffer randomPicture(int width, int height) {
    std::mt19937 random(static_cast<unsigned>(width * 1000 + height));
    PixelBuffer picture(width, height);
    for (int y = 0; y < height; ++y) {
        for (int i = 0; i < width * 4; ++i) {
            picture.row(y)[i] = static_cast<std::uint8_t>(random());
        }
    }
    return picture;
}

/// The mean of one channel over the part of the source that the pixel covers.
double meanOver(const PixelBuffer& source, int x, int y, int channel, int width, int height) {
    const double sx = static_cast<double>(source.width()) / width;
    const double sy = static_cast<double>(source.height()) / height;
    double sum = 0;
    for (int v = 0; v < source.height(); ++v) {
        for (int u = 0; u < source.width(); ++u) {
            const double dx = std::min(u + 1.0, (x + 1) * sx) - std::max<double>(u, x * sx);
            const double dy = std::min(v + 1.0, (y + 1) * sy) - std::max<double>(v, y * sy);
            if (dx > 0 && dy > 0) {
                sum += dx * dy * source.row(v)[u * 4 + channel];
            }
        }
    }
    return sum / (sx * sy);
}

TEST(AreaScaling, pixelsAreTheMeanOfWhatTheyCover) {
    for (const auto& [w, h] : {std::pair{8, 4}, {7, 5}, {3, 1}, {30, 17}, {31, 19}}) {
        const PixelBuffer source = randomPicture(31, 19);
        const PixelBuffer scaled = areaScaled(source, w, h);
        ASSERT_EQ(scaled.width(), w);
        ASSERT_EQ(scaled.height(), h);
        for (int y = 0; y < h; ++y) {
            for (int i = 0; i < w * 4; ++i) {
                ASSERT_NEAR(scaled.row(y)[i], meanOver(source, i / 4, y, i % 4, w, h), 0.51)
                    << w << "x" << h << " at " << i / 4 << "," << y;
            }
        }
    }
}

TEST(AreaScaling, smallPicturesGrowWithoutNewColours) {
    PixelBuffer source(2, 1);
    std::fill_n(source.row(0), 4, std::uint8_t{200});
    const PixelBuffer scaled = areaScaled(source, 640, 320);
    EXPECT_EQ(scaled.row(319)[319 * 4], 200);
    EXPECT_EQ(scaled.row(0)[320 * 4], 0);
}

TEST(Thumbnails, are640WideInTheSourcesProportions) {
    EXPECT_EQ(thumbnailConfiguration(1920, 1080, true), (ScreenshotConfiguration{640, 360, true}));
    EXPECT_EQ(thumbnailConfiguration(1366, 768, false).height, 359) << "cut down, not rounded";
    EXPECT_EQ(thumbnailConfiguration(320, 480, false).height, 960);
    EXPECT_EQ(thumbnailConfiguration(3000, 1, false).height, 1);
}

} // namespace
} // namespace tavi
