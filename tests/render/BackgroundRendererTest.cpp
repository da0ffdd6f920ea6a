#include "render/BackgroundRenderer.h"

#include "render/BackgroundPictures.h"
#include "render/RenderGeometry.h"
#include "support/Pictures.h"

#include <gtest/gtest.h>

namespace tavi {
namespace {

using test::Pixel;
using test::pixelAt;
using test::plainPicture;
using test::shared;

constexpr Pixel kBlack{0, 0, 0, 255};
constexpr Pixel kWhite{255, 255, 255, 255};
constexpr Pixel kVideo{40, 80, 160, 255};

/// Square corners, no padding, no shadow, black behind.
AppearanceSettings plainSettings() {
    AppearanceSettings settings;
    settings.backgroundStyle = BackgroundStyle::solidBlack;
    settings.padding = 0;
    settings.cornerRadius = 0;
    settings.shadowEnabled = false;
    return settings;
}

Rect whole(const PixelBufferPtr& frame) {
    return {0, 0, static_cast<double>(frame->width()), static_cast<double>(frame->height())};
}

PixelBuffer composed(BackgroundRenderer& renderer, const PixelBufferPtr& frame, const Rect& source,
                     double time = 0) {
    const FrameSize size = frameSizeFor(renderer.outputSize());
    PixelBuffer out(size.width, size.height);
    renderer.compose(frame, source, time, out);
    return out;
}

PixelBuffer composed(const AppearanceSettings& settings, Size output, const PixelBufferPtr& frame) {
    BackgroundRenderer renderer(settings, output);
    return composed(renderer, frame, whole(frame));
}

/// The smallest rectangle around the pixels that aren't `ground`, rows from the top.
PixelBounds drawnArea(const PixelBuffer& image, Pixel ground) {
    PixelBounds area{image.width(), image.height(), 0, 0};
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            if (pixelAt(image, x, y) != ground) {
                area = {std::min(area.left, x), std::min(area.top, y), std::max(area.right, x + 1),
                        std::max(area.bottom, y + 1)};
            }
        }
    }
    return area;
}

TEST(BackgroundRenderer, publishesIdentityBeforeTheFirstFrame) {
    const BackgroundRenderer renderer(plainSettings(), {80, 60});
    EXPECT_EQ(renderer.contentScale(), 1.0);
    EXPECT_EQ(renderer.contentOffset(), Point{});
}

TEST(BackgroundRenderer, withoutPaddingAndWithTheOutputsAspectTheContentFillsTheOutput) {
    const PixelBuffer out =
        composed(plainSettings(), {80, 60}, shared(plainPicture(40, 30, kVideo)));
    EXPECT_EQ(test::largestDifference(out, plainPicture(80, 60, kVideo)), 0);
}

TEST(BackgroundRenderer, roundedCornersShowTheBackgroundEvenWithoutPadding) {
    AppearanceSettings settings = plainSettings();
    settings.cornerRadius = 10;
    const PixelBuffer out = composed(settings, {80, 60}, shared(plainPicture(40, 30, kVideo)));
    for (const auto& [x, y] : {std::pair{0, 0}, {79, 0}, {0, 59}, {79, 59}}) {
        EXPECT_EQ(pixelAt(out, x, y), kBlack);
    }
    EXPECT_EQ(pixelAt(out, 40, 0), kVideo);
    EXPECT_EQ(pixelAt(out, 0, 30), kVideo);
    EXPECT_EQ(pixelAt(out, 3, 3), kVideo); // on the arc's inner side: 10 * (1 - sqrt(1/2)) = 2.93
}

TEST(BackgroundRenderer, anotherAspectIsLetterboxedAndTheBackgroundShowsOnTwoSides) {
    BackgroundRenderer renderer(plainSettings(), {80, 60});
    const auto frame = shared(plainPicture(40, 20, kVideo));
    const PixelBuffer out = composed(renderer, frame, whole(frame));
    EXPECT_EQ(renderer.contentScale(), 2.0);
    EXPECT_EQ(renderer.contentOffset(), (Point{0, 10}));
    EXPECT_EQ(drawnArea(out, kBlack), (PixelBounds{0, 10, 80, 50}));
}

TEST(BackgroundRenderer, eachAxisIsPaddedByItsOwnLength) {
    AppearanceSettings settings = plainSettings();
    settings.padding = 0.1;
    BackgroundRenderer renderer(settings, {200, 100});
    const auto frame = shared(plainPicture(40, 20, kVideo));
    const PixelBuffer out = composed(renderer, frame, whole(frame));
    EXPECT_EQ(drawnArea(out, kBlack), (PixelBounds{20, 10, 180, 90}));
    EXPECT_EQ(renderer.contentScale(), 4.0);
    EXPECT_EQ(renderer.contentOffset(), (Point{20, 10}));
}

TEST(BackgroundRenderer, aCropIsEnlargedAndStandsTheRightWayUp) {
    // The bottom left quarter of the video, in video coordinates from the bottom.
    PixelBuffer picture = plainPicture(40, 30, kVideo);
    for (int y = 15; y < 30; ++y) {
        for (int x = 0; x < 20; ++x) {
            test::setPixel(picture, x, y, y < 20 ? kWhite : kBlack);
        }
    }
    BackgroundRenderer renderer(plainSettings(), {80, 60});
    const PixelBuffer out = composed(renderer, shared(std::move(picture)), {0, 0, 20, 15});
    EXPECT_EQ(renderer.contentScale(), 4.0);
    EXPECT_EQ(pixelAt(out, 0, 0), kWhite);
    EXPECT_EQ(pixelAt(out, 79, 17), kWhite);
    EXPECT_EQ(pixelAt(out, 79, 22), kBlack);
    EXPECT_EQ(pixelAt(out, 0, 59), kBlack);
}

TEST(BackgroundRenderer, aCropTallerThanTheVideoShowsTheBackgroundAboveIt) {
    BackgroundRenderer renderer(plainSettings(), {60, 60});
    const auto frame = shared(plainPicture(40, 20, kVideo));
    const PixelBuffer out = composed(renderer, frame, {10, 0, 30, 30});
    EXPECT_EQ(renderer.contentScale(), 2.0);
    EXPECT_EQ(drawnArea(out, kBlack), (PixelBounds{0, 20, 60, 60}));
}

TEST(BackgroundRenderer, aCropOutsideOfTheVideoShowsTheBackground) {
    BackgroundRenderer renderer(plainSettings(), {60, 60});
    const auto frame = shared(plainPicture(40, 20, kVideo));
    for (const Rect crop : {Rect{100, 0, 10, 10}, Rect{-20, 5, 10, 10}, Rect{0, 21, 10, 10}}) {
        EXPECT_EQ(
            test::largestDifference(composed(renderer, frame, crop), plainPicture(60, 60, kBlack)),
            0);
    }
}

TEST(BackgroundRenderer, contentEdgesBetweenPixelsAreCoveredByArea) {
    AppearanceSettings settings = plainSettings();
    settings.padding = 0.025; // 1.5 of 60, 2.5 of 100
    const PixelBuffer out =
        composed(settings, {100, 60}, shared(plainPicture(95, 57, {200, 200, 200, 255})));
    EXPECT_EQ(pixelAt(out, 1, 30), kBlack);
    EXPECT_NEAR(pixelAt(out, 2, 30).blue, 100, 1);
    EXPECT_EQ(pixelAt(out, 3, 30).blue, 200);
    EXPECT_NEAR(pixelAt(out, 50, 1).blue, 100, 1);
    EXPECT_NEAR(pixelAt(out, 50, 58).blue, 100, 1);
}

TEST(BackgroundRenderer, translucentContentLetsTheBackgroundThrough) {
    AppearanceSettings settings = plainSettings();
    settings.backgroundStyle = BackgroundStyle::solidWhite;
    const PixelBuffer out =
        composed(settings, {20, 20}, shared(plainPicture(10, 10, {0, 0, 0, 51})));
    EXPECT_EQ(pixelAt(out, 10, 10), (Pixel{204, 204, 204, 255}));
}

// Shadows.

AppearanceSettings shadowSettings(double cornerRadius) {
    AppearanceSettings settings = plainSettings();
    settings.backgroundStyle = BackgroundStyle::solidWhite;
    settings.padding = 0.25;
    settings.cornerRadius = cornerRadius;
    settings.shadowEnabled = true;
    settings.shadowRadius = 8;
    settings.shadowOpacity = 0.5;
    return settings;
}

TEST(BackgroundRenderer, theShadowFallsEvenlyOnAllSidesAndEndsAtThreeDeviations) {
    const PixelBuffer out =
        composed(shadowSettings(0), {200, 200}, shared(plainPicture(10, 10, kWhite)));
    // Content on 50..150. Half of the opacity at the edge, by the symmetry of the blur.
    EXPECT_NEAR(pixelAt(out, 49, 100).blue, 255 - 255 * 0.25, 6);
    for (int i = 0; i < 30; ++i) {
        const Pixel left = pixelAt(out, 49 - i, 100);
        EXPECT_EQ(left, pixelAt(out, 150 + i, 100));
        EXPECT_EQ(left, pixelAt(out, 100, 49 - i));
        EXPECT_EQ(left, pixelAt(out, 100, 150 + i));
    }
    EXPECT_LT(pixelAt(out, 50 - 16, 100).blue, 255);
    EXPECT_EQ(pixelAt(out, 50 - 25, 100), kWhite);
}

TEST(BackgroundRenderer, aSquareShadowFollowsTheContent) {
    BackgroundRenderer renderer(shadowSettings(0), {200, 200});
    const auto frame = shared(plainPicture(40, 40, kWhite));
    composed(renderer, frame, whole(frame));
    // A wide crop: content on 50..150 x 75..125.
    const PixelBuffer wide = composed(renderer, frame, {0, 0, 40, 20});
    EXPECT_EQ(pixelAt(wide, 100, 45), kWhite);
    EXPECT_LT(pixelAt(wide, 100, 74).blue, 210);
    BackgroundRenderer fresh(shadowSettings(0), {200, 200});
    EXPECT_EQ(test::largestDifference(wide, composed(fresh, frame, {0, 0, 40, 20})), 0);
}

TEST(BackgroundRenderer, aRoundedShadowStaysThatOfTheFirstFrame) {
    BackgroundRenderer renderer(shadowSettings(5), {200, 200});
    const auto frame = shared(plainPicture(40, 40, kWhite));
    const PixelBuffer first = composed(renderer, frame, whole(frame));
    const PixelBuffer wide = composed(renderer, frame, {0, 0, 40, 20});
    // Above the wide content lies the square shadow of the first.
    EXPECT_EQ(pixelAt(wide, 100, 45), pixelAt(first, 100, 45));
    EXPECT_LT(pixelAt(wide, 100, 60).blue, 140);
    EXPECT_EQ(pixelAt(wide, 20, 100), pixelAt(first, 20, 100));
}

TEST(BackgroundRenderer, contentThatFillsTheOutputHidesItsShadow) {
    AppearanceSettings settings = shadowSettings(0);
    settings.padding = 0;
    const PixelBuffer out = composed(settings, {60, 60}, shared(plainPicture(30, 30, kVideo)));
    EXPECT_EQ(test::largestDifference(out, plainPicture(60, 60, kVideo)), 0);
}

TEST(BackgroundRenderer, theShadowsCornersAreRoundWithTheContents) {
    AppearanceSettings settings = shadowSettings(50);
    settings.shadowRadius = 0;
    settings.shadowOpacity = 1;
    PixelBuffer clear(10, 10);
    const PixelBuffer out = composed(settings, {200, 200}, shared(std::move(clear)));
    EXPECT_EQ(pixelAt(out, 100, 100), kBlack);
    EXPECT_EQ(pixelAt(out, 52, 52), kWhite);
    EXPECT_EQ(pixelAt(out, 51, 100), kBlack);
}

// Backgrounds.

TEST(BackgroundRenderer, solidBackgroundsHaveTheirColour) {
    const auto clear = shared(PixelBuffer(4, 4));
    AppearanceSettings settings = plainSettings();
    settings.solidColor = {0.2, 0.4, 0.6, 1};
    settings.backgroundStyle = BackgroundStyle::solidBlack;
    EXPECT_EQ(pixelAt(composed(settings, {8, 8}, clear), 3, 3), kBlack);
    settings.backgroundStyle = BackgroundStyle::solidWhite;
    EXPECT_EQ(pixelAt(composed(settings, {8, 8}, clear), 3, 3), kWhite);
    settings.backgroundStyle = BackgroundStyle::solidCustom;
    EXPECT_EQ(pixelAt(composed(settings, {8, 8}, clear), 3, 3), (Pixel{153, 102, 51, 255}));
    settings.solidColor = {2, -1, NAN, 0.5}; // limited, and shown as over black
    EXPECT_EQ(pixelAt(composed(settings, {8, 8}, clear), 3, 3), (Pixel{0, 0, 128, 255}));
}

TEST(BackgroundRenderer, aGradientRunsAlongItsAngle) {
    // "moss", 90 degrees: from the bottom to the top over the whole height.
    const PixelBuffer out = gradientImage(gradientPreset(4), {100, 100}, 100, 100);
    EXPECT_NEAR(pixelAt(out, 50, 99).red, 0.1 * 255, 1);
    EXPECT_NEAR(pixelAt(out, 50, 0).red, 0.2 * 255, 1);
    EXPECT_NEAR(pixelAt(out, 0, 50).green, 0.425 * 255, 1);
    EXPECT_EQ(pixelAt(out, 0, 30), pixelAt(out, 99, 30));
}

TEST(BackgroundRenderer, aGradientsEndColoursGoOnBeyondItsEnds) {
    // "sunset", 45 degrees: the ramp is as long as the longer side, the corners lie beyond it.
    const PixelBuffer out = gradientImage(gradientPreset(1), {200, 100}, 200, 100);
    EXPECT_EQ(pixelAt(out, 0, 99), (Pixel{51, 77, 242, 255}));
    EXPECT_EQ(pixelAt(out, 199, 0), (Pixel{26, 153, 242, 255}));
    EXPECT_NEAR(pixelAt(out, 100, 50).green, 0.45 * 255, 2);
}

TEST(BackgroundRenderer, gradientIndicesOutsideOfTheTableShowTheNearestPreset) {
    EXPECT_EQ(gradientPreset(-1).id, "midnight");
    EXPECT_EQ(gradientPreset(100).id, "candy");
    EXPECT_EQ(gradientPreset(3).id, "berry");
    EXPECT_EQ(gradientPresets().size(), 8u);
}

TEST(BackgroundRenderer, wallpaperBlobsFadeFromTheirCentreToTheirRadius) {
    const Wallpaper one{{0, 0, 0, 1}, {{{0.25, 0.25, 0.2, {1, 1, 1, 0.5}}, {}, {}}}};
    PixelBuffer out(400, 200);
    drawWallpaper(one, {400, 200}, out);
    // Centre at (100, 50) from the bottom, radius 80.
    EXPECT_NEAR(pixelAt(out, 100, 150).red, 127, 2);
    EXPECT_NEAR(pixelAt(out, 140, 150).red, 63, 2);
    EXPECT_NEAR(pixelAt(out, 100, 110).red, 63, 2);
    EXPECT_EQ(pixelAt(out, 181, 150), kBlack);
    EXPECT_EQ(pixelAt(out, 100, 50), kBlack);
}

TEST(BackgroundRenderer, aStillWallpaperIsTheSameAtAllTimes) {
    AppearanceSettings settings = plainSettings();
    settings.backgroundStyle = BackgroundStyle::wallpaper;
    BackgroundRenderer renderer(settings, {64, 36});
    const auto clear = shared(PixelBuffer(4, 4));
    const PixelBuffer first = composed(renderer, clear, whole(clear), 0);
    EXPECT_EQ(test::largestDifference(first, composed(renderer, clear, whole(clear), 7)), 0);
    PixelBuffer drawn(64, 36);
    drawWallpaper(wallpaper(WallpaperPreset::aurora), {64, 36}, drawn);
    EXPECT_EQ(test::largestDifference(first, drawn), 0);
}

TEST(BackgroundRenderer, aMovingWallpaperIsTheSameAtTheSameTime) {
    AppearanceSettings settings = plainSettings();
    settings.backgroundStyle = BackgroundStyle::wallpaper;
    settings.animateBackground = true;
    BackgroundRenderer renderer(settings, {64, 36});
    const auto clear = shared(PixelBuffer(4, 4));
    const PixelBuffer first = composed(renderer, clear, whole(clear), 3);
    const PixelBuffer later = composed(renderer, clear, whole(clear), 8);
    EXPECT_GT(test::largestDifference(first, later), 3);
    EXPECT_EQ(test::largestDifference(first, composed(renderer, clear, whole(clear), 3)), 0);
}

TEST(BackgroundRenderer, aMovingWallpaperHasTheSameCentresAfterTwentySeconds) {
    const Wallpaper& still = wallpaper(WallpaperPreset::ocean);
    const Wallpaper start = movedWallpaper(still, 0);
    const Wallpaper turn = movedWallpaper(still, 20);
    for (std::size_t i = 0; i < 3; ++i) {
        EXPECT_NEAR(start.blobs[i].cx, turn.blobs[i].cx, 1e-12);
        EXPECT_NEAR(start.blobs[i].cy, turn.blobs[i].cy, 1e-12);
    }
    EXPECT_DOUBLE_EQ(start.blobs[0].cx, 0.25);
    EXPECT_DOUBLE_EQ(start.blobs[0].cy, 0.45);
    EXPECT_NE(start.blobs[0].radiusFraction, turn.blobs[0].radiusFraction);
}

AppearanceSettings blurSettings(double radius) {
    AppearanceSettings settings = plainSettings();
    settings.backgroundStyle = BackgroundStyle::blur;
    settings.blurRadius = radius;
    settings.padding = 0.3;
    return settings;
}

TEST(BackgroundRenderer, aBlurOfRadiusZeroShowsTheEnlargedFrame) {
    const auto noise = shared(test::noisePicture(32, 18, 11));
    const PixelBuffer out = composed(blurSettings(0), {64, 36}, noise);
    const PixelBuffer enlarged = composed(plainSettings(), {64, 36}, noise);
    for (int x = 0; x < 64; ++x) {
        EXPECT_EQ(pixelAt(out, x, 2), pixelAt(enlarged, x, 2));
    }
}

TEST(BackgroundRenderer, theBlurFillsTheOutputFromTheCentreOfTheFrame) {
    // A tall frame on a wide output: its middle fills the width.
    PixelBuffer tall = plainPicture(40, 80, kBlack);
    for (int y = 30; y < 50; ++y) {
        for (int x = 0; x < 40; ++x) {
            test::setPixel(tall, x, y, kWhite);
        }
    }
    const PixelBuffer out = composed(blurSettings(0), {80, 40}, shared(std::move(tall)));
    EXPECT_EQ(pixelAt(out, 1, 2), kWhite); // rows 30..50 are the whole background
    EXPECT_EQ(pixelAt(out, 78, 37), kWhite);
}

class BlurBackground : public testing::TestWithParam<double> {};

TEST_P(BlurBackground, isTheBlurOfTheEnlargedFrame) {
    const auto noise = shared(test::noisePicture(80, 45, 12));
    const PixelBuffer out = composed(blurSettings(GetParam()), {160, 90}, noise);
    PixelBuffer expected = composed(plainSettings(), {160, 90}, noise);
    gaussianBlur(expected, expected, GetParam(), BlurEdges::extended);
    for (int x = 0; x < 160; ++x) {
        for (const int y : {0, 10, 85}) {
            EXPECT_NEAR(pixelAt(out, x, y).green, pixelAt(expected, x, y).green, 2);
        }
    }
}

// Below 14 the enlarged frame is blurred, from there on the frame itself.
INSTANTIATE_TEST_SUITE_P(Radii, BlurBackground, testing::Values(1.0, 5.0, 13.0, 14.0, 40.0));

TEST(BackgroundRenderer, theBlurOfAnEvenFrameDoesNotDarkenTowardsTheBorders) {
    for (const double radius : {3.0, 40.0, 500.0}) {
        const PixelBuffer out =
            composed(blurSettings(radius), {128, 72}, shared(plainPicture(32, 18, kVideo)));
        EXPECT_EQ(test::largestDifference(out, plainPicture(128, 72, kVideo)), 0);
    }
}

TEST(BackgroundRenderer, theBlurIsMadeFromTheWholeFrameWhateverTheCrop) {
    const auto noise = shared(test::noisePicture(64, 36, 13));
    BackgroundRenderer renderer(blurSettings(20), {128, 72});
    const PixelBuffer wide = composed(renderer, noise, whole(noise));
    const PixelBuffer zoomed = composed(renderer, noise, {10, 10, 16, 9});
    for (int x = 0; x < 128; ++x) {
        EXPECT_EQ(pixelAt(wide, x, 5), pixelAt(zoomed, x, 5));
    }
}

TEST(BackgroundRenderer, theBlurFollowsTheFrames) {
    BackgroundRenderer renderer(blurSettings(20), {128, 72});
    const auto first = shared(plainPicture(64, 36, kVideo));
    const auto second = shared(plainPicture(64, 36, kWhite));
    EXPECT_EQ(pixelAt(composed(renderer, first, whole(first)), 0, 0), kVideo);
    EXPECT_EQ(pixelAt(composed(renderer, second, whole(second)), 0, 0), kWhite);
}

// Options beyond reason.

TEST(BackgroundRenderer, paddingThatLeavesNoRoomShowsTheBackgroundAlone) {
    for (const double padding : {0.5, 0.7, 1e9, std::nan(""), HUGE_VAL}) {
        AppearanceSettings settings = shadowSettings(5);
        settings.padding = padding;
        BackgroundRenderer renderer(settings, {60, 60});
        const auto frame = shared(plainPicture(30, 30, kVideo));
        EXPECT_EQ(test::largestDifference(composed(renderer, frame, whole(frame)),
                                          plainPicture(60, 60, kWhite)),
                  0);
        EXPECT_EQ(renderer.contentScale(), 0);
    }
}

TEST(BackgroundRenderer, negativePaddingCutsTheContentOff) {
    AppearanceSettings settings = shadowSettings(5);
    settings.padding = -0.5;
    const PixelBuffer out = composed(settings, {60, 60}, shared(plainPicture(30, 30, kVideo)));
    EXPECT_EQ(test::largestDifference(out, plainPicture(60, 60, kVideo)), 0);
}

TEST(BackgroundRenderer, aRadiusLargerThanTheContentMakesItRound) {
    AppearanceSettings settings = plainSettings();
    settings.cornerRadius = 1e9;
    const PixelBuffer out = composed(settings, {60, 60}, shared(plainPicture(30, 30, kVideo)));
    EXPECT_EQ(pixelAt(out, 30, 30), kVideo);
    EXPECT_EQ(pixelAt(out, 7, 7), kBlack);
    EXPECT_EQ(pixelAt(out, 30, 1), kVideo);
}

TEST(BackgroundRenderer, optionsThatAreNoNumbersStillGiveAFrame) {
    AppearanceSettings settings = shadowSettings(NAN);
    settings.shadowRadius = NAN;
    settings.shadowOpacity = NAN;
    settings.blurRadius = NAN;
    settings.backgroundStyle = BackgroundStyle::blur;
    const PixelBuffer out = composed(settings, {60, 60}, shared(plainPicture(30, 30, kVideo)));
    EXPECT_EQ(test::largestDifference(out, plainPicture(60, 60, kVideo)), 0);
}

TEST(BackgroundRenderer, tinyAndOddOutputsWork) {
    const auto frame = shared(plainPicture(30, 30, kVideo));
    for (const Size size : {Size{2, 2}, Size{1, 1}, Size{33, 17}, Size{0, -5}, Size{NAN, 3}}) {
        AppearanceSettings settings = shadowSettings(13);
        settings.backgroundStyle = BackgroundStyle::blur;
        const PixelBuffer out = composed(settings, size, frame);
        EXPECT_EQ(out.width() % 2, 0);
        EXPECT_EQ(out.height() % 2, 0);
        EXPECT_EQ(pixelAt(out, out.width() - 1, 0).alpha, 255);
    }
}

TEST(FrameSize, isWholeEvenAndLimited) {
    EXPECT_EQ(frameSizeFor({1920, 1080}), (FrameSize{1920, 1080}));
    EXPECT_EQ(frameSizeFor({1921, 1079}), (FrameSize{1922, 1080}));
    EXPECT_EQ(frameSizeFor({0, 1e9}), (FrameSize{2, 16384}));
    EXPECT_EQ(frameSizeFor({NAN, -4}), (FrameSize{2, 2}));
}

} // namespace
} // namespace tavi
