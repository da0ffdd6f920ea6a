#include "render/FrameComposer.h"

#include "cursor/CursorPictures.h"
#include "support/Pictures.h"
#include "support/PixelArea.h"

#include <gtest/gtest.h>

namespace tavi {
namespace {

using test::Pixel;
using test::pixelAt;
using test::plainPicture;
using test::shared;

constexpr Pixel kVideo{90, 90, 90, 255};

/// A video of 400 x 300 points and pixels on an output of 800 x 600, scale 2.
class Composition : public testing::Test {
protected:
    Composition() {
        setDesktopArrow(nullptr);
        project.outputSettings = {{800, 600}, 60, false};
        project.appearanceSettings.backgroundStyle = BackgroundStyle::solidBlack;
        project.appearanceSettings.padding = 0;
        project.appearanceSettings.cornerRadius = 0;
        project.cursorSettings.smoothingPreset = CursorSmoothingPreset::none;
        project.cursorSettings.cursorStyle = CursorStyle::circle;
        project.cursorSettings.cursorSize = 40;
        project.videoHeight = 300;
    }

    void logEvent(double time, double x, double y, CursorEventType type = CursorEventType::move,
                  std::int64_t image = 0) {
        project.cursorEvents.push_back({time, x, y, type, image});
    }

    /// Shows the given part of the video from 0 to 10 s.
    void zoomTo(const Rect& rect) {
        ZoomKeyframe keyframe;
        keyframe.timestamp = 0;
        keyframe.endTime = 10;
        keyframe.rect = rect;
        project.keyframes = {keyframe};
    }

    PixelBuffer compose(double time = 0) {
        OutputTimeline timeline = makeOutputTimeline(project, 10);
        FrameComposer composer(project, std::move(timeline), {400, 300});
        const FrameSize size = composer.frameSize();
        PixelBuffer out(size.width, size.height);
        composer.composeFrame(video, camera, time, out);
        return out;
    }

    /// What differs from the video, rows from the top; empty when nothing does.
    static PixelBounds overlay(const PixelBuffer& image) {
        return test::areaDifferingFrom(image, kVideo);
    }

    static Point middle(const PixelBounds& area) {
        return {(area.left + area.right) / 2.0, (area.top + area.bottom) / 2.0};
    }

    EditProject project;
    PixelBufferPtr camera; ///< Null: none.
    PixelBufferPtr video = shared(plainPicture(400, 300, kVideo));
};

TEST_F(Composition, withoutEventsNothingIsDrawn) {
    project.cursorSettings.showClickEffect = true;
    EXPECT_TRUE(overlay(compose()).empty());
}

TEST_F(Composition, theCircleIsCentredOnTheScaledPoint) {
    logEvent(0, 100, 75);
    const PixelBounds area = overlay(compose());
    EXPECT_NEAR(middle(area).x, 200, 2);
    EXPECT_NEAR(middle(area).y, 150, 2);
    EXPECT_LE(area.width(), 40);
    EXPECT_GE(area.width(), 34);
}

TEST_F(Composition, thePointersTipIsItsTopLeftCorner) {
    project.cursorSettings.cursorStyle = CursorStyle::pointer;
    logEvent(0, 100, 75);
    const PixelBounds area = overlay(compose());
    // The arrow's tip is drawn at (1, 1) of 22 units, size 40.
    EXPECT_NEAR(area.left, 201, 1);
    EXPECT_NEAR(area.top, 151, 1);
    EXPECT_NEAR(area.bottom, 191, 2);
}

TEST_F(Composition, aSystemCursorTouchesThePointWithItsHotSpot) {
    project.cursorSettings.cursorStyle = CursorStyle::system;
    project.cursorImages = {shared(plainPicture(10, 20, {0, 0, 255, 255}))};
    project.cursorImageInfos = {{7.5, 5, 10, 20}};
    logEvent(0, 100, 75);
    // 20 x 40 pixels; three quarters of the width and one quarter of the height before it.
    EXPECT_EQ(overlay(compose()), (PixelBounds{185, 140, 205, 180}));
}

TEST_F(Composition, anImageIdBeyondTheImagesShowsThePointerAtTheInfosHotSpot) {
    project.cursorSettings.cursorStyle = CursorStyle::system;
    setDesktopArrow(shared(plainPicture(10, 20, {0, 0, 255, 255})));
    project.cursorImageInfos = {{}, {10, 20, 20, 40}};
    logEvent(0, 100, 75, CursorEventType::move, 1);
    EXPECT_EQ(overlay(compose()), (PixelBounds{190, 130, 210, 170}));
    project.cursorEvents[0].cursorImageId = 2; // beyond the infos as well
    EXPECT_EQ(overlay(compose()), (PixelBounds{200, 150, 220, 190}));
    project.cursorEvents[0].cursorImageId = -1;
    EXPECT_EQ(overlay(compose()), (PixelBounds{200, 150, 220, 190}));
    setDesktopArrow(nullptr);
}

TEST_F(Composition, aZoomOfTwoHalvesTheCursor) {
    setDesktopArrow(shared(plainPicture(10, 20, {0, 0, 255, 255})));
    project.cursorSettings.cursorStyle = CursorStyle::pointer;
    zoomTo({100, 75, 200, 150});
    logEvent(0, 200, 150);
    // In the middle, 20 pixels high.
    EXPECT_EQ(overlay(compose(5)), (PixelBounds{400, 300, 410, 320}));
    setDesktopArrow(nullptr);
}

TEST_F(Composition, aCursorBetweenPixelsMovesSmoothly) {
    double last = 0;
    for (int i = 0; i < 20; ++i) {
        project.cursorEvents.clear();
        logEvent(0, 100 + i * 0.05, 75);
        const PixelBuffer out = compose();
        double sum = 0;
        double moment = 0;
        for (int x = 150; x < 250; ++x) {
            const double light = std::max(0, pixelAt(out, x, 150).blue - 90);
            sum += light;
            moment += light * x;
        }
        if (i > 0) {
            EXPECT_NEAR(moment / sum - last, 0.1, 0.05);
        }
        last = moment / sum;
    }
}

TEST_F(Composition, aCursorOutsideOfTheCropIsNotDrawn) {
    zoomTo({100, 75, 200, 150}); // rows 75..225 from the top, too
    for (const Point point : {Point{99, 150}, Point{300, 150}, Point{200, 74}, Point{200, 226}}) {
        project.cursorEvents.clear();
        logEvent(0, point.x, point.y);
        EXPECT_TRUE(overlay(compose(5)).empty()) << point.x << ", " << point.y;
    }
    // The left and the bottom edge are inside, the right and the top are not.
    project.cursorEvents.clear();
    logEvent(0, 100, 225);
    EXPECT_FALSE(overlay(compose(5)).empty());
    project.cursorEvents.clear();
    logEvent(0, 100, 75);
    EXPECT_TRUE(overlay(compose(5)).empty());
}

TEST_F(Composition, aHiddenCursorIsNotDrawn) {
    logEvent(0, 100, 75);
    project.cursorSettings.showCursor = false;
    EXPECT_TRUE(overlay(compose()).empty());
}

// Ripples.

class Ripple : public Composition {
protected:
    Ripple() {
        project.cursorSettings.showCursor = false;
        project.cursorSettings.showClickEffect = true;
    }
};

TEST_F(Ripple, standsAtItsBaseRadiusInTheMomentOfTheClick) {
    logEvent(1, 100, 75, CursorEventType::rightClick);
    const PixelBounds area = overlay(compose(1));
    // Radius 40 * 1.5 = 60, the drawing 2 smaller with half of its rim outside.
    EXPECT_NEAR(area.left, 200 - 58.75, 1);
    EXPECT_NEAR(area.right, 200 + 58.75, 1);
    EXPECT_NEAR(middle(area).y, 150, 1);
    EXPECT_NEAR(pixelAt(compose(1), 200, 150).blue, 90 * 0.6 + 255 * 0.4, 2);
}

TEST_F(Ripple, growsAndFades) {
    logEvent(1, 200, 150, CursorEventType::leftClick);
    const PixelBuffer out = compose(1 + 0.35 / 2);
    EXPECT_NEAR(overlay(out).width(), 2 * (60 * 1.75 - 2 + 0.75), 3);
    EXPECT_NEAR(pixelAt(out, 400, 300).blue, 90 * 0.8 + 255 * 0.2, 2);
}

TEST_F(Ripple, isGoneAfter350Milliseconds) {
    logEvent(1, 200, 150, CursorEventType::leftClick);
    EXPECT_FALSE(overlay(compose(1.34)).empty());
    EXPECT_TRUE(overlay(compose(1.35)).empty());
    EXPECT_TRUE(overlay(compose(0.999)).empty());
}

TEST_F(Ripple, aLeftPressOfANewTakeMakesNone) {
    logEvent(1, 200, 150, CursorEventType::leftMouseDown);
    EXPECT_TRUE(overlay(compose(1)).empty());
}

TEST_F(Ripple, isDrawnThoughTheCursorIsHiddenAndOnlyWhenSwitchedOn) {
    logEvent(1, 200, 150, CursorEventType::leftClick);
    EXPECT_FALSE(overlay(compose(1)).empty());
    project.cursorSettings.showClickEffect = false;
    EXPECT_TRUE(overlay(compose(1)).empty());
}

TEST_F(Ripple, onlyTheOldestLiveOneInsideTheCropIsDrawn) {
    logEvent(1.0, 90, 150, CursorEventType::leftClick);
    logEvent(1.1, 200, 150, CursorEventType::leftClick);
    logEvent(1.2, 250, 150, CursorEventType::leftClick);
    EXPECT_NEAR(middle(overlay(compose(1.25))).x, 180, 1);
    // With the first one outside of the crop it is the second's turn.
    zoomTo({100, 75, 200, 150});
    EXPECT_NEAR(middle(overlay(compose(1.25))).x, 400, 1);
}

TEST_F(Ripple, liesAboveTheCursor) {
    project.cursorSettings.showCursor = true;
    project.cursorSettings.cursorStyle = CursorStyle::system;
    project.cursorImages = {shared(plainPicture(20, 20, {0, 0, 0, 255}))};
    logEvent(1, 200, 150, CursorEventType::leftClick);
    EXPECT_NEAR(pixelAt(compose(1), 410, 310).blue, 255 * 0.4, 2);
}

// Keys pressed and camera.

class Overlays : public Composition {
protected:
    Overlays() {
        project.cursorSettings.showCursor = false;
        project.cursorSettings.showKeystrokes = true;
        project.cameraSettings.borderWidth = 0;
        project.cameraSettings.shadowEnabled = false;
        project.cameraSettings.cornerRadius = 0;
    }

    void press(double time) {
        logEvent(time, -50, -50, CursorEventType::keyDown);
        project.cursorEvents.back().keyCharacter = "a";
    }

    /// Red, filling the whole output.
    void coverWithCamera() {
        camera = shared(plainPicture(40, 30, {0, 0, 255, 255}));
        project.cameraSettings.sizeFraction = 1;
        project.cameraSettings.marginFraction = 0;
    }
};

TEST_F(Overlays, chipsStandAtTheBottomWhateverTheZoomDoes) {
    press(4);
    const PixelBuffer still = compose(5);
    const PixelBounds area = overlay(still);
    EXPECT_NEAR(middle(area).x, 400, 1);
    EXPECT_EQ(pixelAt(still, 400, 600 - 24 - 2).alpha, 255);
    EXPECT_LT(pixelAt(still, 400, 600 - 24 - 2).red, 60); // the pill's lower edge
    zoomTo({100, 75, 200, 150});
    EXPECT_EQ(test::largestDifference(compose(5), still), 0);
}

TEST_F(Overlays, chipsAreSwitchedOnAndLiveInOutputTime) {
    press(4);
    EXPECT_TRUE(overlay(compose(3.9)).empty());
    EXPECT_FALSE(overlay(compose(4)).empty());
    project.trimState.inPoint = 3;
    EXPECT_FALSE(overlay(compose(1)).empty());
    EXPECT_TRUE(overlay(compose(4)).empty());
    project.cursorSettings.showKeystrokes = false;
    EXPECT_TRUE(overlay(compose(1)).empty());
}

TEST_F(Overlays, chipsLieAboveTheCursorAndTheRipple) {
    project.cursorSettings.showCursor = true;
    project.cursorSettings.cursorStyle = CursorStyle::system;
    project.cursorImages = {shared(plainPicture(200, 200, {255, 255, 255, 255}))};
    project.cursorSettings.cursorSize = 200;
    project.cursorSettings.showClickEffect = true;
    logEvent(0, 150, 250); // over the bottom middle
    logEvent(4, 150, 250, CursorEventType::leftClick);
    logEvent(4, 150, 250, CursorEventType::keyDown);
    project.cursorEvents.back().keyCharacter = "a";
    const PixelBuffer out = compose(4);
    EXPECT_EQ(pixelAt(out, 320, 550).blue, 255);
    EXPECT_NEAR(pixelAt(out, 400, 600 - 24 - 2).blue, 255 * 0.55, 30);
}

TEST_F(Overlays, theBubbleLiesAboveAllElse) {
    press(0);
    coverWithCamera();
    const PixelBuffer out = compose(0);
    for (const int y : {0, 300, 560, 572, 599}) {
        EXPECT_EQ(pixelAt(out, 400, y), (Pixel{0, 0, 255, 255})) << y;
    }
}

TEST_F(Overlays, theBubbleStandsStillWhateverTheZoomDoes) {
    camera = shared(plainPicture(40, 30, {0, 0, 255, 255}));
    const PixelBounds area = overlay(compose(5));
    EXPECT_EQ(area, (PixelBounds{616, 416, 776, 576}));
    zoomTo({100, 75, 200, 150});
    EXPECT_EQ(overlay(compose(5)), area);
}

TEST_F(Overlays, areDrawnWithoutRoomForTheContent) {
    project.appearanceSettings.padding = 0.5;
    press(0);
    camera = shared(plainPicture(40, 30, {0, 0, 255, 255}));
    const PixelBuffer out = compose(0);
    EXPECT_EQ(pixelAt(out, 700, 500), (Pixel{0, 0, 255, 255}));
    EXPECT_GT(pixelAt(out, 400, 600 - 24 - 8).blue, 10); // a chip on black
}

// The output.

TEST_F(Composition, autoAspectTakesTheWidthFromTheVideo) {
    project.outputSettings = {{1920, 1080}, 60, true};
    const FrameComposer composer(project, makeOutputTimeline(project, 10), {1000, 501});
    EXPECT_EQ(composer.outputSize(), (Size{2156, 1080}));
}

TEST_F(Composition, aKeyframeThatTheTrimDropsLeavesTheFullFrame) {
    zoomTo({100, 75, 200, 150});
    logEvent(0, 10, 10);
    EXPECT_TRUE(overlay(compose(5)).empty());
    project.trimState.outPoint = 9; // the keyframe ends at 10
    EXPECT_FALSE(overlay(compose(5)).empty());
}

TEST_F(Composition, theVideosHeightStandsInWhereTheLogHasNone) {
    project.videoHeight = 0;
    logEvent(0, 100, 75);
    EXPECT_NEAR(middle(overlay(compose())).y, 150, 2);
}

TEST_F(Composition, oddOptionsNeverFail) {
    project.cursorSettings.showClickEffect = true;
    logEvent(0, 100, 75, CursorEventType::leftClick);
    for (const double size : {0.0, -5.0, 1e12, std::nan("")}) {
        for (const auto style : {CursorStyle::pointer, CursorStyle::circle, CursorStyle::system}) {
            project.cursorSettings.cursorSize = size;
            project.cursorSettings.cursorStyle = style;
            EXPECT_EQ(compose(0.1).width(), 800);
        }
    }
    project.cursorSettings.cursorSize = 24;
    zoomTo({100, 75, 1e-9, 1e-9});
    EXPECT_EQ(compose(5).width(), 800);
    zoomTo({NAN, 75, 200, NAN});
    EXPECT_EQ(compose(5).width(), 800);
    project.appearanceSettings.padding = 0.5;
    EXPECT_EQ(compose(5).width(), 800);
    project.outputSettings.resolution = {2, 2};
    EXPECT_EQ(compose(0).width(), 2);
}

} // namespace
} // namespace tavi
