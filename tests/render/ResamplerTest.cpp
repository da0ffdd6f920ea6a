#include "render/Resampler.h"

#include "support/Pictures.h"

#include <gtest/gtest.h>

namespace tavi {
namespace {

using test::Pixel;
using test::pixelAt;

/// The part `source` of a picture, scaled to fill a picture of that size.
PixelBuffer resampled(const PixelBuffer& picture, const Rect& source, int width, int height) {
    PixelBuffer out(width, height);
    Resampler resampler;
    resampler.begin(picture, source,
                    {0, 0, static_cast<double>(width), static_cast<double>(height)},
                    {0, 0, width, height});
    for (int y = 0; y < height; ++y) {
        resampler.writeRow(y, 0, width, out.row(y));
    }
    return out;
}

/// Black with one white column.
PixelBuffer columnPicture(int width, int height, int column) {
    PixelBuffer image = test::plainPicture(width, height, {0, 0, 0, 255});
    for (int y = 0; y < height; ++y) {
        test::setPixel(image, column, y, {255, 255, 255, 255});
    }
    return image;
}

struct Shape {
    int width;
    int height;
};

class ResamplerShapes : public testing::TestWithParam<Shape> {};

TEST_P(ResamplerShapes, anEvenPictureStaysEven) {
    const Pixel color{3, 128, 255, 200};
    const PixelBuffer even = test::plainPicture(37, 23, color);
    for (const Rect source : {Rect{0, 0, 37, 23}, Rect{3.37, 2.9, 12.01, 9.5},
                              Rect{36.4, 0.2, 0.3, 0.4}, Rect{-5, -5, 50, 50}}) {
        const PixelBuffer out = resampled(even, source, GetParam().width, GetParam().height);
        const PixelBuffer expected = test::plainPicture(GetParam().width, GetParam().height, color);
        EXPECT_EQ(test::largestDifference(out, expected), 0);
    }
}

TEST_P(ResamplerShapes, nothingFromOutsideTheCropShowsUp) {
    // Red inside of whole pixels 10..20 x 5..15, green all around.
    PixelBuffer picture = test::plainPicture(40, 30, {0, 255, 0, 255});
    for (int y = 5; y < 15; ++y) {
        for (int x = 10; x < 20; ++x) {
            test::setPixel(picture, x, y, {0, 0, 255, 255});
        }
    }
    for (const Rect crop :
         {Rect{10, 5, 10, 10}, Rect{10.25, 5.75, 9.5, 8.1}, Rect{19.5, 14.5, 0.5, 0.5}}) {
        const PixelBuffer out = resampled(picture, crop, GetParam().width, GetParam().height);
        const PixelBuffer expected =
            test::plainPicture(GetParam().width, GetParam().height, {0, 0, 255, 255});
        EXPECT_EQ(test::largestDifference(out, expected), 0);
    }
}

INSTANTIATE_TEST_SUITE_P(Sizes, ResamplerShapes,
                         testing::Values(Shape{1, 1}, Shape{2, 2}, Shape{7, 64}, Shape{37, 23},
                                         Shape{120, 75}));

TEST(Resampler, theSameSizeAtWholePixelsIsACopy) {
    const PixelBuffer noise = test::noisePicture(40, 30, 3);
    const PixelBuffer out = resampled(noise, {5, 7, 20, 10}, 20, 10);
    for (int y = 0; y < 10; ++y) {
        for (int x = 0; x < 20; ++x) {
            EXPECT_EQ(pixelAt(out, x, y), pixelAt(noise, x + 5, y + 7));
        }
    }
}

TEST(Resampler, enlargedContentIsInterpolatedBetweenPixelCentres) {
    PixelBuffer ramp(3, 1);
    for (int x = 0; x < 3; ++x) {
        test::setPixel(ramp, x, 0, {100 * x, 0, 0, 255});
    }
    const PixelBuffer out = resampled(ramp, {0, 0, 3, 1}, 12, 1);
    const std::array<int, 12> expected{0, 0, 13, 38, 63, 88, 113, 138, 163, 188, 200, 200};
    for (int x = 0; x < 12; ++x) {
        EXPECT_NEAR(pixelAt(out, x, 0).blue, expected[static_cast<std::size_t>(x)], 1) << x;
    }
}

TEST(Resampler, reducedContentAveragesItsArea) {
    PixelBuffer picture(8, 2);
    for (int x = 0; x < 8; ++x) {
        test::setPixel(picture, x, 0, {10 * x, 0, 0, 255});
        test::setPixel(picture, x, 1, {10 * x + 100, 0, 0, 255});
    }
    const PixelBuffer out = resampled(picture, {0, 0, 8, 2}, 2, 1);
    EXPECT_EQ(pixelAt(out, 0, 0).blue, 65);  // 0..3 and 100..130
    EXPECT_EQ(pixelAt(out, 1, 0).blue, 105); // 40..70 and 140..170
}

TEST(Resampler, nothingIsLostBetweenTheSamplesOfAReducedPicture) {
    for (int column = 0; column < 96; ++column) {
        const PixelBuffer out = resampled(columnPicture(96, 4, column), {0, 0, 96, 4}, 7, 2);
        double light = 0;
        for (int x = 0; x < 7; ++x) {
            light += pixelAt(out, x, 1).blue;
        }
        EXPECT_NEAR(light * 96 / 7, 255, 255 * 0.15) << column;
    }
}

struct Zoom {
    double factor;
};

class ResamplerMotion : public testing::TestWithParam<Zoom> {};

TEST_P(ResamplerMotion, aCropMovedByFractionsMovesThePictureSmoothly) {
    // The centre of gravity of a bright column follows the crop without steps.
    const int width = static_cast<int>(40 * GetParam().factor);
    const double factor = width / 40.0;
    const PixelBuffer picture = columnPicture(80, 4, 40);
    for (int step = 0; step <= 32; ++step) {
        const double left = 20 + step / 16.0;
        const PixelBuffer out = resampled(picture, {left, 0, 40, 4}, width, 4);
        double sum = 0;
        double moment = 0;
        for (int x = 0; x < width; ++x) {
            sum += pixelAt(out, x, 2).blue;
            moment += pixelAt(out, x, 2).blue * (x + 0.5);
        }
        ASSERT_GT(sum, 0);
        // A reduced column rests while it lies wholly within one pixel.
        const double tolerance = std::max(0.0, (1 - factor) / 2) + 0.05;
        EXPECT_NEAR(moment / sum, (40.5 - left) * factor, tolerance) << left;
    }
}

INSTANTIATE_TEST_SUITE_P(Zooms, ResamplerMotion,
                         testing::Values(Zoom{0.5}, Zoom{0.94}, Zoom{1}, Zoom{1.5}, Zoom{4}));

TEST(Resampler, smallStepsOfTheCropChangeThePictureLittle) {
    const PixelBuffer noise = test::noisePicture(64, 64, 4);
    PixelBuffer last = resampled(noise, {10, 10, 24, 24}, 60, 60);
    for (int step = 1; step <= 50; ++step) {
        PixelBuffer next = resampled(noise, {10 + step * 0.01, 10 + step * 0.01, 24, 24}, 60, 60);
        // A hundredth of a pixel on either axis, of at most 255 a pixel.
        EXPECT_LE(test::largestDifference(last, next), 7);
        last = std::move(next);
    }
}

TEST(Resampler, rowsMayBeAskedForInAnyOrderAndInParts) {
    const PixelBuffer noise = test::noisePicture(30, 20, 5);
    const Rect source{1.3, 2.1, 25.2, 15.7};
    for (const Shape shape : {Shape{50, 41}, Shape{13, 9}}) {
        const PixelBuffer expected = resampled(noise, source, shape.width, shape.height);
        Resampler resampler;
        resampler.begin(noise, source,
                        {0, 0, static_cast<double>(shape.width), static_cast<double>(shape.height)},
                        {0, 0, shape.width, shape.height});
        PixelBuffer out(shape.width, shape.height);
        for (int y = shape.height - 1; y >= 0; --y) {
            resampler.writeRow(y, 5, shape.width, out.row(y) + 20);
            resampler.writeRow(y, 0, 5, out.row(y));
        }
        EXPECT_EQ(test::largestDifference(out, expected), 0);
    }
}

TEST(AxisTaps, weightsAddUpToOneAndStayInsideTheCrop) {
    for (const double length : {0.2, 1.0, 5.5, 33.0, 100.0}) {
        for (const double start : {0.0, 0.4, 7.99}) {
            AxisTaps taps;
            taps.assign({start, length, 3.25, 20.5, 120}, 3, 24);
            for (int x = 3; x < 24; ++x) {
                int sum = 0;
                for (int i = 0; i < taps.count; ++i) {
                    sum += taps.weightsOf(x)[i];
                    if (taps.weightsOf(x)[i] > 0) {
                        EXPECT_GE(taps.firstOf(x) + i, std::floor(start));
                        EXPECT_LT(taps.firstOf(x) + i, std::ceil(start + length));
                    }
                    EXPECT_GE(taps.weightsOf(x)[i], 0);
                }
                EXPECT_EQ(sum, AxisTaps::kOne);
                EXPECT_GE(taps.firstOf(x), 0);
                EXPECT_LE(taps.firstOf(x) + taps.count, 120);
            }
        }
    }
}

} // namespace
} // namespace tavi
