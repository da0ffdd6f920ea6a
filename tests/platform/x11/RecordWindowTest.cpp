#include "platform/x11/ManagedDesktop.h"
#include "platform/x11/RecordedVideo.h"
#include "platform/x11/RecorderProcess.h"
#include "platform/x11/WatchedStream.h"
#include "project/RecordingMetadataJson.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <csignal>

namespace tavi {
namespace {

using test::ManagedDesktop;
using test::Painter;
using test::readAll;
using test::RecorderProcess;

constexpr int kCodingNoise = 8;

/// Pixels, away from the edges, that are further from 0xRRGGBB than coding explains.
int strangePixels(const PixelBuffer& image, std::uint32_t colour) {
    constexpr int kMargin = 4; // the terminal's own frame
    int count = 0;
    for (int y = kMargin; y < image.height() - kMargin; ++y) {
        for (int i = kMargin * 4; i < (image.width() - kMargin) * 4; ++i) {
            const int wanted = static_cast<int>(colour >> (8 * (i % 4))) & 0xFF;
            const bool isColour = i % 4 < 3;
            count += isColour && std::abs(image.row(y)[i] - wanted) > kCodingNoise ? 1 : 0;
        }
    }
    return count;
}

constexpr std::uint32_t kMark = 0xFFFFFF;

bool isMarked(const PixelBuffer& image) {
    const std::uint8_t* pixel = image.row(65) + 4 * 80;
    return std::all_of(pixel, pixel + 3, [](int value) { return value >= 0xFF - kCodingNoise; });
}

std::filesystem::path printedFolder(const std::filesystem::path& out) {
    std::string text = test::readFile(out);
    return text.substr(0, text.find('\n'));
}

TEST(RecordWindow, filmShowsAWindowThatAnotherCovers) {
    ManagedDesktop desktop;
    const std::uint32_t id = desktop.startTerminal();
    ASSERT_NE(id, 0U);
    Painter painter(desktop.server);
    painter.addWindow(0, 0, 800, 600, 0xC02020);
    const auto out = desktop.folder / "out";
    ASSERT_EQ(desktop.run("record --duration 1.5 --window " + std::to_string(id), out), 0)
        << test::readFile(desktop.folder / "errors");
    const auto take = printedFolder(out);
    const auto samples = readAll(take / "video.mov");
    ASSERT_FALSE(samples.empty());
    for (const auto& sample : samples) {
        EXPECT_EQ(strangePixels(*sample.image, 0x3070B0), 0);
    }
    const auto metadata = decodeRecordingMetadata(test::readFile(take / "metadata.json")).value();
    EXPECT_GT(metadata.screenWidth, 250);
    EXPECT_LT(metadata.screenWidth, 600) << "the window, not the display";
    EXPECT_EQ(samples[0].image->width(), metadata.screenWidth + metadata.screenWidth % 2);
    EXPECT_GT(metadata.duration, 1.4);
}

TEST(RecordWindow, filmGoesOnWhenTheWindowIsMovedMinimizedAndShownAgain) {
    ManagedDesktop desktop;
    const std::uint32_t id = desktop.startTerminal();
    ASSERT_NE(id, 0U);
    const std::string window = std::to_string(id);
    RecorderProcess recorder(desktop.server.name(), {"--window", window});
    ASSERT_TRUE(recorder.waitForFirstFrame()) << recorder.errors();
    ASSERT_TRUE(desktop.server.run("xdotool windowmove " + window + " -60 400"));
    ASSERT_TRUE(desktop.server.run("xdotool windowminimize --sync " + window));
    ASSERT_TRUE(desktop.server.run("xdotool windowmap --sync " + window));
    Painter painter(desktop.server);
    const xcb_window_t mark = painter.addWindow(0, 0, 40, 30, kMark);
    xcb_reparent_window(painter.connection(), mark, id, 60, 50);
    painter.sync();
    const auto film = [&] { return readAll(recorder.take() / "video.mov"); };
    EXPECT_TRUE(test::waitFor([&] {
        painter.paint(mark, 0, 0, 40, 30, kMark); // A busy machine drops pictures.
        const auto samples = film();
        return !samples.empty() && isMarked(*samples.back().image);
    })) << "it is readable while it is written";
    recorder.signal(SIGINT);
    ASSERT_EQ(recorder.wait(), 0) << recorder.errors();
    for (const auto& sample : film()) {
        EXPECT_TRUE(isMarked(*sample.image) || strangePixels(*sample.image, 0x3070B0) == 0)
            << sample.presentationTime.seconds();
    }
}

TEST(RecordWindow, takeOfAWindowThatIsClosedIsSaved) {
    ManagedDesktop desktop;
    const std::uint32_t id = desktop.startTerminal();
    ASSERT_NE(id, 0U);
    RecorderProcess recorder(desktop.server.name(), {"--window", std::to_string(id)});
    ASSERT_TRUE(recorder.waitForFirstFrame()) << recorder.errors();
    ASSERT_TRUE(desktop.server.run("xdotool windowkill " + std::to_string(id)));
    EXPECT_EQ(recorder.wait(), 0);
    EXPECT_THAT(recorder.errors(), testing::HasSubstr("The recorded window was closed."));
    EXPECT_FALSE(readAll(recorder.take() / "video.mov").empty());
    EXPECT_TRUE(std::filesystem::exists(recorder.take() / "metadata.json"));
}

TEST(RecordWindow, minimizedWindowIsNeitherListedNorRecorded) {
    ManagedDesktop desktop;
    const std::uint32_t id = desktop.startTerminal();
    ASSERT_NE(id, 0U);
    ASSERT_TRUE(desktop.server.run("xdotool windowminimize --sync " + std::to_string(id)));
    ASSERT_TRUE(test::waitFor([&] { return desktop.idOf("recorded") == 0; }));
    EXPECT_EQ(desktop.run("record --window " + std::to_string(id), desktop.folder / "out"), 1);
    EXPECT_THAT(test::readFile(desktop.folder / "errors"), testing::HasSubstr("minimized"));
}

TEST(RecordWindow, unknownWindowIsTold) {
    ManagedDesktop desktop;
    EXPECT_EQ(desktop.run("record --window 4711", desktop.folder / "out"), 1);
    EXPECT_THAT(test::readFile(desktop.folder / "errors"), testing::HasSubstr("4711"));
}

} // namespace
} // namespace tavi
