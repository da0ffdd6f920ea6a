#include "platform/x11/RecordedVideo.h"
#include "platform/x11/RecorderProcess.h"
#include "platform/x11/WatchedStream.h"
#include "platform/x11/X11Pointer.h"
#include "platform/x11/X11ShareableContent.h"
#include "platform/x11/X11SourceFrames.h"
#include "project/RecordingMetadataJson.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <csignal>

namespace tavi {
namespace {

using test::colourAt;
using test::Painter;
using test::XTestServer;

constexpr std::uint32_t kCorner = 0xE0E0E0;
constexpr std::uint32_t kMiddle = 0x3070B0;
constexpr std::uint32_t kElsewhere = 0xC02020;
constexpr int kCornerSize = 40;

/// Two outputs; the second is recorded, 800x600 pixels, right of the first and 120 lower.
class MovedDisplay : public testing::Test {
protected:
    MovedDisplay() {
        for (const char* mode :
             {"DUMMY1 640x480", "DUMMY1 800x600", "DUMMY1 1024x768", "DUMMY2 800x600"}) {
            change(std::string("--addmode ") + mode);
        }
        change("--output DUMMY1 --mode 800x600 --pos 1024x120");
        paint(1024, 120, 800, 600);
    }

    void change(const std::string& how) const { EXPECT_TRUE(server.run("xrandr " + how)); }

    /// An area in one colour, its left upper corner in another, and all else in a third.
    void paint(int x, int y, int width, int height) const {
        Painter painter(server);
        painter.fill(0, 0, 4096, 2160, kElsewhere);
        painter.fill(x, y, width, height, kMiddle);
        painter.fill(x, y, kCornerSize, kCornerSize, kCorner);
    }

    std::uint32_t displayId() const {
        return X11ShareableContent(server.name()).content().value().displays.at(1).id;
    }

    const XTestServer server = XTestServer::withOutputs();
};

class MovedStream : public MovedDisplay {
protected:
    MovedStream() { EXPECT_TRUE(watched.shows(0, 0, kCorner)); }

    /// Waits for the first sample that tells of a move, and gives its place.
    std::optional<Rect> movedTo() const {
        std::optional<Rect> place;
        test::waitFor([&] {
            for (const auto& sample : watched.samples()) {
                place = sample.movedTo ? sample.movedTo : place;
            }
            return place.has_value();
        });
        return place;
    }

    const test::WatchedStream watched{server, ScreenFilter::display(displayId()), 800, 600};
};

TEST_F(MovedStream, isShownWhereItIsThen) {
    change("--output DUMMY1 --pos 0x768");
    paint(0, 768, 800, 600);
    // Below what was the bottom of the screen when it all began.
    EXPECT_EQ(movedTo(), (Rect{0, -600, 800, 600}));
    ASSERT_TRUE(watched.shows(799, 599, kMiddle));
    ASSERT_TRUE(watched.shows(0, 0, kCorner));
    const auto picture = watched.last();
    for (int y = 0; y < 600; ++y) {
        for (int x = 0; x < 800; ++x) {
            const bool isCorner = x < kCornerSize && y < kCornerSize;
            ASSERT_EQ(colourAt(*picture, x, y), isCorner ? kCorner : kMiddle) << x << "," << y;
        }
    }
}

TEST_F(MovedStream, itsChangesCountThereAndNoLongerWhereItWas) {
    change("--output DUMMY1 --pos 0x768");
    ASSERT_TRUE(movedTo());
    Painter painter(server);
    painter.fill(100, 868, 50, 50, 0x123456);
    ASSERT_TRUE(watched.shows(101, 101, 0x123456));
    const auto before = watched.count();
    painter.fill(900, 200, 50, 50, 0x654321); // on the other one
    test::runLoopFor(0.2);
    EXPECT_EQ(watched.count(), before);
}

TEST_F(MovedStream, smallerModeLeavesBlackAndTheFirstOneFillsThePictureAgain) {
    change("--output DUMMY1 --mode 640x480");
    EXPECT_EQ(movedTo(), (Rect{1024, 768 - 120 - 480, 640, 480}));
    paint(1024, 120, 640, 480);
    ASSERT_TRUE(watched.shows(639, 479, kMiddle));
    EXPECT_EQ(watched.last()->width(), 800);
    EXPECT_EQ(watched.last()->height(), 600);
    EXPECT_EQ(colourAt(*watched.last(), 640, 100), 0U);
    EXPECT_EQ(colourAt(*watched.last(), 100, 480), 0U);
    EXPECT_EQ(colourAt(*watched.last(), 799, 599), 0U);
    change("--output DUMMY1 --mode 800x600");
    paint(1024, 120, 800, 600);
    EXPECT_TRUE(watched.shows(799, 599, kMiddle));
}

TEST_F(MovedStream, largerModeIsCutOff) {
    change("--output DUMMY1 --mode 1024x768");
    paint(1024, 120, 1024, 768);
    Painter(server).fill(1034, 130, 5, 5, 0x123456);
    ASSERT_TRUE(watched.shows(12, 12, 0x123456));
    EXPECT_EQ(colourAt(*watched.last(), 0, 0), kCorner);
    EXPECT_EQ(colourAt(*watched.last(), 799, 599), kMiddle);
    EXPECT_EQ(watched.last()->width(), 800);
}

TEST_F(MovedStream, aMoveOfAnotherDisplayIsNone) {
    change("--output DUMMY2 --mode 800x600 --pos 0x1000");
    Painter(server).fill(1034, 130, 5, 5, 0x123456);
    ASSERT_TRUE(watched.shows(12, 12, 0x123456));
    for (const auto& sample : watched.samples()) {
        EXPECT_EQ(sample.movedTo, std::nullopt);
    }
}

TEST_F(MovedDisplay, laterConnectionsCountFromTheSameZero) {
    const auto pointer = X11Pointer::open(server.name()).value();
    ASSERT_TRUE(server.run("xdotool mousemove 1100 300"));
    const Point before = pointer->query();
    change("--output DUMMY2 --mode 800x600 --pos 0x1000");
    EXPECT_EQ(X11Pointer::open(server.name()).value()->query(), before);
    EXPECT_EQ(X11SourceFrames(server.name()).displayFrame(displayId()),
              (Rect{1024, 768 - 120 - 600, 800, 600}));
}

TEST_F(MovedDisplay, takeGoesOnWithThePointerInItsPlace) {
    ASSERT_TRUE(server.run("xset m 1/1 0"));
    test::RecorderProcess recorder(server.name(), {"--display", "1"});
    ASSERT_TRUE(recorder.waitForFirstFrame()) << recorder.errors();
    change("--output DUMMY1 --pos 0x768");
    Painter painter(server);
    ASSERT_TRUE(test::waitFor([&] { // A busy machine drops pictures.
        painter.fill(0, 0, 4096, 2160, kElsewhere);
        painter.fill(0, 768, 800, 600, kMiddle);
        const auto samples = test::readAll(recorder.take() / "video.mov");
        return !samples.empty() && (colourAt(*samples.back().image, 400, 300) & 0xFF) > 0x90;
    }));
    // Where the display is, and on the other one.
    ASSERT_TRUE(server.run("xdotool mousemove 290 1058 mousemove_relative -- 10 10 click 1"));
    ASSERT_TRUE(recorder.waitForClick()) << recorder.errors();
    ASSERT_TRUE(server.run("xdotool mousemove 500 100 mousemove_relative -- 10 10 click 3"));
    ASSERT_TRUE(recorder.stopAfterClick()) << recorder.errors();
    const auto metadata =
        decodeRecordingMetadata(test::readFile(recorder.take() / "metadata.json")).value();
    std::vector<Point> presses;
    for (const CursorEvent& event : metadata.cursorEvents) {
        if (event.eventType == CursorEventType::leftMouseDown ||
            event.eventType == CursorEventType::rightClick) {
            presses.push_back({event.x, event.y});
        }
    }
    EXPECT_THAT(presses, testing::ElementsAre(Point{300, 300}));
}

} // namespace
} // namespace tavi
