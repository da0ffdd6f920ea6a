#include "cursor/CursorPictures.h"
#include "render/FrameComposer.h"
#include "support/Pictures.h"

#include <gtest/gtest.h>

#include <cstring>

namespace tavi {
namespace {

using test::plainPicture;
using test::shared;

bool isSame(const PixelBuffer& a, const PixelBuffer& b) {
    for (int y = 0; y < a.height(); ++y) {
        if (std::memcmp(a.row(y), b.row(y), static_cast<std::size_t>(4 * a.width())) != 0) {
            return false;
        }
    }
    return true;
}

/// Films of 320 x 180 with all that can move in them.
class Repeats : public testing::Test {
protected:
    Repeats() {
        project.outputSettings = {{320, 180}, 60, false};
        project.appearanceSettings.backgroundStyle = BackgroundStyle::gradient;
        project.appearanceSettings.shadowEnabled = true;
        project.cursorSettings.smoothingPreset = CursorSmoothingPreset::none;
        project.cursorSettings.showClickEffect = true;
        project.cursorSettings.showKeystrokes = true;
        project.cameraSettings.enabled = true;
        project.videoHeight = 180;
        logEvent(0, 100, 90);
    }

    void logEvent(double time, double x, double y, CursorEventType type = CursorEventType::move) {
        project.cursorEvents.push_back({time, x, y, type, 0});
    }

    /// Whether the frame of `next` repeats that of `first`; what it says is held
    /// against the pixels.
    bool isRepeat(double first, double next) { return isRepeat(first, next, video, camera); }

    bool isRepeat(double first, double next, const PixelBufferPtr& nextVideo,
                  const PixelBufferPtr& nextCamera) {
        FrameComposer composer(project, makeOutputTimeline(project, 10), {320, 180});
        const FrameSize size = composer.frameSize();
        PixelBuffer a(size.width, size.height);
        PixelBuffer b(size.width, size.height);
        EXPECT_FALSE(composer.isRepeat(video, camera, first)) << "nothing was drawn yet";
        composer.composeFrame(video, camera, first, a);
        const bool says = composer.isRepeat(nextVideo, nextCamera, next);
        composer.composeFrame(nextVideo, nextCamera, next, b);
        EXPECT_TRUE(!says || isSame(a, b)) << "a repeat that differs, at " << next;
        isDifferent = !isSame(a, b);
        return says;
    }

    EditProject project;
    bool isDifferent = false;
    PixelBufferPtr video = shared(plainPicture(320, 180, {90, 90, 90, 255}));
    PixelBufferPtr camera = shared(plainPicture(64, 48, {20, 120, 220, 255}));
};

TEST_F(Repeats, stillPictureRepeats) {
    EXPECT_TRUE(isRepeat(1, 2));
}

TEST_F(Repeats, otherVideoOrCameraFrameDoesNot) {
    EXPECT_FALSE(isRepeat(1, 2, shared(plainPicture(320, 180, {91, 90, 90, 255})), camera));
    EXPECT_TRUE(isDifferent);
    EXPECT_FALSE(isRepeat(1, 2, video, shared(plainPicture(64, 48, {20, 120, 221, 255}))));
    EXPECT_TRUE(isDifferent);
    EXPECT_FALSE(isRepeat(1, 2, video, nullptr));
    EXPECT_TRUE(isDifferent);
}

TEST_F(Repeats, movedCursorDoesNot) {
    logEvent(1, 100, 90);
    logEvent(2, 150, 90);
    EXPECT_TRUE(isRepeat(0, 1));
    EXPECT_FALSE(isRepeat(1, 1.5));
    EXPECT_TRUE(isDifferent);
    EXPECT_TRUE(isRepeat(2, 3));
}

TEST_F(Repeats, growingRippleDoesNot) {
    logEvent(1, 100, 90, CursorEventType::leftClick);
    EXPECT_FALSE(isRepeat(0.9, 1));
    EXPECT_FALSE(isRepeat(1.1, 1.2));
    EXPECT_TRUE(isDifferent);
    EXPECT_TRUE(isRepeat(1.4, 1.5));
}

TEST_F(Repeats, chipsDoSoUntilTheyFade) {
    CursorEvent key{1, 100, 90, CursorEventType::keyDown, 0};
    key.keyCharacter = "a";
    project.cursorEvents.push_back(key);
    project.cursorSettings.keystrokeDisplayDuration = 1;
    EXPECT_FALSE(isRepeat(0.9, 1));
    EXPECT_TRUE(isDifferent);
    EXPECT_TRUE(isRepeat(1.1, 1.2));
    EXPECT_FALSE(isRepeat(1.8, 1.9));
    EXPECT_TRUE(isDifferent);
    EXPECT_TRUE(isRepeat(2.1, 2.2));
}

TEST_F(Repeats, movingCameraDoesNot) {
    ZoomKeyframe keyframe;
    keyframe.timestamp = 1;
    keyframe.endTime = 5;
    keyframe.rect = {100, 50, 160, 90};
    project.keyframes = {keyframe};
    bool hasMoved = false;
    for (double time = 0; time < 6; time += 0.1) {
        hasMoved |= !isRepeat(time, time + 0.1);
    }
    EXPECT_TRUE(hasMoved);
    EXPECT_TRUE(isRepeat(3, 3.1));
}

TEST_F(Repeats, movingBackgroundDoesNotButAStillOneDoes) {
    project.appearanceSettings.backgroundStyle = BackgroundStyle::wallpaper;
    EXPECT_TRUE(isRepeat(1, 2));
    project.appearanceSettings.animateBackground = true;
    EXPECT_FALSE(isRepeat(1, 2));
    EXPECT_TRUE(isDifferent);
    project.appearanceSettings.backgroundStyle = BackgroundStyle::blur;
    EXPECT_TRUE(isRepeat(1, 2));
}

TEST_F(Repeats, changedDesktopArrowDoesNot) {
    FrameComposer composer(project, makeOutputTimeline(project, 10), {320, 180});
    PixelBuffer out(320, 180);
    composer.composeFrame(video, camera, 1, out);
    setDesktopArrow(shared(plainPicture(10, 20, {0, 0, 255, 255})));
    EXPECT_FALSE(composer.isRepeat(video, camera, 1));
    setDesktopArrow(nullptr);
}

} // namespace
} // namespace tavi
