#include "render/Composite.h"

#include "support/Pictures.h"

#include <gtest/gtest.h>

namespace tavi {
namespace {

using test::Pixel;
using test::pixelAt;
using test::plainPicture;

constexpr Pixel kOpaque{10, 120, 250, 255};
constexpr Pixel kHalf{50, 0, 100, 128};

TEST(DivideBy255, roundsToNearestForEveryProduct) {
    for (std::uint32_t v = 0; v <= 255 * 255; ++v) {
        ASSERT_EQ(divideBy255(v), (v * 2 + 255) / 510) << v;
    }
}

TEST(CompositeOver, anOpaquePictureReplacesWhatIsBelow) {
    PixelBuffer below = test::noisePicture(7, 5, 1);
    compositeOver(below, plainPicture(7, 5, kOpaque), {0, 0});
    EXPECT_EQ(test::largestDifference(below, plainPicture(7, 5, kOpaque)), 0);
}

TEST(CompositeOver, aTransparentPictureChangesNothing) {
    PixelBuffer below = test::noisePicture(7, 5, 2);
    compositeOver(below, PixelBuffer(7, 5), {0.3, -0.7});
    EXPECT_EQ(test::largestDifference(below, test::noisePicture(7, 5, 2)), 0);
}

TEST(CompositeOver, aTranslucentPixelBlendsByItsAlpha) {
    PixelBuffer below = plainPicture(1, 1, {200, 100, 0, 255});
    compositeOver(below, plainPicture(1, 1, kHalf), {0, 0});
    // 127 / 255 of what is below, plus the premultiplied colour.
    EXPECT_EQ(pixelAt(below, 0, 0), (Pixel{150, 50, 100, 255}));
}

TEST(CompositeOver, cutsOffWhatLiesOutside) {
    const Pixel ground{1, 2, 3, 255};
    for (const Point corner : {Point{-2, -1}, Point{3, 2}, Point{-50, 0}, Point{0, 99}}) {
        PixelBuffer below = plainPicture(4, 3, ground);
        compositeOver(below, plainPicture(3, 2, kOpaque), corner);
        for (int y = 0; y < 3; ++y) {
            for (int x = 0; x < 4; ++x) {
                const bool isInside =
                    x >= corner.x && x < corner.x + 3 && y >= corner.y && y < corner.y + 2;
                EXPECT_EQ(pixelAt(below, x, y), isInside ? kOpaque : ground);
            }
        }
    }
}

TEST(CompositeOver, aCornerBetweenPixelsSharesEveryPixelOut) {
    PixelBuffer below(4, 4);
    compositeOver(below, plainPicture(1, 1, {200, 200, 200, 200}), {1.25, 2.5});
    EXPECT_EQ(pixelAt(below, 1, 2).alpha, 75);
    EXPECT_EQ(pixelAt(below, 2, 2).alpha, 25);
    EXPECT_EQ(pixelAt(below, 1, 3).alpha, 75);
    EXPECT_EQ(pixelAt(below, 2, 3).alpha, 25);
    EXPECT_EQ(pixelAt(below, 0, 2).alpha, 0);
    EXPECT_EQ(pixelAt(below, 3, 3).alpha, 0);
}

TEST(CompositeOver, aCornerThatIsNoNumberDrawsNothing) {
    PixelBuffer below(2, 2);
    compositeOver(below, plainPicture(2, 2, kOpaque), {std::nan(""), 0});
    compositeOver(below, plainPicture(2, 2, kOpaque), {0, INFINITY});
    compositeOver(below, plainPicture(2, 2, kOpaque), {1e300, -1e300});
    EXPECT_EQ(test::largestDifference(below, PixelBuffer(2, 2)), 0);
}

TEST(CompositeRowOver, coverageScalesThePicture) {
    PixelBuffer below = plainPicture(3, 1, {0, 0, 0, 255});
    const PixelBuffer above = plainPicture(3, 1, {255, 255, 255, 255});
    const std::array<std::uint8_t, 3> coverage{0, 51, 255};
    compositeRowOver(below.row(0), above.row(0), coverage.data(), 3);
    EXPECT_EQ(pixelAt(below, 0, 0), (Pixel{0, 0, 0, 255}));
    EXPECT_EQ(pixelAt(below, 1, 0), (Pixel{51, 51, 51, 255}));
    EXPECT_EQ(pixelAt(below, 2, 0), (Pixel{255, 255, 255, 255}));
}

TEST(DarkenRow, blackOfSomeAlphaDarkens) {
    PixelBuffer row = plainPicture(3, 1, {200, 100, 50, 255});
    const std::array<std::uint8_t, 3> alpha{0, 102, 255};
    darkenRow(row.row(0), alpha.data(), 3);
    EXPECT_EQ(pixelAt(row, 0, 0), (Pixel{200, 100, 50, 255}));
    EXPECT_EQ(pixelAt(row, 1, 0), (Pixel{120, 60, 30, 255}));
    EXPECT_EQ(pixelAt(row, 2, 0), (Pixel{0, 0, 0, 255}));
}

TEST(IsRowOpaque, seesASingleTranslucentPixel) {
    PixelBuffer row = plainPicture(40, 1, kOpaque);
    EXPECT_TRUE(isRowOpaque(row.row(0), 40));
    test::setPixel(row, 39, 0, {0, 0, 0, 254});
    EXPECT_FALSE(isRowOpaque(row.row(0), 40));
    EXPECT_TRUE(isRowOpaque(row.row(0), 39));
    EXPECT_TRUE(isRowOpaque(row.row(0), 0));
}

} // namespace
} // namespace tavi
