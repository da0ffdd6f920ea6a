#include "editor/CanvasViewModel.h"

#include "editor/TimelineViewModel.h"
#include "support/OpenEditor.h"
#include "support/Pictures.h"

#include <QSignalSpy>
#include <gmock/gmock.h>

namespace tavi {
namespace {

/// The canvas of 320x180 points and a margin beside the take of a minute.
class Canvas : public test::OpenEditor {
protected:
    void SetUp() override {
        open();
        canvas = std::make_unique<CanvasViewModel>(*editor, main, background, clock);
        QObject::connect(canvas.get(), &CanvasViewModel::pictureChanged, [this] { ++pictures; });
        canvas->setSize({344, 204});
        settle();
        pictures = 0;
    }
    void TearDown() override { canvas.reset(); }

    std::unique_ptr<CanvasViewModel> canvas;
    int pictures = 0;
};

TEST_F(Canvas, pictureHasTheFramesDevicePixels) {
    EXPECT_EQ(canvas->frame(), QRectF(12, 12, 320, 180));
    EXPECT_EQ(canvas->pixels()->width(), 320);
    canvas->setPixelRatio(2);
    settle();
    EXPECT_EQ(canvas->pixels()->width(), 640);
    EXPECT_EQ(canvas->frame(), QRectF(12, 12, 320, 180));
}

TEST_F(Canvas, frameHasWholeEvenPixels) {
    canvas->setSize({401, 300});
    settle();
    EXPECT_EQ(canvas->frame().width(), 376);
    EXPECT_EQ(canvas->pixels()->width(), 376);
    EXPECT_EQ(canvas->pixels()->height() % 2, 0);
}

TEST_F(Canvas, followsThePlayheadTheVideoAndTheOptions) {
    editor->seek(3);
    settle();
    EXPECT_EQ(pictures, 1);
    editor->setCanvasMode(CanvasMode::raw);
    settle();
    EXPECT_EQ(pictures, 2);
    editor->changeProject([](EditProject& p) { p.appearanceSettings.padding = 0.2; });
    settle();
    EXPECT_EQ(pictures, 3);
}

TEST_F(Canvas, changesWhileAPictureIsComposedAreNotQueued) {
    for (int i = 0; i < 20; ++i) {
        editor->seek(i);
    }
    EXPECT_EQ(background.waiting(), 1U);
    settle();
    EXPECT_EQ(pictures, 2) << "the first and the newest";
}

/// The same beside a take with a camera.
class CanvasWithCamera : public Canvas {
protected:
    void SetUp() override {
        addCamera(0);
        Canvas::SetUp();
    }

    void showCamera(int level) {
        players.made.at("camera.mov")
            ->show(test::shared(test::plainPicture(64, 64, {level, level, level, 255})));
        settle();
    }
};

TEST_F(CanvasWithCamera, camerasPictureIsShownAtOnceWhileNothingPlays) {
    showCamera(100);
    EXPECT_EQ(pictures, 1);
}

TEST_F(CanvasWithCamera, camerasPictureComesWithThePlayheadWhileItPlays) {
    editor->togglePlayback();
    settle();
    pictures = 0;
    showCamera(100);
    EXPECT_EQ(pictures, 0);
    video().tick(0.03);
    settle();
    EXPECT_EQ(pictures, 1);
    showCamera(200);
    editor->togglePlayback();
    settle();
    EXPECT_EQ(pictures, 2) << "the last one before the pause, too";
}

TEST_F(Canvas, showsTheVideosPicture) {
    editor->changeProject([](EditProject& p) {
        p.appearanceSettings.backgroundStyle = BackgroundStyle::solidWhite;
        p.appearanceSettings.padding = 0.1;
    });
    video().picture = test::shared(test::plainPicture(1280, 720, {10, 20, 200, 255}));
    editor->seek(1);
    settle();
    EXPECT_EQ(test::pixelAt(*canvas->pixels(), 160, 90), (test::Pixel{10, 20, 200, 255}));
    EXPECT_EQ(test::pixelAt(*canvas->pixels(), 4, 4), (test::Pixel{255, 255, 255, 255}));
}

TEST_F(Canvas, movingBackgroundWantsTicks) {
    QSignalSpy told(canvas.get(), &CanvasViewModel::isAnimatedChanged);
    EXPECT_FALSE(canvas->isAnimated());
    editor->changeProject([](EditProject& p) {
        p.appearanceSettings.animateBackground = true;
        p.appearanceSettings.backgroundStyle = BackgroundStyle::wallpaper;
    });
    EXPECT_TRUE(canvas->isAnimated());
    EXPECT_EQ(told.size(), 1);
    settle();
    pictures = 0;
    canvas->tick();
    settle();
    EXPECT_EQ(pictures, 1);
}

TEST_F(Canvas, tapAddsAWaypointWhereItPoints) {
    editor->changeProject([](EditProject& p) { p.appearanceSettings.padding = 0; });
    settle();
    editor->addKeyframe();
    editor->selectKeyframe(editor->project().keyframes[0].id);
    settle();
    canvas->tap(80, 45);
    const auto& waypoints = editor->project().keyframes[0].waypoints;
    ASSERT_EQ(waypoints.size(), 1U);
    EXPECT_NEAR(waypoints[0].centerX, 320, 1) << "the zoom has not begun at its first moment";
    EXPECT_NEAR(waypoints[0].centerY, 540, 1);
}

TEST_F(Canvas, withoutRoomNothingIsComposed) {
    canvas->setSize({10, 10});
    settle();
    EXPECT_EQ(pictures, 0);
    EXPECT_TRUE(canvas->frame().isEmpty());
}

/// The timeline on 600 points beside the same take.
class Timeline : public test::OpenEditor {
protected:
    void SetUp() override {
        open();
        timeline = std::make_unique<TimelineViewModel>(*editor);
        timeline->setTrackWidth(600);
    }
    void TearDown() override { timeline.reset(); }

    std::unique_ptr<TimelineViewModel> timeline;
};

TEST_F(Timeline, playheadIsOnTheTrack) {
    QSignalSpy moved(timeline.get(), &TimelineViewModel::playheadChanged);
    editor->seek(15);
    EXPECT_EQ(timeline->playheadX(), 150);
    EXPECT_EQ(moved.size(), 1);
}

TEST_F(Timeline, gesturesEditTheTake) {
    timeline->press(0, 300, 5);
    timeline->release(300, 5);
    EXPECT_EQ(editor->currentTime(), 30);
    timeline->press(0, 2, 5);
    timeline->move(60, 5);
    timeline->release(60, 5);
    EXPECT_EQ(editor->project().trimState.inPoint, 6);
    EXPECT_EQ(saved().trimState.inPoint, 6);
}

TEST_F(Timeline, menuRestoresACut) {
    editor->seek(10);
    editor->toggleCut();
    editor->seek(20);
    editor->toggleCut();
    EXPECT_EQ(timeline->openMenu(0, 50, 5), "");
    timeline->restoreSection();
    EXPECT_EQ(editor->project().trimState.cutSegments.size(), 1U);
    EXPECT_EQ(timeline->openMenu(0, 150, 5), "cut");
    timeline->restoreSection();
    EXPECT_TRUE(editor->project().trimState.cutSegments.empty());
}

TEST_F(Timeline, menuDeletesACurvePoint) {
    editor->seek(10);
    editor->addKeyframe();
    const Uuid id = editor->project().keyframes[0].id;
    editor->addZoomCurvePoint(id, {Uuid::make(), 11, 6});
    EXPECT_EQ(timeline->pointerAt(1, 110, 6), TimelineViewModel::OpenHand);
    EXPECT_EQ(timeline->openMenu(1, 110, 6), "curvePoint");
    timeline->deletePoint();
    EXPECT_TRUE(editor->project().keyframes[0].zoomCurve.empty());
}

TEST_F(Timeline, pendingCutGrowsWithThePlayhead) {
    QSignalSpy marks(timeline.get(), &TimelineViewModel::marksChanged);
    editor->seek(1);
    EXPECT_EQ(marks.size(), 0) << "nothing is painted while the take plays";
    editor->toggleCut();
    marks.clear();
    editor->seek(2);
    EXPECT_EQ(marks.size(), 1);
}

} // namespace
} // namespace tavi
