#include "render/CameraBubble.h"

#include "support/Pictures.h"
#include "support/PixelArea.h"

#include <gtest/gtest.h>

#include <cmath>

namespace tavi {
namespace {

using test::Pixel;
using test::pixelAt;
using test::plainPicture;
using test::shared;

constexpr Pixel kGrey{90, 90, 90, 255};
constexpr Pixel kRed{0, 0, 255, 255};
constexpr Pixel kGreen{0, 255, 0, 255};
constexpr Pixel kBlue{255, 0, 0, 255};

/// A bubble of 100 pixels with a margin of 50 on an output of 500 x 400, plain
/// and square until a test says otherwise.
class Bubble : public testing::Test {
protected:
    Bubble() {
        settings.sizeFraction = 0.2;
        settings.marginFraction = 0.1;
        settings.borderWidth = 0;
        settings.shadowEnabled = false;
        settings.cornerRadius = 0;
    }

    PixelBuffer draw(const PixelBufferPtr& image, Size output = {500, 400}) const {
        PixelBuffer out =
            plainPicture(static_cast<int>(output.width), static_cast<int>(output.height), kGrey);
        CameraBubble(settings, output).draw(image, out);
        return out;
    }
    PixelBuffer draw() const { return draw(camera); }

    /// What differs from the grey, rows from the top.
    static PixelBounds changed(const PixelBuffer& image) {
        return test::areaDifferingFrom(image, kGrey);
    }

    CameraSettings settings;
    PixelBufferPtr camera = shared(plainPicture(64, 48, kRed));
};

struct Corner {
    CameraPosition position;
    Rect rect;          ///< From the bottom left.
    PixelBounds pixels; ///< From the top.
};

class BubbleCorner : public Bubble, public testing::WithParamInterface<Corner> {};

TEST_P(BubbleCorner, isTheOneOfThePosition) {
    settings.position = GetParam().position;
    EXPECT_EQ(cameraBubbleRect(settings, {500, 400}), GetParam().rect);
    EXPECT_EQ(changed(draw()), GetParam().pixels);
}

INSTANTIATE_TEST_SUITE_P(
    Positions, BubbleCorner,
    testing::Values(Corner{CameraPosition::bottomRight, {350, 50, 100, 100}, {350, 250, 450, 350}},
                    Corner{CameraPosition::bottomLeft, {50, 50, 100, 100}, {50, 250, 150, 350}},
                    Corner{CameraPosition::topRight, {350, 250, 100, 100}, {350, 50, 450, 150}},
                    Corner{CameraPosition::topLeft, {50, 250, 100, 100}, {50, 50, 150, 150}}));

TEST_F(Bubble, isAbsentWithoutAPositiveSize) {
    for (const double fraction : {0.0, -0.2, std::nan(""), HUGE_VAL}) {
        settings.sizeFraction = fraction;
        EXPECT_FALSE(cameraBubbleRect(settings, {500, 400})) << fraction;
        EXPECT_TRUE(changed(draw()).empty());
    }
}

TEST_F(Bubble, isAbsentWithoutAPicture) {
    settings.shadowEnabled = true;
    EXPECT_TRUE(changed(draw(nullptr)).empty());
    EXPECT_TRUE(changed(draw(shared(PixelBuffer()))).empty());
}

/// Red with a green stripe of 5 pixels at both ends of the longer axis.
PixelBufferPtr stripedCamera(int width, int height) {
    PixelBuffer image = plainPicture(width, height, kRed);
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            const int along = width > height ? x : y;
            if (along < 5 || along >= std::max(width, height) - 5) {
                test::setPixel(image, x, y, kGreen);
            }
        }
    }
    return shared(std::move(image));
}

TEST_F(Bubble, aWideOrTallCameraFillsTheSquareCentred) {
    // 50 pixels of the longer side are shown, 15 cut off at each end.
    for (const auto& image : {stripedCamera(80, 50), stripedCamera(50, 80)}) {
        const PixelBuffer out = draw(image);
        EXPECT_EQ(changed(out), (PixelBounds{350, 250, 450, 350}));
        for (int i = 0; i < 100; ++i) {
            EXPECT_EQ(pixelAt(out, 350 + i, 300), kRed);
            EXPECT_EQ(pixelAt(out, 400, 250 + i), kRed);
        }
    }
    // 60 x 50: the stripes are exactly what is cut off.
    EXPECT_EQ(pixelAt(draw(stripedCamera(60, 50)), 350, 300), kRed);
    // 58 x 50: one column of each stripe is left, 2 pixels when enlarged.
    const PixelBuffer out = draw(stripedCamera(58, 50));
    EXPECT_EQ(pixelAt(out, 350, 300), kGreen);
    EXPECT_EQ(pixelAt(out, 449, 300), kGreen);
    EXPECT_EQ(pixelAt(out, 354, 300), kRed);
    EXPECT_EQ(pixelAt(out, 445, 300), kRed);
}

TEST_F(Bubble, isNotMirrored) {
    PixelBuffer image = plainPicture(60, 60, kRed);
    for (int y = 0; y < 60; ++y) {
        for (int x = 0; x < 30; ++x) {
            test::setPixel(image, x, y, y < 30 ? kBlue : kGreen);
        }
    }
    const PixelBuffer out = draw(shared(std::move(image)));
    EXPECT_EQ(pixelAt(out, 375, 275), kBlue);
    EXPECT_EQ(pixelAt(out, 375, 325), kGreen);
    EXPECT_EQ(pixelAt(out, 425, 275), kRed);
}

TEST_F(Bubble, isADiscWithALargeRadius) {
    settings.cornerRadius = 1000;
    const PixelBuffer out = draw();
    EXPECT_EQ(pixelAt(out, 400, 300), kRed);
    EXPECT_EQ(pixelAt(out, 351, 251), kGrey);
    for (int y = 250; y < 350; ++y) {
        for (int x = 350; x < 450; ++x) {
            const double distance = std::hypot(x + 0.5 - 400, y + 0.5 - 300);
            if (std::abs(distance - 50) > 1) {
                EXPECT_EQ(pixelAt(out, x, y), distance < 50 ? kRed : kGrey) << x << ", " << y;
            }
        }
    }
}

TEST_F(Bubble, theRimLiesInsideItsEdgeInItsColour) {
    settings.borderWidth = 4;
    settings.borderColor = {0, 0, 1, 0.5};
    const PixelBuffer out = draw();
    EXPECT_EQ(changed(out), (PixelBounds{350, 250, 450, 350}));
    for (const int inside : {0, 3}) {
        const Pixel rim = pixelAt(out, 350 + inside, 300);
        EXPECT_NEAR(rim.red, 127, 1);
        EXPECT_NEAR(rim.blue, 128, 1);
    }
    EXPECT_EQ(pixelAt(out, 354, 300), kRed);
    settings.borderWidth = -4;
    EXPECT_EQ(pixelAt(draw(), 350, 300), kRed);
    settings.borderWidth = 200; // no room for its middle line
    EXPECT_EQ(pixelAt(draw(), 400, 300), kRed);
}

TEST_F(Bubble, theShadowReaches24PixelsAndFades) {
    settings.shadowEnabled = true;
    const PixelBuffer out = draw();
    const PixelBounds area = changed(out);
    EXPECT_GE(area.left, 350 - 24);
    EXPECT_LE(area.left, 350 - 18);
    EXPECT_LE(area.bottom, 350 + 24);
    EXPECT_GE(area.bottom, 350 + 18);
    EXPECT_EQ(pixelAt(out, 400, 300), kRed);
    // Half of the alpha 0.4 at a straight edge.
    EXPECT_NEAR(pixelAt(out, 349, 300).blue, 90 * (1 - 0.4 * 0.475), 2);
    EXPECT_LT(pixelAt(out, 349, 300).blue, pixelAt(out, 341, 300).blue);
    EXPECT_EQ(pixelAt(out, 349, 300), pixelAt(out, 450, 300));
    EXPECT_EQ(pixelAt(out, 400, 249), pixelAt(out, 400, 350)); // no offset
}

TEST_F(Bubble, whatHangsOverTheOutputIsCutOffButThrowsItsShadow) {
    settings.marginFraction = -0.1;
    EXPECT_EQ(changed(draw()), (PixelBounds{450, 350, 500, 400}));
    settings.marginFraction = -0.21; // 5 pixels outside of the corner
    EXPECT_TRUE(changed(draw()).empty());
    settings.shadowEnabled = true;
    EXPECT_FALSE(changed(draw()).empty());
    settings.marginFraction = -5;
    EXPECT_TRUE(changed(draw()).empty());
    settings.marginFraction = std::nan("");
    EXPECT_TRUE(changed(draw()).empty());
    settings.marginFraction = 0;
    settings.sizeFraction = 1000;
    EXPECT_EQ(pixelAt(draw(), 250, 200), kRed);
}

TEST_F(Bubble, standsOnTheBottomOfAFrameWithARowTooMany) {
    PixelBuffer out = plainPicture(500, 400, kGrey);
    settings.position = CameraPosition::bottomLeft;
    CameraBubble(settings, {500, 399}).draw(camera, out);
    EXPECT_EQ(changed(out), (PixelBounds{50, 250, 150, 350}));
    settings.position = CameraPosition::topLeft;
    out = plainPicture(500, 400, kGrey);
    CameraBubble(settings, {500, 399}).draw(camera, out);
    EXPECT_EQ(changed(out), (PixelBounds{50, 51, 150, 151}));
}

TEST_F(Bubble, followsTheCameraFrameByFrame) {
    CameraBubble bubble(settings, {500, 400});
    PixelBuffer out = plainPicture(500, 400, kGrey);
    bubble.draw(camera, out);
    bubble.draw(shared(plainPicture(30, 90, kBlue)), out);
    EXPECT_EQ(pixelAt(out, 400, 300), kBlue);
    bubble.draw(camera, out);
    EXPECT_EQ(test::largestDifference(out, draw()), 0);
}

} // namespace
} // namespace tavi
