#include "platform/portal/SwayDesktop.h"
#include "platform/x11/RecordedVideo.h"
#include "platform/x11/RecorderProcess.h"
#include "project/RecordingMetadataJson.h"
#include "support/PixelColour.h"

#include <gmock/gmock.h>

#include <csignal>

namespace tavi {
namespace {

using test::RecorderProcess;
using test::SwayDesktop;

class TakeUnderSway : public testing::Test {
protected:
    /// Records for two seconds; the last picture.
    PixelBufferPtr record() {
        RecorderProcess recorder("", {"--duration", "2"});
        EXPECT_EQ(recorder.wait(), 0) << recorder.errors();
        const auto metadata =
            decodeRecordingMetadata(test::readFile(recorder.take() / "metadata.json"));
        EXPECT_TRUE(metadata);
        if (metadata) {
            take = *metadata;
        }
        const auto pictures = test::readAll(recorder.take() / "video.mov");
        EXPECT_GT(pictures.size(), 1U);
        return pictures.empty() ? nullptr : pictures.back().image;
    }

    SwayDesktop desktop;
    RecordingMetadata take;
};

TEST_F(TakeUnderSway, showsTheMonitorAndLogsNoPointer) {
    const auto picture = record();
    ASSERT_NE(picture, nullptr);
    EXPECT_EQ(take.screenWidth, SwayDesktop::kWidth);
    EXPECT_EQ(take.screenHeight, SwayDesktop::kHeight);
    EXPECT_TRUE(take.cursorEvents.empty()); // its portal doesn't tell where the pointer is
    EXPECT_LE(test::colourDistance(*picture, 1000, 600, SwayDesktop::kColour), 4);
}

/// The terminal's text stands at the left of the desktop, whichever way round the monitor is.
TEST_F(TakeUnderSway, isUprightOnATurnedMonitor) {
    desktop.turnMonitor("90");
    const auto picture = record();
    ASSERT_NE(picture, nullptr);
    EXPECT_EQ(take.screenWidth, SwayDesktop::kHeight);
    EXPECT_EQ(take.screenHeight, SwayDesktop::kWidth);
    int left = 0;
    int right = 0;
    for (int y = 0; y < picture->height(); y += 2) {
        for (int x = 0; x < 100; ++x) {
            left += test::colourDistance(*picture, x, y, SwayDesktop::kColour) > 40 ? 1 : 0;
            right += test::colourDistance(*picture, picture->width() - 1 - x, y,
                                          SwayDesktop::kColour) > 40
                         ? 1
                         : 0;
        }
    }
    EXPECT_GT(left, 500);
    EXPECT_EQ(right, 0);
}

} // namespace
} // namespace tavi
