#include "platform/x11/RecordedVideo.h"
#include "platform/x11/RecorderProcess.h"
#include "platform/x11/XTestServer.h"
#include "project/RecordingMetadataJson.h"
#include "project/TakeJournal.h"

#include <gmock/gmock.h>

#include <csignal>
#include <random>
#include <unistd.h>

namespace tavi {
namespace {

using test::Painter;
using test::RecorderProcess;
using test::XTestServer;

/// Where the button was pressed, in order.
std::vector<double> pressesOf(const RecordingMetadata& metadata) {
    std::vector<double> places;
    for (const CursorEvent& event : metadata.cursorEvents) {
        if (event.eventType == CursorEventType::leftMouseDown) {
            places.push_back(event.x);
        }
    }
    return places;
}

int pressesInJournal(const RecorderProcess& recorder) {
    const auto take = decodeTakeJournal(recorder.journal());
    return take ? static_cast<int>(pressesOf(take->metadata).size()) : 0;
}

/// A desktop on which somebody presses the button at one place after the other, and something
/// moves with each press.
class BusyDesktop {
public:
    BusyDesktop() {
        EXPECT_TRUE(server.run("xset m 1/1 0"));
        EXPECT_TRUE(server.run("xdotool mousemove 10 100"));
    }

    /// Presses the button `count` times, each time two points further to the right. All but the
    /// last are in the log then: where the pointer is, a recorder asks when it hears of the press.
    void press(const RecorderProcess& recorder, int count) {
        for (; count > 0; --count, ++presses) {
            EXPECT_TRUE(isLogged(recorder));
            painter.fill(2 * presses, 10, 20, 20, 0x335577U * static_cast<unsigned>(presses + 1));
            EXPECT_TRUE(server.run("xdotool mousemove_relative 2 0 click 1"));
        }
    }

    /// Waits until every press is on the disk, while the take runs.
    bool isLogged(const RecorderProcess& recorder) const {
        return test::waitFor([&] { return pressesInJournal(recorder) == presses; });
    }

    const XTestServer server{"320x240x24"};
    Painter painter{server};
    int presses = 0;
};

/// A killed recorder leaves the video up to half a second before; wait until that is something.
bool waitForVideo(const RecorderProcess& recorder) {
    const auto video = recorder.take() / "video.mov";
    return test::waitFor([&] { return !test::readAll(video).empty(); });
}

RecordingMetadata sidecarOf(const std::filesystem::path& take) {
    const auto metadata = decodeRecordingMetadata(test::readFile(take / "metadata.json"));
    EXPECT_TRUE(metadata);
    return metadata.value_or(RecordingMetadata{});
}

/// The places of the presses, without a gap, at least `least` of them.
void expectPresses(const RecordingMetadata& metadata, int least) {
    const auto places = pressesOf(metadata);
    EXPECT_GE(std::ssize(places), least);
    for (std::size_t i = 1; i < places.size(); ++i) {
        EXPECT_EQ(places[i], places[0] + 2 * static_cast<double>(i));
    }
}

/// What a user does with a take.
void expectUsable(const RecorderProcess& recorder, const std::filesystem::path& take) {
    int status = -1;
    const std::string name = take.filename().string();
    EXPECT_THAT(recorder.run("library --json", status), testing::HasSubstr(name));
    EXPECT_EQ(status, 0);
    EXPECT_THAT(recorder.run("inspect " + name + " --at 0.1", status),
                testing::HasSubstr("\"cursor\":{"));
    EXPECT_EQ(status, 0);
    const auto film = take / "film.mp4";
    const std::string printed = recorder.run("export " + name + " -o " + film.string(), status);
    EXPECT_EQ(status, 0) << printed;
    EXPECT_FALSE(test::readAll(film).empty());
}

TEST(KilledRecorder, leavesATakeWithVideoLogAndImages) {
    BusyDesktop desktop;
    std::mt19937 random(static_cast<unsigned>(getpid()));
    RecorderProcess recorder(desktop.server.name());
    ASSERT_TRUE(recorder.waitForFirstFrame()) << recorder.errors();
    desktop.press(recorder, 5);
    ASSERT_TRUE(desktop.isLogged(recorder));
    ASSERT_TRUE(waitForVideo(recorder));
    desktop.press(recorder, 1 + static_cast<int>(random() % 8));
    const unsigned pause = random() % 200'000;
    usleep(pause); // any moment is a moment to be killed at
    recorder.signal(SIGKILL);
    recorder.wait();
    const auto take = recorder.take();
    const int written = pressesInJournal(recorder);
    EXPECT_FALSE(std::filesystem::exists(take / "metadata.json"));

    expectUsable(recorder, take);
    const RecordingMetadata metadata = sidecarOf(take);
    SCOPED_TRACE(pause);
    expectPresses(metadata, written);
    EXPECT_GE(written, 5);
    EXPECT_EQ(metadata.screenWidth, 320);
    EXPECT_GT(metadata.duration, 0);
    EXPECT_TRUE(std::filesystem::exists(take / "cursor_0.png"));
    EXPECT_FALSE(std::filesystem::exists(take / "recording.journal"));
    EXPECT_FALSE(test::readAll(take / "video.mov").empty());
}

class KilledWhileItStops : public testing::TestWithParam<unsigned> {};

TEST_P(KilledWhileItStops, losesNothing) {
    BusyDesktop desktop;
    RecorderProcess recorder(desktop.server.name());
    ASSERT_TRUE(recorder.waitForFirstFrame()) << recorder.errors();
    desktop.press(recorder, 3);
    ASSERT_TRUE(desktop.isLogged(recorder));
    ASSERT_TRUE(waitForVideo(recorder));
    recorder.signal(SIGINT);
    usleep(GetParam());
    recorder.signal(SIGKILL);
    recorder.wait();
    const auto take = recorder.take();
    int status = -1;
    recorder.run("library", status);
    EXPECT_EQ(status, 0);
    expectPresses(sidecarOf(take), 3);
    EXPECT_FALSE(std::filesystem::exists(take / "recording.journal"));
    EXPECT_FALSE(test::readAll(take / "video.mov").empty());
}

// Microseconds: an undisturbed stop takes about 40 ms.
INSTANTIATE_TEST_SUITE_P(Moments, KilledWhileItStops,
                         testing::Values(0U, 3'000U, 10'000U, 25'000U, 60'000U));

TEST(RunningRecorder, isLeftAloneByThoseWhoLookAtTheLibrary) {
    BusyDesktop desktop;
    RecorderProcess recorder(desktop.server.name());
    ASSERT_TRUE(recorder.waitForFirstFrame()) << recorder.errors();
    desktop.press(recorder, 2);
    int status = -1;
    const std::string listed = recorder.run("library", status);
    EXPECT_THAT(listed, testing::HasSubstr(recorder.take().filename().string()));
    EXPECT_FALSE(std::filesystem::exists(recorder.take() / "metadata.json"));
    EXPECT_FALSE(recorder.journal().empty());
    desktop.press(recorder, 2);
    ASSERT_TRUE(desktop.isLogged(recorder));
    recorder.signal(SIGINT);
    EXPECT_EQ(recorder.wait(), 0) << recorder.errors();
    expectPresses(sidecarOf(recorder.take()), 4);
    EXPECT_FALSE(std::filesystem::exists(recorder.take() / "recording.journal"));
}

} // namespace
} // namespace tavi
