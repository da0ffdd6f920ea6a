#include "platform/portal/FakeCast.h"
#include "platform/portal/GnomeTake.h"
#include "platform/x11/RecordedVideo.h"
#include "support/PixelColour.h"

#include <gmock/gmock.h>

#include <csignal>
#include <memory>

namespace tavi {
namespace {

using test::FakePortal;
using test::GnomeDesktop;
using test::RecorderProcess;
using testing::HasSubstr;

constexpr int kWidth = 640;
constexpr int kHeight = 400;

/// A take of a terminal's window. GNOME's portal learns of windows from the shell, which doesn't
/// run without a screen: the compositor casts the window, and the test plays the portal.
class TakeOfAGnomeWindow : public test::GnomeTake {
protected:
    TakeOfAGnomeWindow() : GnomeTake(GnomeDesktop::Portal::ofTheTest) {
        desktop.openTerminal(kWidth, kHeight);
        portal = std::make_unique<FakePortal>(FakePortal::Script{
            .node = desktop.castWindow(), .openRemote = test::FakeCast::openRemote});
        recorder = std::make_unique<RecorderProcess>("", std::vector<std::string>{"--window", "1"});
    }

    void expectSavedAndTold() {
        recorder->wait();
        EXPECT_THAT(recorder->errors(), HasSubstr("The recording ended early. The desktop ended "
                                                  "the screen cast"));
        EXPECT_GT(test::readAll(recorder->take() / "video.mov").size(), 0U);
        EXPECT_TRUE(std::filesystem::exists(recorder->take() / "metadata.json"));
        EXPECT_THAT(recorder->out(), HasSubstr(recorder->take().string()));
    }

    std::unique_ptr<FakePortal> portal;
    std::unique_ptr<RecorderProcess> recorder;
};

TEST_F(TakeOfAGnomeWindow, showsTheWindowAloneAndThePointerInIt) {
    ASSERT_TRUE(recorder->waitForFirstFrame()) << recorder->errors();
    const Point middle{GnomeDesktop::kWidth / 2.0, GnomeDesktop::kHeight / 2.0};
    movePointer(*recorder, middle);
    movePointer(*recorder, {middle.x + 40, middle.y + 30});
    desktop.movePointer(1, GnomeDesktop::kHeight - 1); // beside the window
    recorder->signal(SIGINT);
    ASSERT_EQ(recorder->wait(), 0) << recorder->errors();

    const RecordingMetadata take = metadataOf(*recorder);
    EXPECT_EQ(take.screenWidth, kWidth);
    EXPECT_EQ(take.screenHeight, kHeight);
    ASSERT_EQ(take.cursorEvents.size(), 2U);
    EXPECT_NEAR(take.cursorEvents[1].x - take.cursorEvents[0].x, 40, 2);
    EXPECT_NEAR(take.cursorEvents[1].y - take.cursorEvents[0].y, 30, 2);
    const auto pictures = test::readAll(recorder->take() / "video.mov");
    ASSERT_GT(pictures.size(), 1U);
    const PixelBuffer& last = *pictures.back().image;
    EXPECT_LE(test::colourDistance(last, kWidth - 4, 4, GnomeDesktop::kColour), 4);
    EXPECT_LE(test::colourDistance(last, kWidth - 4, kHeight - 4, GnomeDesktop::kColour), 4);
}

TEST_F(TakeOfAGnomeWindow, isSavedWhenItsWindowIsClosed) {
    ASSERT_TRUE(recorder->waitForFirstFrame()) << recorder->errors();
    desktop.closeTerminal();
    expectSavedAndTold();
}

TEST_F(TakeOfAGnomeWindow, isSavedWhenTheDesktopStopsTheCast) {
    ASSERT_TRUE(recorder->waitForFirstFrame()) << recorder->errors();
    desktop.stopCast();
    expectSavedAndTold();
}

} // namespace
} // namespace tavi
