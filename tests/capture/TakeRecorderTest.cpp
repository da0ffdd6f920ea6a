#include "capture/TakeRecorder.h"

#include "capture/CursorImageBytes.h"
#include "fakes/FakeClock.h"
#include "fakes/FakeExecutor.h"
#include "fakes/FakeHelper.h"
#include "fakes/FakeMedia.h"
#include "fakes/FakePointer.h"
#include "fakes/FakeScreen.h"
#include "project/RecordingMetadataJson.h"
#include "support/TemporaryFolder.h"

#include <gmock/gmock.h>

namespace tavi {
namespace {

using testing::SizeIs;

SystemCursor cursorOf(std::uint8_t shade) {
    PixelBuffer image(2, 3);
    image.row(1)[0] = shade;
    return {cursorImageBytes(image, 1, 2), {1, 2}, {2, 3}};
}

class TakeRecorderTest : public testing::Test {
protected:
    TakeRecorderTest() {
        pointer.arrow = cursorOf(0);
        pointer.current = cursorOf(0);
        pointer.location = {10, 10};
    }

    Result<void, CaptureError> start() { return recorder.start(display, library.path()); }

    void sendFirstFrame() {
        screen.sendPicture(1);
        screen.settle();
    }

    RecordingMetadata metadataOf(const std::filesystem::path& folder) const {
        return decodeRecordingMetadata(test::readFile(folder / "metadata.json")).value();
    }

    const Display display{3, "test", 640, 480, {0, 0, 640, 480}, true};
    test::TemporaryFolder library;
    FakeScreenStreams screen;
    FakeMediaLibrary media;
    FakeImageFiles images;
    FakePointer pointer;
    FakeHelperLauncher launcher;
    FakeClock clock;
    FakeExecutor main;
    TakeRecorder recorder{
        {screen,
         media,
         images,
         {pointer, pointer, pointer, launcher, clock, main, nullptr, "/package/TaviKeys"}}};
};

TEST_F(TakeRecorderTest, leavesAFolderWithMetadataAndImages) {
    ASSERT_TRUE(start());
    EXPECT_TRUE(recorder.isRecording());
    EXPECT_EQ(screen.lastFilter, ScreenFilter::display(3));
    const Date zero = clock.now();
    sendFirstFrame();
    clock.advance(1.5);
    pointer.current = cursorOf(7);
    pointer.fire(PointerEventKind::leftMouseDown);
    clock.advance(0.5);
    recorder.tick();
    const auto folder = recorder.stop();
    ASSERT_TRUE(folder);
    EXPECT_EQ(folder->parent_path(), library.path());
    EXPECT_TRUE(folder->filename().string().starts_with("Recording_"));
    EXPECT_EQ(media.lastPath, *folder / "video.mov");

    const RecordingMetadata metadata = metadataOf(*folder);
    EXPECT_EQ(metadata.startDate, zero);
    EXPECT_NEAR(metadata.duration, 2, 1e-6);
    EXPECT_EQ(metadata.screenWidth, 640);
    EXPECT_EQ(metadata.screenHeight, 480);
    ASSERT_THAT(metadata.cursorEvents, SizeIs(1));
    EXPECT_NEAR(metadata.cursorEvents[0].timestamp, 1.5, 1e-6);
    EXPECT_EQ(metadata.cursorEvents[0].cursorImageId, 1);
    EXPECT_DOUBLE_EQ(metadata.cursorEvents[0].y, 470);
    EXPECT_THAT(metadata.cursorImageInfos, SizeIs(2));
    EXPECT_FALSE(metadata.hasCameraRecording);
    EXPECT_FALSE(metadata.hasAudioRecording);

    ASSERT_THAT(images.written, SizeIs(2));
    EXPECT_EQ(images.written.at("cursor_1.png")->row(1)[0], 7);
}

TEST_F(TakeRecorderTest, pointerIsLoggedWhereTheDisplayIsAfterAMove) {
    ASSERT_TRUE(start());
    sendFirstFrame();
    ScreenSample sample;
    sample.presentationTime = {2, 1};
    sample.image = std::make_shared<PixelBuffer>(2, 2);
    sample.movedTo = Rect{1000, 200, 640, 480};
    screen.send(sample);
    screen.settle();
    pointer.location = {10, 10};
    pointer.fire(PointerEventKind::leftMouseDown); // no longer on it
    pointer.location = {1010, 210};
    pointer.fire(PointerEventKind::leftMouseUp);
    const RecordingMetadata metadata = metadataOf(*recorder.stop());
    EXPECT_EQ(metadata.screenWidth, 640);
    ASSERT_THAT(metadata.cursorEvents, SizeIs(1));
    EXPECT_DOUBLE_EQ(metadata.cursorEvents[0].x, 10);
    EXPECT_DOUBLE_EQ(metadata.cursorEvents[0].y, 470);
}

TEST_F(TakeRecorderTest, windowIsRecordedInItsOwnSizeAndSpace) {
    const Window window{9, "notes", "Editor", "editor", {100, 50, 301, 200}, true};
    ASSERT_TRUE(recorder.start(window, library.path()));
    EXPECT_EQ(screen.lastFilter, ScreenFilter::window(9));
    EXPECT_EQ(screen.lastConfiguration.width, 302) << "what the encoder takes";
    sendFirstFrame();
    pointer.location = {110, 60};
    pointer.fire(PointerEventKind::leftMouseDown);
    pointer.location = {99, 60}; // outside
    pointer.fire(PointerEventKind::leftMouseUp);
    const RecordingMetadata metadata = metadataOf(*recorder.stop());
    EXPECT_EQ(metadata.screenWidth, 301);
    EXPECT_EQ(metadata.screenHeight, 200);
    ASSERT_THAT(metadata.cursorEvents, SizeIs(1));
    EXPECT_DOUBLE_EQ(metadata.cursorEvents[0].x, 10);
    EXPECT_DOUBLE_EQ(metadata.cursorEvents[0].y, 190);
}

TEST_F(TakeRecorderTest, aSourceThatIsTooSmallForAVideoIsContinuedToTheRightAndBelow) {
    const Window flat{9, "notes", "Editor", "editor", {100, 50, 30, 10}, true};
    ASSERT_TRUE(recorder.start(flat, library.path()));
    EXPECT_EQ(screen.lastConfiguration.width, 30);
    EXPECT_EQ(screen.lastConfiguration.height, 16);
    sendFirstFrame();
    pointer.location = {104, 58}; // four to the right of its upper left corner, two below
    pointer.fire(PointerEventKind::leftMouseDown);
    const RecordingMetadata metadata = metadataOf(*recorder.stop());
    EXPECT_EQ(metadata.screenWidth, 30);
    EXPECT_EQ(metadata.screenHeight, 16);
    ASSERT_THAT(metadata.cursorEvents, SizeIs(1));
    EXPECT_DOUBLE_EQ(metadata.cursorEvents[0].x, 4);
    EXPECT_DOUBLE_EQ(metadata.cursorEvents[0].y, 2);
}

TEST_F(TakeRecorderTest, pointerStopsBeforeTheVideo) {
    ASSERT_TRUE(start());
    sendFirstFrame();
    std::size_t monitorsWhileStopping = 99;
    screen.whileStopping = [&] { monitorsWhileStopping = pointer.monitors.size(); };
    recorder.stop();
    EXPECT_EQ(monitorsWhileStopping, 0U);
    EXPECT_FALSE(launcher.isRunning());
}

TEST_F(TakeRecorderTest, pointerIsWatchedOnlyOnceTheScreenRuns) {
    screen.startError = CaptureError{CaptureError::Kind::sourceGone, ""};
    EXPECT_FALSE(start());
    EXPECT_TRUE(pointer.installed.empty());
    EXPECT_TRUE(launcher.launches.empty());
}

TEST_F(TakeRecorderTest, failedStartLeavesTheEmptyFolderAndNoTake) {
    media.inputError = MediaError{MediaError::Kind::noEncoder, "", ""};
    EXPECT_FALSE(start());
    EXPECT_FALSE(recorder.isRecording());
    EXPECT_EQ(recorder.stop(), std::nullopt);
    const std::filesystem::directory_iterator folders(library.path());
    EXPECT_TRUE(std::filesystem::is_empty(folders->path()));
}

TEST_F(TakeRecorderTest, aLibraryThatTakesNoFolderIsWhatFailed) {
    test::writeFile(library / "file", "");
    media.startError = MediaError{MediaError::Kind::cannotWrite, "video.mov", "No such file"};
    const auto started = recorder.start(display, library / "file");
    ASSERT_FALSE(started);
    EXPECT_EQ(started.error().description(),
              "The recording can't be saved, since no folder can be made in " +
                  (library / "file").string() +
                  " (Not a directory). Make it a folder that you may write to, and try again.");
}

TEST_F(TakeRecorderTest, aScreenThatFailsIsToldAlsoWithoutAFolder) {
    test::writeFile(library / "file", "");
    screen.startError = CaptureError{CaptureError::Kind::sourceGone, "", {}};
    EXPECT_EQ(recorder.start(display, library / "file").error(), *screen.startError);
}

TEST_F(TakeRecorderTest, elapsedTimeCountsFromTheFirstFrame) {
    ASSERT_TRUE(start());
    clock.advance(3);
    recorder.tick();
    EXPECT_EQ(recorder.elapsedTime(), 0);
    sendFirstFrame();
    clock.advance(0.3);
    EXPECT_EQ(recorder.elapsedTime(), 0) << "until the next tick";
    recorder.tick();
    EXPECT_NEAR(recorder.elapsedTime(), 0.3, 1e-6);
}

TEST_F(TakeRecorderTest, firstFrameThatNeverComesGivesDurationZeroAndTheDateOfStop) {
    ASSERT_TRUE(start());
    clock.advance(3);
    recorder.tick();
    const auto folder = recorder.stop();
    ASSERT_TRUE(folder);
    EXPECT_EQ(metadataOf(*folder).startDate, clock.now());
    EXPECT_EQ(metadataOf(*folder).duration, 0);
}

TEST_F(TakeRecorderTest, stopWhenNothingRunsGivesNoFolder) {
    EXPECT_EQ(recorder.stop(), std::nullopt);
    ASSERT_TRUE(start());
    EXPECT_TRUE(recorder.stop());
    EXPECT_EQ(recorder.stop(), std::nullopt);
}

TEST_F(TakeRecorderTest, imageThatCannotBeWrittenLeavesAGap) {
    images.unwritable = "cursor_0.png";
    ASSERT_TRUE(start());
    sendFirstFrame();
    pointer.current = cursorOf(7);
    pointer.fire(PointerEventKind::scrollWheel);
    const auto folder = recorder.stop();
    EXPECT_EQ(images.written.count("cursor_0.png"), 0U);
    EXPECT_EQ(images.written.count("cursor_1.png"), 1U);
    EXPECT_THAT(metadataOf(*folder).cursorImageInfos, SizeIs(2));
}

TEST_F(TakeRecorderTest, fullDiskIsToldAndTheTakeStillClosed) {
    ASSERT_TRUE(start());
    sendFirstFrame();
    EXPECT_EQ(recorder.failure(), std::nullopt);
    media.hasFailed = true;
    ASSERT_TRUE(recorder.failure());
    EXPECT_EQ(recorder.failure()->kind, CaptureError::Kind::writer);
    const auto folder = recorder.stop();
    ASSERT_TRUE(folder);
    EXPECT_TRUE(std::filesystem::exists(*folder / "metadata.json"));
    EXPECT_TRUE(recorder.failure()) << "still there after the stop";
}

TEST_F(TakeRecorderTest, destroyedWhileRecordingSavesTheTake) {
    {
        TakeRecorder dropped(
            {screen, media, images, {pointer, pointer, pointer, launcher, clock, main}});
        ASSERT_TRUE(dropped.start(display, library.path()));
        sendFirstFrame();
    }
    EXPECT_EQ(media.calls().back(), "finishWriting");
    const std::filesystem::directory_iterator folders(library.path());
    EXPECT_TRUE(std::filesystem::exists(folders->path() / "metadata.json"));
}

} // namespace
} // namespace tavi
