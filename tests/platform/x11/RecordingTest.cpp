#include "capture/CursorImageBytes.h"
#include "fakes/FakeHelper.h"
#include "platform/x11/RealAdapters.h"
#include "platform/x11/RecordedVideo.h"
#include "platform/x11/X11ShareableContent.h"
#include "platform/x11/XTestServer.h"
#include "project/RecordingMetadataJson.h"
#include "support/TemporaryFolder.h"

#include <gmock/gmock.h>

#include <memory>

namespace tavi {
namespace {

using test::Painter;
using test::readAll;
using test::XTestServer;

/// A take of a server's only display, made of the real adapters.
class RealTake {
public:
    explicit RealTake(const std::string& server)
        : m_adapters(server),
          m_display(X11ShareableContent(server).content().value().displays.at(0)),
          m_recorder(std::make_unique<TakeRecorder>(m_adapters.ports(&m_permission))) {}
    /// What the take left to the main thread asks for the permission.
    ~RealTake() {
        m_recorder.reset();
        test::runLoopFor(0);
    }

    Result<void, CaptureError> start(const std::filesystem::path& library) {
        return m_recorder->start(m_display, library);
    }
    TakeRecorder& recorder() { return *m_recorder; }

    /// Whether its key helper listens: what is typed before is lost.
    bool hearsKeys() const { return m_permission.grants > 0; }

private:
    FakeKeyPermission m_permission;
    test::RealAdapters m_adapters;
    Display m_display;
    std::unique_ptr<TakeRecorder> m_recorder;
};

/// Largest difference of a colour channel between a pixel and 0xRRGGBB.
int difference(const PixelBuffer& image, int x, int y, std::uint32_t colour) {
    int largest = 0;
    for (int channel = 0; channel < 3; ++channel) {
        const int wanted = static_cast<int>(colour >> (8 * channel)) & 0xFF;
        largest = std::max(largest, std::abs(image.row(y)[x * 4 + channel] - wanted));
    }
    return largest;
}

/// What a lossy encoder may do to a plain area.
constexpr int kCodingNoise = 8;

TEST(Recording, ofThreeSecondsHasVideoLogKeysAndImages) {
    const XTestServer server("640x480x24");
    const test::TemporaryFolder library;
    Painter painter(server);
    painter.fill(0, 0, 640, 480, 0x204080);
    painter.addWindow(400, 100, 100, 100, 0x808080, 152);
    ASSERT_TRUE(server.run("xset m 1/1 0"));
    ASSERT_TRUE(server.run("xdotool mousemove 100 100"));
    RealTake take(server.name());
    TakeRecorder& recorder = take.recorder();
    const MediaTime before = SystemClock().hostTime();
    ASSERT_TRUE(take.start(library.path()));
    const auto journal = [&] {
        const std::filesystem::directory_iterator folder(library.path());
        return test::readFile(folder->path() / "recording.journal");
    };
    ASSERT_TRUE(test::waitFor([&] {
        recorder.tick();
        return recorder.elapsedTime() > 0.8 && take.hearsKeys();
    }));
    painter.fill(0, 240, 640, 240, 0xC04020);
    ASSERT_TRUE(server.run("xdotool mousemove_relative 50 20 click 1 key ctrl+k"));
    test::runLoopFor(0.1); // beyond the gate between two moves
    ASSERT_TRUE(server.run("xdotool mousemove_relative 300 30 click 4"));
    ASSERT_TRUE(test::waitFor([&] {
        recorder.tick();
        return recorder.elapsedTime() > 2.5 && journal().find("keyDown") != std::string::npos;
    }));
    const double elapsed = recorder.elapsedTime();
    const auto folder = recorder.stop();
    const double wall = (SystemClock().hostTime() - before).seconds();
    ASSERT_TRUE(folder);
    EXPECT_EQ(recorder.failure(), std::nullopt);
    EXPECT_EQ(recorder.droppedFrames(), 0U);

    const auto samples = readAll(*folder / "video.mov");
    ASSERT_GE(samples.size(), 2U);
    EXPECT_EQ(samples.front().presentationTime, (MediaTime{0, 1}));
    EXPECT_LE(difference(*samples.front().image, 320, 400, 0x204080), kCodingNoise);
    EXPECT_LE(difference(*samples.back().image, 320, 400, 0xC04020), kCodingNoise);
    EXPECT_LE(difference(*samples.back().image, 320, 100, 0x204080), kCodingNoise);
    const double duration = FfmpegMediaLibrary(std::make_shared<YuvConverter>())
                                .openAsset(*folder / "video.mov")
                                ->duration.seconds();
    EXPECT_GT(duration, elapsed - 0.1) << "the last picture lasts until the stop";
    EXPECT_LT(duration, wall);

    const auto metadata =
        decodeRecordingMetadata(test::readFile(*folder / "metadata.json")).value();
    EXPECT_DOUBLE_EQ(metadata.duration, elapsed);
    EXPECT_EQ(metadata.screenWidth, 640);
    EXPECT_EQ(metadata.screenHeight, 480);
    std::vector<std::string> log;
    for (const auto& e : metadata.cursorEvents) {
        EXPECT_GT(e.timestamp, 0.7);
        EXPECT_LT(e.timestamp, elapsed);
        log.push_back(std::string(rawValue(e.eventType)));
    }
    EXPECT_THAT(log, testing::UnorderedElementsAre("move", "leftMouseDown", "leftMouseUp",
                                                   "keyDown", "move", "scroll"));
    const CursorEvent& scroll = metadata.cursorEvents.back();
    EXPECT_EQ(scroll.eventType, CursorEventType::scroll);
    EXPECT_EQ((Point{scroll.x, scroll.y}), (Point{450, 150}));
    EXPECT_GT(scroll.cursorImageId, metadata.cursorEvents.front().cursorImageId)
        << "over the window with another cursor";
    for (const auto& e : metadata.cursorEvents) {
        if (e.eventType == CursorEventType::keyDown) {
            EXPECT_EQ(e.keyCharacter, "k");
            EXPECT_EQ(e.keyModifiers, 0x40000U);
        }
    }
    ASSERT_GT(metadata.cursorImageInfos.size(), static_cast<std::size_t>(scroll.cursorImageId));
    const auto image = FfmpegImageFiles().readPng(*folder / "cursor_1.png");
    ASSERT_TRUE(image);
    EXPECT_EQ((*image)->width(), static_cast<int>(metadata.cursorImageInfos[1].width));
}

TEST(Recording, whoseServerDiesEndsWithAnErrorAndAFile) {
    XTestServer server("320x240x24");
    const test::TemporaryFolder library;
    RealTake take(server.name());
    TakeRecorder& recorder = take.recorder();
    ASSERT_TRUE(take.start(library.path()));
    ASSERT_TRUE(test::waitFor([&] { return recorder.appendedFrames() > 0; }));
    server.die();
    ASSERT_TRUE(test::waitFor([&] { return recorder.failure().has_value(); }));
    EXPECT_EQ(recorder.failure()->kind, CaptureError::Kind::connectionLost);
    const auto folder = recorder.stop();
    ASSERT_TRUE(folder);
    EXPECT_EQ(readAll(*folder / "video.mov").size(), 1U);
    EXPECT_TRUE(std::filesystem::exists(*folder / "metadata.json"));
}

TEST(Recording, intoAFolderThatCannotBeMadeFailsWithASentence) {
    const XTestServer server("320x240x24");
    RealTake take(server.name());
    const auto started = take.start("/proc/nowhere");
    ASSERT_FALSE(started);
    EXPECT_EQ(started.error().kind, CaptureError::Kind::writer);
    EXPECT_THAT(started.error().description(),
                testing::HasSubstr("no folder can be made in /proc/nowhere"));
}

} // namespace
} // namespace tavi
