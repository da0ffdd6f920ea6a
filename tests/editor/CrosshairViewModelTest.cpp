#include "editor/CrosshairViewModel.h"

#include "editor/CanvasViewModel.h"
#include "support/OpenEditor.h"

#include <gtest/gtest.h>

namespace tavi {
namespace {

/// A take of a minute, 1280x720, with a keyframe from second 10 to 12 that is selected.
class Crosshair : public test::OpenEditor {
protected:
    void SetUp() override {
        open();
        canvas = std::make_unique<CanvasViewModel>(*editor, main, background, clock);
        canvas->setSize({344, 204});
        editor->seek(10);
        editor->addKeyframe();
        editor->selectKeyframe(keyframe().id);
        settle();
    }
    void TearDown() override { canvas.reset(); }

    const ZoomKeyframe& keyframe() const { return editor->project().keyframes[0]; }
    CrosshairViewModel& crosshair() const { return *canvas->crosshair(); }

    std::unique_ptr<CanvasViewModel> canvas;
};

TEST_F(Crosshair, pointsAtThePlaceOfTheVideo) {
    editor->setCanvasMode(
        CanvasMode::raw); // not zoomed: shares of the content are those of the video
    editor->changeProject([](EditProject& p) { p.appearanceSettings.padding = 0.1; });
    settle();
    crosshair().press();
    for (int i = 0; i < 25; ++i) {
        crosshair().move(-1, -1, false);
    }
    crosshair().press();
    ASSERT_EQ(keyframe().waypoints.size(), 1U);
    EXPECT_EQ(keyframe().waypoints[0].time, 10);
    EXPECT_NEAR(keyframe().waypoints[0].centerX, 0.25 * 1280, 1e-6);
    EXPECT_NEAR(keyframe().waypoints[0].centerY, 0.75 * 720, 1e-6) << "upwards";
}

TEST_F(Crosshair, staysOnTheVideo) {
    crosshair().press();
    for (int i = 0; i < 20; ++i) {
        crosshair().move(1, -1, true);
    }
    EXPECT_EQ(crosshair().place(), QPointF(1, 0));
}

TEST_F(Crosshair, standsStillWhileItDoesNotPoint) {
    crosshair().move(1, 1, true);
    EXPECT_EQ(crosshair().place(), QPointF(0.5, 0.5));
}

TEST_F(Crosshair, pointsOnlyWhileThePlayheadIsInTheSelectedKeyframe) {
    editor->seek(12);
    EXPECT_TRUE(crosshair().canPoint()) << "its end belongs to it";
    crosshair().press();
    EXPECT_TRUE(crosshair().isPointing());
    editor->seek(12.1);
    EXPECT_FALSE(crosshair().isPointing());
    crosshair().press();
    EXPECT_FALSE(crosshair().isPointing());
    editor->seek(11);
    editor->selectKeyframe(std::nullopt);
    EXPECT_FALSE(crosshair().canPoint());
}

TEST_F(Crosshair, tellsWhatTheKeysDo) {
    EXPECT_TRUE(crosshair().hint().startsWith("Return points"));
    crosshair().press();
    crosshair().move(1, 0, true);
    EXPECT_TRUE(crosshair().hint().startsWith("60 % from the left, 50 % from the top"));
    editor->selectKeyframe(std::nullopt);
    EXPECT_TRUE(crosshair().hint().startsWith("Select a keyframe"));
}

} // namespace
} // namespace tavi
