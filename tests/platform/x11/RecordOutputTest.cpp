#include "platform/x11/RecordedVideo.h"
#include "platform/x11/RecorderProcess.h"
#include "platform/x11/WatchedStream.h"
#include "project/RecordingMetadataJson.h"

#include <gmock/gmock.h>

#include <cmath>
#include <csignal>

namespace tavi {
namespace {

using test::Painter;
using test::RecorderProcess;
using test::XTestServer;

/// How the screens are arranged, and which of them is recorded.
struct Arrangement {
    const char* name;
    const char* command; ///< For the server with outputs; the one that turns, where it is empty.
    int display;
    int x; ///< Of the display on the root window, from the left upper corner.
    int y;
    int width;
    int height;
};

void PrintTo(const Arrangement& arrangement, std::ostream* out) {
    *out << arrangement.name;
}

constexpr std::uint32_t kMiddle = 0x3070B0;
constexpr std::uint32_t kCorner = 0xE0E0E0;
constexpr std::uint32_t kElsewhere = 0xC02020;
constexpr int kCornerSize = 40;

constexpr const char* kTwoOutputs = "sh -c 'xrandr --addmode DUMMY1 800x600 && "
                                    "xrandr --output DUMMY1 --mode 800x600 --pos 1024x120'";

class RecordOutput : public testing::TestWithParam<Arrangement> {
protected:
    RecordOutput()
        : outer("64x64x24"),
          server(isTurned() ? XTestServer::withTurningOutput(outer) : XTestServer::withOutputs()) {}

    static bool isTurned() { return *GetParam().command == 0; }

    /// The display in one colour, its left upper corner in another, and all else in a third.
    void paint() {
        const auto& a = GetParam();
        Painter painter(server);
        painter.fill(0, 0, 4096, 2160, kElsewhere);
        painter.fill(a.x, a.y, a.width, a.height, kMiddle);
        painter.fill(a.x, a.y, kCornerSize, kCornerSize, kCorner);
    }

    /// Presses the button at a place of the display.
    void pressAt(int x, int y) const {
        const auto text = [](int number) { return std::to_string(number); };
        EXPECT_TRUE(server.run("xdotool mousemove 10 10 mousemove_relative -- " +
                               text(GetParam().x + x - 10) + " " + text(GetParam().y + y - 10) +
                               " click 1"));
    }

    const XTestServer outer; ///< The turning one is a window of it.
    const XTestServer server;
};

bool isAbout(const PixelBuffer& image, int x, int y, std::uint32_t colour) {
    constexpr int kCodingNoise = 8;
    const std::uint32_t pixel = test::colourAt(image, x, y);
    for (int shift = 0; shift < 24; shift += 8) {
        const int difference =
            static_cast<int>(pixel >> shift & 0xFF) - static_cast<int>(colour >> shift & 0xFF);
        if (std::abs(difference) > kCodingNoise) {
            return false;
        }
    }
    return true;
}

TEST_P(RecordOutput, isShownAloneWithThePointerInItsPlace) {
    const auto& a = GetParam();
    ASSERT_TRUE(server.run(isTurned() ? "xrandr -o left 2>/dev/null" : a.command));
    paint();
    RecorderProcess recorder(server.name(), {"--display", std::to_string(a.display)});
    ASSERT_TRUE(recorder.waitForFirstFrame()) << recorder.errors();
    ASSERT_TRUE(server.run("xset m 1/1 0"));
    // Not near the end: the pointer doesn't leave the unscaled output.
    const Point press{a.width * 0.6, a.height * 0.6};
    pressAt(static_cast<int>(press.x), static_cast<int>(press.y));
    ASSERT_TRUE(recorder.stopAfterClick()) << recorder.errors();

    const auto samples = test::readAll(recorder.take() / "video.mov");
    ASSERT_FALSE(samples.empty());
    const PixelBuffer& image = *samples.back().image;
    ASSERT_EQ(image.width(), a.width);
    ASSERT_EQ(image.height(), a.height);
    EXPECT_TRUE(isAbout(image, 5, 5, kCorner));
    EXPECT_TRUE(isAbout(image, a.width - 3, 3, kMiddle));
    EXPECT_TRUE(isAbout(image, 3, a.height - 3, kMiddle));
    EXPECT_TRUE(isAbout(image, a.width - 3, a.height - 3, kMiddle));
    const auto metadata =
        decodeRecordingMetadata(test::readFile(recorder.take() / "metadata.json")).value();
    EXPECT_EQ(metadata.screenWidth, a.width);
    EXPECT_EQ(metadata.screenHeight, a.height);
    const auto logged = std::find_if(
        metadata.cursorEvents.begin(), metadata.cursorEvents.end(),
        [](const CursorEvent& e) { return e.eventType == CursorEventType::leftMouseDown; });
    ASSERT_NE(logged, metadata.cursorEvents.end());
    EXPECT_EQ(logged->x, std::floor(press.x));
    EXPECT_EQ(logged->y, std::floor(press.y));
}

INSTANTIATE_TEST_SUITE_P(
    Arrangements, RecordOutput,
    testing::Values(Arrangement{"first", kTwoOutputs, 0, 0, 0, 1024, 768},
                    Arrangement{"second", kTwoOutputs, 1, 1024, 120, 800, 600},
                    Arrangement{"leftOfTheFirst",
                                "sh -c 'xrandr --addmode DUMMY1 800x600 && xrandr --output DUMMY1 "
                                "--mode 800x600 --left-of DUMMY0'",
                                0, 800, 0, 1024, 768},
                    // What a server tells of an output whose picture it makes smaller by 1.5.
                    Arrangement{"scaled",
                                "sh -c 'xrandr --fb 1536x1152 && "
                                "xrandr --setmonitor LARGE 1536/270x1152/200+0+0 DUMMY0'",
                                0, 0, 0, 1536, 1152},
                    Arrangement{"turned", "", 0, 0, 0, 480, 640}),
    [](const auto& arrangement) { return arrangement.param.name; });

TEST(UnpluggedOutput, endsItsTakeWhichIsSaved) {
    const XTestServer server = XTestServer::withOutputs();
    ASSERT_TRUE(server.run(kTwoOutputs));
    RecorderProcess recorder(server.name(), {"--display", "1"});
    ASSERT_TRUE(recorder.waitForFirstFrame()) << recorder.errors();
    ASSERT_TRUE(server.run("xrandr --output DUMMY1 --off"));
    EXPECT_EQ(recorder.wait(), 1);
    EXPECT_THAT(recorder.errors(),
                testing::HasSubstr("The recording ended early. The recorded display was "
                                   "disconnected or switched off."));
    EXPECT_FALSE(test::readAll(recorder.take() / "video.mov").empty());
    EXPECT_TRUE(decodeRecordingMetadata(test::readFile(recorder.take() / "metadata.json")));
    EXPECT_FALSE(std::filesystem::exists(recorder.take() / "recording.journal"));
}

TEST(UnpluggedOutput, isNoConcernOfAnother) {
    const XTestServer server = XTestServer::withOutputs();
    ASSERT_TRUE(server.run(kTwoOutputs));
    Painter painter(server);
    RecorderProcess recorder(server.name(), {"--display", "0"});
    ASSERT_TRUE(recorder.waitForFirstFrame()) << recorder.errors();
    ASSERT_TRUE(server.run("xrandr --output DUMMY1 --off"));
    EXPECT_TRUE(test::waitFor([&] {
        painter.fill(0, 0, 1024, 768, kCorner); // A busy machine drops pictures.
        const auto samples = test::readAll(recorder.take() / "video.mov");
        return !samples.empty() && isAbout(*samples.back().image, 500, 500, kCorner);
    }));
    recorder.signal(SIGINT);
    EXPECT_EQ(recorder.wait(), 0) << recorder.errors();
}

} // namespace
} // namespace tavi
