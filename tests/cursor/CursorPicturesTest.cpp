#include "cursor/CursorPictures.h"

#include "support/Pictures.h"

#include <gtest/gtest.h>

#include <thread>
#include <vector>

namespace tavi {
namespace {

using test::Pixel;
using test::pixelAt;
using test::plainPicture;
using test::shared;

/// Leaves the process without a desktop arrow, before and after.
class CursorPictures : public testing::Test {
protected:
    CursorPictures() { setDesktopArrow(nullptr); }
    ~CursorPictures() override { setDesktopArrow(nullptr); }
};

TEST_F(CursorPictures, theBuiltInArrowIsRoundedUpToWholePixels) {
    const PixelBufferPtr arrow = pointerImage(22);
    EXPECT_EQ(arrow->width(), 17);
    EXPECT_EQ(arrow->height(), 24);
    const PixelBufferPtr larger = pointerImage(23);
    EXPECT_EQ(larger->width(), 18);
    EXPECT_EQ(larger->height(), 26);
}

TEST_F(CursorPictures, theBuiltInArrowHasItsTipAtTheTopLeft) {
    const PixelBufferPtr arrow = pointerImage(220); // ten pixels a unit
    EXPECT_EQ(pixelAt(*arrow, 40, 100), (Pixel{255, 255, 255, 255}));
    EXPECT_EQ(pixelAt(*arrow, 100, 195).alpha, 255); // the tail, towards the bottom
    EXPECT_EQ(pixelAt(*arrow, 150, 30).alpha, 0);    // right of the tip
    EXPECT_EQ(pixelAt(*arrow, 30, 225).alpha, 0);    // below the left side
    const Pixel rim = pixelAt(*arrow, 12, 100);      // the outline over the white inside
    EXPECT_NEAR(rim.blue, 38, 2);
    EXPECT_EQ(rim.alpha, 255);
    EXPECT_NEAR(pixelAt(*arrow, 7, 100).alpha, 217, 2); // and beyond it
}

TEST_F(CursorPictures, theBuiltInArrowIsKeptButGivesWayToTheDesktops) {
    const PixelBufferPtr builtIn = pointerImage(20);
    EXPECT_EQ(pointerImage(20), builtIn);
    setDesktopArrow(shared(plainPicture(12, 24, {0, 0, 200, 255})));
    EXPECT_NE(pointerImage(20), builtIn);
    setDesktopArrow(nullptr);
    EXPECT_EQ(pointerImage(20), builtIn);
}

TEST_F(CursorPictures, theDesktopsArrowIsScaledToTheSizeAndKept) {
    setDesktopArrow(shared(plainPicture(12, 24, {0, 0, 200, 255})));
    const PixelBufferPtr arrow = pointerImage(20);
    EXPECT_EQ(arrow->width(), 10);
    EXPECT_EQ(arrow->height(), 20);
    EXPECT_EQ(pixelAt(*arrow, 0, 0), (Pixel{0, 0, 200, 255}));
    EXPECT_EQ(pixelAt(*arrow, 9, 19), (Pixel{0, 0, 200, 255}));
    EXPECT_EQ(pointerImage(20), arrow);
    const PixelBufferPtr other = pointerImage(20.5);
    EXPECT_EQ(other->height(), 21);
    EXPECT_NE(pointerImage(20), arrow); // the slot holds the last size only
}

TEST_F(CursorPictures, aNewDesktopArrowReplacesWhatWasKept) {
    setDesktopArrow(shared(plainPicture(12, 24, {0, 0, 200, 255})));
    const PixelBufferPtr first = pointerImage(20);
    setDesktopArrow(shared(plainPicture(24, 24, {0, 200, 0, 255})));
    EXPECT_EQ(pointerImage(20)->width(), 20);
    setDesktopArrow(nullptr);
    EXPECT_EQ(pointerImage(22)->width(), 17);
}

TEST_F(CursorPictures, theCircleIsAWhiteDiscWithAShadowBelow) {
    const PixelBufferPtr circle = circleImage(39.2);
    ASSERT_EQ(circle->width(), 40);
    ASSERT_EQ(circle->height(), 40);
    const Pixel middle = pixelAt(*circle, 20, 20);
    EXPECT_NEAR(middle.blue, 242, 1); // white of alpha 0.95, premultiplied
    EXPECT_NEAR(middle.alpha, 242 + 13 * 0.475, 1.5);
    // Black half a pixel outside of the disc, more below than above.
    EXPECT_LT(pixelAt(*circle, 20, 1).blue, 5);
    EXPECT_GT(pixelAt(*circle, 20, 38).alpha, pixelAt(*circle, 20, 1).alpha + 20);
    EXPECT_EQ(pixelAt(*circle, 1, 20).alpha, pixelAt(*circle, 38, 20).alpha);
    EXPECT_LE(pixelAt(*circle, 0, 0).alpha, 1);
}

TEST_F(CursorPictures, theCirclesShadowIsAGaussianOneDown) {
    // A disc so large that its edge is straight: the blurred edge is half as dark
    // (0.95 * 0.5 / 2) one pixel below it, and follows the normal distribution.
    const PixelBufferPtr circle = circleImage(400);
    const double full = 255 * 0.95 * 0.5;
    for (int below = 0; below < 2; ++below) { // rows 398 and 399; the disc ends at 398
        const double distance = below + 0.5 - 1;
        const double share = 0.5 * std::erfc(distance / (1.5 * std::sqrt(2.0)));
        EXPECT_NEAR(pixelAt(*circle, 200, 398 + below).alpha, full * share, full * 0.08) << below;
    }
}

TEST_F(CursorPictures, theCircleIsKeptForItsExactSize) {
    const PixelBufferPtr circle = circleImage(30);
    EXPECT_EQ(circleImage(30), circle);
    EXPECT_NE(circleImage(30.0001), circle);
}

TEST_F(CursorPictures, aSystemPictureTakesTheAspectOfItsInfo) {
    const std::vector<PixelBufferPtr> images{shared(plainPicture(10, 10, {200, 0, 0, 255}))};
    const std::vector<CursorImageInfo> infos{{0, 0, 15, 10}};
    const PixelBufferPtr picture = systemImage(0, 20.3, images, infos);
    EXPECT_EQ(picture->width(), 31);
    EXPECT_EQ(picture->height(), 21);
    EXPECT_EQ(pixelAt(*picture, 30, 20), (Pixel{200, 0, 0, 255}));
    EXPECT_EQ(systemImage(0, 20.3, images, infos), picture);
    EXPECT_EQ(systemImage(0, 20, images, {})->width(), 20); // of the pixels, without an info
}

TEST_F(CursorPictures, systemPicturesAreKeptById) {
    const std::vector<PixelBufferPtr> images{shared(plainPicture(10, 10, {200, 0, 0, 255})),
                                             shared(plainPicture(10, 10, {0, 200, 0, 255}))};
    const PixelBufferPtr first = systemImage(0, 20, images, {});
    const PixelBufferPtr second = systemImage(1, 20, images, {});
    EXPECT_EQ(systemImage(0, 20, images, {}), first);
    EXPECT_EQ(systemImage(1, 20, images, {}), second);
}

TEST_F(CursorPictures, anotherTakesPictureOfTheSameIdIsNotMistakenForIt) {
    const std::vector<PixelBufferPtr> one{shared(plainPicture(10, 10, {200, 0, 0, 255}))};
    const std::vector<PixelBufferPtr> two{shared(plainPicture(10, 10, {0, 200, 0, 255}))};
    EXPECT_EQ(pixelAt(*systemImage(0, 20, one, {}), 5, 5).blue, 200);
    EXPECT_EQ(pixelAt(*systemImage(0, 20, two, {}), 5, 5).green, 200);
}

TEST_F(CursorPictures, whatIsNoSystemPictureShowsThePointer) {
    setDesktopArrow(shared(plainPicture(12, 24, {0, 0, 200, 255})));
    const std::vector<PixelBufferPtr> images{shared(plainPicture(10, 10, {200, 0, 0, 255})),
                                             shared(PixelBuffer())};
    const std::vector<CursorImageInfo> flat{{0, 0, 15, 0}, {0, 0, 5, 5}};
    const PixelBufferPtr pointer = pointerImage(20);
    EXPECT_EQ(systemImage(2, 20, images, {}), pointer);
    EXPECT_EQ(systemImage(-1, 20, images, {}), pointer);
    EXPECT_EQ(systemImage(0, 20, images, flat), pointer); // no height
    EXPECT_EQ(systemImage(1, 20, images, flat), pointer); // no pixels
    EXPECT_EQ(systemImage(0, 20, {}, {}), pointer);
}

TEST_F(CursorPictures, sizesBeyondReasonGiveAnEmptyOrALimitedPicture) {
    const std::vector<PixelBufferPtr> images{shared(plainPicture(10, 10, {200, 0, 0, 255}))};
    for (const double size : {0.0, -3.0, std::nan("")}) {
        EXPECT_TRUE(pointerImage(size)->empty());
        EXPECT_TRUE(circleImage(size)->empty());
        EXPECT_TRUE(systemImage(0, size, images, {})->empty());
        EXPECT_TRUE(clickEffectImage(1, 2, 0, size).image->empty());
    }
    EXPECT_EQ(circleImage(4)->width(), 4); // no room for the disc
    EXPECT_EQ(circleImage(1e12)->width(), 2048);
}

TEST_F(CursorPictures, theRippleIsPlacedAroundItsPointAndGrows) {
    const PlacedPicture start = clickEffectImage(100, 50, 0, 20);
    EXPECT_EQ(start.image->width(), 40);
    EXPECT_EQ(start.origin, (Point{80, 30}));
    const PlacedPicture end = clickEffectImage(100, 50, 0.99999, 20);
    EXPECT_EQ(end.image->width(), 100);
    EXPECT_NEAR(end.origin.x, 50, 0.001);
    const PlacedPicture half = clickEffectImage(0, 0, 0.5, 20.3);
    EXPECT_EQ(half.image->width(), 72); // twice 1.75 * 20.3 = 71.05, rounded up
}

TEST_F(CursorPictures, theRippleFadesAndHasABrighterRim) {
    const PlacedPicture ripple = clickEffectImage(0, 0, 0.25, 40);
    const int middle = ripple.image->width() / 2;
    EXPECT_NEAR(pixelAt(*ripple.image, middle, middle).alpha, 255 * 0.3, 1);
    EXPECT_GT(pixelAt(*ripple.image, middle, 2).alpha, 255 * 0.3 + 20);
    EXPECT_LE(pixelAt(*ripple.image, middle, 0).alpha, 1);
    EXPECT_EQ(pixelAt(*ripple.image, 1, 1).alpha, 0);
}

TEST_F(CursorPictures, manyThreadsMayAskAtOnce) {
    const std::vector<PixelBufferPtr> images{shared(plainPicture(10, 10, {200, 0, 0, 255}))};
    setDesktopArrow(shared(plainPicture(12, 24, {0, 0, 200, 255})));
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t) {
        threads.emplace_back([&, t] {
            for (int i = 1; i < 50; ++i) {
                const double size = 5 + (i * 7 + t) % 13;
                EXPECT_EQ(pointerImage(size)->height(), size);
                EXPECT_EQ(circleImage(size)->height(), size);
                EXPECT_EQ(systemImage(0, size, images, {})->height(), size);
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
}

} // namespace
} // namespace tavi
