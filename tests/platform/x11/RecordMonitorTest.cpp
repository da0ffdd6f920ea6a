#include "platform/x11/RecordedVideo.h"
#include "platform/x11/RecorderProcess.h"
#include "platform/x11/XTestServer.h"
#include "project/RecordingMetadataJson.h"

#include <gmock/gmock.h>

namespace tavi {
namespace {

using test::Painter;
using test::RecorderProcess;
using test::XTestServer;

constexpr std::uint32_t kLeft = 0x3070B0;
constexpr std::uint32_t kRight = 0xB07030;

/// A wide monitor and, to the right and 100 lower, one that stands upright (to a client that is
/// all there is of a rotated monitor), each with a colour of its own.
class TwoMonitors {
public:
    TwoMonitors() {
        EXPECT_TRUE(server.run("xrandr --setmonitor LEFT 500/132x400/106+0+0 screen"));
        EXPECT_TRUE(server.run("xrandr --setmonitor RIGHT 300/132x500/80+500+100 none"));
        EXPECT_TRUE(server.run("xset m 1/1 0"));
        painter.fill(0, 0, 500, 400, kLeft);
        painter.fill(500, 100, 300, 500, kRight);
    }

    /// Presses the button at a place of the whole screen, by way of its middle.
    void pressAt(int x, int y) const {
        EXPECT_TRUE(server.run("xdotool mousemove 400 300 mousemove_relative -- " +
                               std::to_string(x - 400) + " " + std::to_string(y - 300) +
                               " click 1"));
    }

    const XTestServer server{"800x600x24"};
    Painter painter{server};
};

/// Whether every pixel is of the colour 0xRRGGBB, as far as coding lets it be.
bool isAll(const PixelBuffer& image, std::uint32_t colour) {
    constexpr int kCodingNoise = 8;
    for (int y = 0; y < image.height(); ++y) {
        for (int i = 0; i < image.width() * 4; ++i) {
            const int wanted = static_cast<int>(colour >> (8 * (i % 4))) & 0xFF;
            if (i % 4 < 3 && std::abs(image.row(y)[i] - wanted) > kCodingNoise) {
                return false;
            }
        }
    }
    return true;
}

struct MonitorCase {
    int number;
    int width;
    int height;
    std::uint32_t colour;
    Point inside;  ///< Where the button is pressed, on the whole screen, from its top left.
    Point logged;  ///< Where that is on the monitor.
    Point outside; ///< On the other monitor.
};

class RecordMonitor : public testing::TestWithParam<MonitorCase> {};

TEST_P(RecordMonitor, takeShowsItAloneAndPlacesThePointerOnIt) {
    const MonitorCase& monitor = GetParam();
    TwoMonitors desktop;
    RecorderProcess recorder(desktop.server.name(), {"--display", std::to_string(monitor.number)});
    ASSERT_TRUE(recorder.waitForFirstFrame()) << recorder.errors();
    desktop.pressAt(static_cast<int>(monitor.inside.x), static_cast<int>(monitor.inside.y));
    ASSERT_TRUE(recorder.waitForClick()) << recorder.errors();
    desktop.pressAt(static_cast<int>(monitor.outside.x), static_cast<int>(monitor.outside.y));
    ASSERT_TRUE(recorder.stopAfterClick()) << recorder.errors();

    const auto samples = test::readAll(recorder.take() / "video.mov");
    ASSERT_FALSE(samples.empty());
    for (const auto& sample : samples) {
        EXPECT_EQ(sample.image->width(), monitor.width);
        EXPECT_EQ(sample.image->height(), monitor.height);
        EXPECT_TRUE(isAll(*sample.image, monitor.colour));
    }
    const auto metadata =
        decodeRecordingMetadata(test::readFile(recorder.take() / "metadata.json")).value();
    EXPECT_EQ(metadata.screenWidth, monitor.width);
    EXPECT_EQ(metadata.screenHeight, monitor.height);
    std::vector<Point> presses;
    for (const CursorEvent& event : metadata.cursorEvents) {
        if (event.eventType == CursorEventType::leftMouseDown) {
            presses.push_back({event.x, event.y});
        }
    }
    EXPECT_THAT(presses, testing::ElementsAre(monitor.logged));
}

INSTANTIATE_TEST_SUITE_P(
    Both, RecordMonitor,
    testing::Values(MonitorCase{0, 500, 400, kLeft, {40, 30}, {40, 30}, {520, 130}},
                    MonitorCase{1, 300, 500, kRight, {790, 590}, {290, 490}, {40, 30}}));

/// Smaller than any video can be: the picture goes on with the monitor's last column and row.
TEST(Monitors, aTinyOneIsRecorded) {
    const XTestServer server("320x240x24");
    ASSERT_TRUE(server.run("xrandr --setmonitor TINY 9/1x30/1+40+20 screen"));
    Painter painter(server);
    painter.fill(0, 0, 320, 240, kRight);
    painter.fill(40, 20, 9, 30, kLeft);
    RecorderProcess recorder(server.name(), {"--display", "0"});
    ASSERT_TRUE(recorder.waitForFirstFrame()) << recorder.errors();
    ASSERT_TRUE(server.run("xdotool mousemove 42 25 click 1"));
    ASSERT_TRUE(recorder.stopAfterClick()) << recorder.errors();

    const auto samples = test::readAll(recorder.take() / "video.mov");
    ASSERT_FALSE(samples.empty());
    EXPECT_EQ(samples.front().image->width(), 16);
    EXPECT_EQ(samples.front().image->height(), 30);
    EXPECT_TRUE(isAll(*samples.front().image, kLeft));
}

TEST(Monitors, sourcesTellSizesAndPlaces) {
    const TwoMonitors desktop;
    const RecorderProcess recorder(desktop.server.name());
    int status = -1;
    setenv("DISPLAY", desktop.server.name().c_str(), 1);
    const std::string listed = recorder.run("sources --json", status);
    unsetenv("DISPLAY");
    EXPECT_EQ(status, 0);
    EXPECT_THAT(listed, testing::HasSubstr(R"("number":0,"name":"LEFT","width":500,"height":400,)"
                                           R"("frame":[0,200,500,400])"));
    EXPECT_THAT(listed, testing::HasSubstr(R"("number":1,"name":"RIGHT","width":300,"height":500,)"
                                           R"("frame":[500,0,300,500])"));
}

TEST(Monitors, oneThatIsNotThereIsTold) {
    const TwoMonitors desktop;
    RecorderProcess recorder(desktop.server.name(), {"--display", "2"});
    EXPECT_EQ(recorder.wait(), 1);
    EXPECT_THAT(recorder.errors(), testing::HasSubstr("There is no display 2"));
}

} // namespace
} // namespace tavi
