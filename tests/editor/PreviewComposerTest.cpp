#include "editor/PreviewComposer.h"

#include "render/FrameComposer.h"
#include "support/Pictures.h"
#include "support/PixelArea.h"

#include <gmock/gmock.h>

namespace tavi {
namespace {

using test::largestDifference;
using test::noisePicture;
using test::Pixel;
using test::pixelAt;
using test::plainPicture;
using test::shared;

constexpr Size kVideo{640, 360};
constexpr Pixel kBlack{0, 0, 0, 255};
constexpr Pixel kGrey{100, 100, 100, 255};

ZoomKeyframe zoomTo(const Rect& rect) {
    ZoomKeyframe keyframe;
    keyframe.timestamp = 0;
    keyframe.endTime = 10;
    keyframe.rect = rect;
    return keyframe;
}

/// A take of 640x360 on a black background, without pointer and camera.
class Preview : public testing::Test {
protected:
    Preview() {
        project.outputSettings.resolution = kVideo;
        project.appearanceSettings.backgroundStyle = BackgroundStyle::solidBlack;
        project.appearanceSettings.padding = 0;
        project.appearanceSettings.cornerRadius = 0;
        project.cursorSettings.showCursor = false;
        project.cursorSettings.smoothingPreset = CursorSmoothingPreset::none;
        project.videoHeight = kVideo.height;
    }

    PixelBuffer compose(FrameSize size = {640, 360}) {
        composer.setLog(project, kVideo);
        composer.setScene(project, kVideo, size);
        PixelBuffer out(size.width, size.height);
        composer.compose(moment, out);
        return out;
    }

    /// What a film of that project shows.
    PixelBuffer film(const EditProject& of) const {
        FrameComposer frames(of, makeOutputTimeline(of, 60), kVideo);
        PixelBuffer out(frames.frameSize().width, frames.frameSize().height);
        frames.composeFrame(moment.frame, moment.cameraImage, moment.time, out);
        return out;
    }

    EditProject project;
    PreviewMoment moment{shared(plainPicture(640, 360, kGrey)), nullptr, 5, 0, CanvasMode::preview};
    PreviewComposer composer;
};

TEST_F(Preview, atFullSizeIsTheFilm) {
    moment.frame = shared(noisePicture(640, 360, 1));
    project.appearanceSettings.padding = 0.05;
    project.appearanceSettings.cornerRadius = 12;
    project.appearanceSettings.shadowEnabled = true;
    for (const auto style : {BackgroundStyle::gradient, BackgroundStyle::blur,
                             BackgroundStyle::wallpaper, BackgroundStyle::solidWhite}) {
        project.appearanceSettings.backgroundStyle = style;
        project.keyframes.clear();
        EXPECT_EQ(largestDifference(compose(), film(project)), 0);
        project.keyframes = {zoomTo({100, 50, 320, 180})};
        EXPECT_EQ(largestDifference(compose(), film(project)), 0);
    }
}

TEST_F(Preview, onASmallCanvasEverySizeIsSmaller) {
    moment.frame = shared(noisePicture(640, 360, 2));
    moment.cameraImage = shared(noisePicture(64, 64, 3));
    project.keyframes = {zoomTo({100, 50, 320, 180})};
    AppearanceSettings& look = project.appearanceSettings;
    look.backgroundStyle = BackgroundStyle::blur;
    look.padding = 0.05;
    look.cornerRadius = 20;
    look.shadowEnabled = true;
    look.shadowRadius = 16;
    project.cameraSettings.shadowEnabled = false;
    project.cameraSettings.cornerRadius = 30;
    project.cameraSettings.borderWidth = 4;
    EditProject half = project;
    half.outputSettings.resolution = {320, 180};
    half.appearanceSettings.cornerRadius = 10;
    half.appearanceSettings.shadowRadius = 8;
    half.appearanceSettings.blurRadius /= 2;
    half.cameraSettings.cornerRadius = 15;
    half.cameraSettings.borderWidth = 2;
    EXPECT_EQ(largestDifference(compose({320, 180}), film(half)), 0);
}

TEST_F(Preview, rawShowsTheWholeVideoAndDimsWhatTheZoomLeavesOut) {
    moment.mode = CanvasMode::raw;
    EXPECT_EQ(pixelAt(compose(), 5, 5), kGrey) << "no keyframes, no overlay";
    project.keyframes = {zoomTo({160, 90, 320, 180})};
    const PixelBuffer out = compose();
    EXPECT_EQ(pixelAt(out, 5, 5), (Pixel{60, 60, 60, 255}));
    EXPECT_EQ(pixelAt(out, 320, 180), kGrey);
    EXPECT_EQ(pixelAt(out, 155, 180), (Pixel{60, 60, 60, 255}));
    EXPECT_EQ(pixelAt(out, 165, 180), kGrey);
    EXPECT_GT(pixelAt(out, 160, 180).red, 170) << "the border";
}

TEST_F(Preview, beforeTheFirstPictureTheVideoIsBlack) {
    moment.frame = nullptr;
    project.appearanceSettings.backgroundStyle = BackgroundStyle::solidWhite;
    project.appearanceSettings.padding = 0.1;
    const PixelBuffer out = compose();
    EXPECT_EQ(pixelAt(out, 320, 180), kBlack);
    EXPECT_EQ(pixelAt(out, 5, 5), (Pixel{255, 255, 255, 255}));
}

TEST_F(Preview, placeOnTheCanvasIsAPlaceInTheVideo) {
    project.keyframes = {zoomTo({160, 90, 320, 180})};
    project.appearanceSettings.padding = 0.1;
    compose();
    EXPECT_EQ(composer.videoPointAt({320, 180}), (Point{320, 180}));
    const Point corner = composer.videoPointAt({64, 36}); // the content's upper left corner
    EXPECT_NEAR(corner.x, 160, 1e-9);
    EXPECT_NEAR(corner.y, 270, 1e-9);
    project.keyframes.clear();
    compose();
    EXPECT_EQ(composer.videoPointAt({-50, 500}), (Point{0, 0})) << "limited to the video";
}

/// The same with a white disc of 20 pixels for the pointer.
class PreviewPointer : public Preview {
protected:
    PreviewPointer() {
        project.cursorSettings.showCursor = true;
        project.cursorSettings.cursorStyle = CursorStyle::circle;
        project.cursorSettings.cursorSize = 20;
        project.cursorEvents = {{0, 320, 180, CursorEventType::move},
                                {10, 320, 180, CursorEventType::move}};
    }

    PixelBounds changed(FrameSize size = {640, 360}) {
        return test::areaDifferingFrom(compose(size), kGrey);
    }
};

TEST_F(PreviewPointer, discStandsOnThePointAndIsSlightlySeeThrough) {
    const PixelBuffer out = compose();
    EXPECT_NEAR(pixelAt(out, 320, 180).red, 240, 5);
    EXPECT_GT(pixelAt(out, 329, 180).red, 150);
    EXPECT_LT(pixelAt(out, 331, 180).red, 100) << "its shadow";
}

TEST_F(PreviewPointer, growsWithTheZoom) {
    const int width = changed().width();
    project.keyframes = {zoomTo({160, 90, 320, 180})};
    EXPECT_NEAR(changed().width(), width + 20, 1) << "20 pixels more of disc, the same shadow";
}

TEST_F(PreviewPointer, logIsScaledFromTheCaptureToTheVideo) {
    project.videoHeight = 180; // points of a display at scale 2
    for (CursorEvent& event : project.cursorEvents) {
        event.x = 100;
        event.y = 30;
    }
    const PixelBounds area = changed();
    EXPECT_EQ((area.left + area.right) / 2, 200);
    EXPECT_EQ((area.top + area.bottom) / 2, 60);
}

TEST_F(PreviewPointer, isCutOffAtTheContent) {
    project.appearanceSettings.padding = 0.25;
    for (CursorEvent& event : project.cursorEvents) {
        event.x = 0;
    }
    const PixelBuffer out = compose();
    EXPECT_EQ(pixelAt(out, 159, 180), kBlack);
    EXPECT_NE(pixelAt(out, 160, 180), kGrey);
}

TEST_F(PreviewPointer, missingPictureIsTheArrow) {
    project.cursorSettings.cursorStyle = CursorStyle::system;
    project.cursorImageInfos = {{8, 8, 16, 16}, {8, 8, 16, 16}};
    for (CursorEvent& event : project.cursorEvents) {
        event.cursorImageId = 1;
    }
    EXPECT_FALSE(changed().empty());
    project.cursorImages = {shared(plainPicture(16, 16, kBlack)),
                            shared(plainPicture(16, 16, {0, 0, 255, 255}))};
    EXPECT_EQ(pixelAt(compose(), 320, 180), (Pixel{0, 0, 255, 255}))
        << "its hot spot is its middle";
}

TEST_F(PreviewPointer, everyLiveRingIsShown) {
    project.cursorSettings.showClickEffect = true;
    project.cursorEvents = {{4.9, 100, 100, CursorEventType::leftClick},
                            {4.8, 500, 300, CursorEventType::rightClick},
                            {9, 320, 20, CursorEventType::move}};
    const PixelBuffer out = compose();
    EXPECT_NE(pixelAt(out, 100 + 12, 100), kGrey);
    EXPECT_NE(pixelAt(out, 500 + 12, 300), kGrey);
}

TEST_F(PreviewPointer, ringIsGoneAfterItsLife) {
    project.cursorSettings.showClickEffect = true;
    project.cursorEvents = {{4.65, 100, 100, CursorEventType::leftClick}};
    moment.time = 4.65 + 0.35;
    const PixelBounds still = changed();
    project.cursorSettings.showClickEffect = false;
    EXPECT_EQ(changed(), still);
}

TEST_F(PreviewPointer, ringGrowsToTwoAndAHalfTimesItsSize) {
    project.cursorSettings.showClickEffect = true;
    project.cursorSettings.cursorSize = 40;
    project.cursorEvents = {{0, 10, 10, CursorEventType::move},
                            {5, 320, 180, CursorEventType::leftClick},
                            {5.001, 10, 10, CursorEventType::move}};
    moment.time = 5.01;
    const PixelBuffer first = compose();
    EXPECT_NE(pixelAt(first, 320 + 28, 180), kGrey);
    EXPECT_EQ(pixelAt(first, 320 + 36, 180), kGrey) << "60 across at first";
    moment.time = 5.3;
    EXPECT_NE(pixelAt(compose(), 320 + 60, 180), kGrey);
}

TEST_F(Preview, bubbleHasARimAtLeastAndALighterShadow) {
    project.appearanceSettings.backgroundStyle = BackgroundStyle::solidWhite;
    moment.frame = shared(plainPicture(640, 360, {255, 255, 255, 255}));
    moment.cameraImage = shared(plainPicture(64, 64, kBlack));
    project.cameraSettings.borderWidth = 0;
    project.cameraSettings.borderColor = {1, 0, 0, 1};
    project.cameraSettings.cornerRadius = 0;
    project.cameraSettings.position = CameraPosition::topLeft;
    project.cameraSettings.marginFraction = 0.1;
    project.cameraSettings.sizeFraction = 0.25;
    const PixelBuffer out = compose();
    EXPECT_GT(pixelAt(out, 64, 140).red, 60);
    EXPECT_EQ(pixelAt(out, 70, 140), kBlack);
    const int shade = 255 - pixelAt(out, 60, 140).red;
    EXPECT_GT(shade, 5);
    EXPECT_LT(shade, 255 * 0.15 + 2) << "half of 0.3 at the edge";
}

TEST_F(Preview, optionsMayChangeBetweenTwoPictures) {
    compose();
    project.appearanceSettings.padding = 0.2;
    composer.setScene(project, kVideo, {320, 180});
    PixelBuffer out(320, 180);
    composer.compose(moment, out);
    EXPECT_EQ(pixelAt(out, 60, 90), kBlack);
    EXPECT_EQ(pixelAt(out, 66, 90), kGrey);
}

} // namespace
} // namespace tavi
