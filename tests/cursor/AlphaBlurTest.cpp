#include "cursor/AlphaBlur.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <numbers>
#include <numeric>

namespace tavi {
namespace {

AlphaPicture point(int width, int height, int x, int y) {
    AlphaPicture picture(width, height);
    picture.at(x, y) = 1000;
    return picture;
}

TEST(AlphaBlur, aPointBecomesTheGaussian) {
    const double sigma = 2.5;
    const AlphaPicture blurred = gaussianBlurred(point(41, 31, 20, 15), sigma);
    ASSERT_EQ(blurred.width, 41);
    ASSERT_EQ(blurred.height, 31);
    constexpr std::array<std::array<int, 2>, 5> kPlaces{
        {{20, 15}, {22, 15}, {20, 12}, {17, 17}, {25, 10}}};
    for (const auto& [x, y] : kPlaces) {
        const double squared = (x - 20) * (x - 20) + (y - 15) * (y - 15);
        const double expected = 1000 * std::exp(-squared / (2 * sigma * sigma)) /
                                (2 * std::numbers::pi * sigma * sigma);
        EXPECT_NEAR(blurred.at(x, y), expected, 0.02 + expected * 0.01) << x << ", " << y;
    }
}

TEST(AlphaBlur, keepsTheSumAwayFromTheEdgesAndLosesItThere) {
    const auto sum = [](const AlphaPicture& picture) {
        return std::accumulate(picture.values.begin(), picture.values.end(), 0.0);
    };
    EXPECT_NEAR(sum(gaussianBlurred(point(40, 60, 20, 30), 3)), 1000, 0.5);
    EXPECT_NEAR(sum(gaussianBlurred(point(40, 60, 0, 30), 3)), 566, 10); // half, and the middle row
}

TEST(AlphaBlur, aSigmaThatIsNotPositiveChangesNothing) {
    const AlphaPicture picture = point(3, 2, 1, 1);
    for (const double sigma : {0.0, -1.0, std::nan("")}) {
        EXPECT_EQ(gaussianBlurred(picture, sigma).values, picture.values);
    }
    EXPECT_TRUE(gaussianBlurred({}, 2).values.empty());
}

} // namespace
} // namespace tavi
