#pragma once

#include "capture/CursorImageBytes.h"
#include "capture/RecordingViewModel.h"
#include "fakes/FakeCapture.h"
#include "fakes/FakeClock.h"
#include "fakes/FakeHelper.h"
#include "fakes/FakeMedia.h"
#include "fakes/FakeOverlay.h"
#include "fakes/FakePointer.h"
#include "fakes/FakeScreen.h"
#include "fakes/FakeSources.h"
#include "fakes/FakeTimers.h"
#include "fakes/FakeWakeLocks.h"
#include "platform/qt/QtExecutor.h"
#include "project/RecordingMetadataJson.h"
#include "support/RunLoop.h"
#include "support/TemporaryFolder.h"

#include <gmock/gmock.h>

#include <memory>
#include <sstream>

namespace tavi::test {

/// A recording screen's model over fakes that write down, in one list, what is asked of them.
class RecordingScreen : public testing::Test {
protected:
    static constexpr double kSecond = 1;
    static constexpr double kTick = 0.1;

    RecordingScreen() {
        pointer.arrow = {cursorImageBytes(PixelBuffer(2, 2), 0, 0), {0, 0}, {2, 2}};
        pointer.current = pointer.arrow;
        frames.displays[kFakeDisplay.id] = kFakeDisplay.frame;
    }
    ~RecordingScreen() override {
        model.reset();
        QCoreApplication::processEvents(); // what tasks still wait for
    }

    RecordingViewModel::Ports ports() {
        return {content,
                &screenshots,
                &devices,
                {screen,
                 media,
                 images,
                 {pointer, pointer, pointer, launcher, clock, main, nullptr, "/package/TaviKeys"},
                 &sessions},
                {panels, frames, timers},
                [this] { return library.path(); },
                messages,
                "tavlin",
                CountdownOverlayService::kStartValue,
                nullptr,
                &wakeLocks};
    }

    std::unique_ptr<RecordingViewModel> makeModel() {
        return std::make_unique<RecordingViewModel>(ports());
    }

    /// Runs a task to its end.
    template<typename T>
    T run(QCoro::Task<T> task) {
        std::optional<T> result;
        keep(std::move(task), result);
        EXPECT_TRUE(runLoopUntil([&] { return result.has_value(); }));
        return std::move(*result);
    }
    void run(QCoro::Task<> task) {
        bool isDone = false;
        note(std::move(task), isDone);
        EXPECT_TRUE(runLoopUntil([&] { return isDone; }));
    }

    void load() { run(model->loadSources()); }

    /// A microphone whose format is known, which takes three samples.
    void warmUp(int samples = 3) {
        for (int i = 0; i < samples; ++i) {
            sessions.sendSound(16, 0.1 * i);
        }
        sessions.settle();
    }

    void sendFirstFrame(double hostTime = 10) {
        clock.setHostTime(hostTime);
        screen.sendPicture(hostTime);
        screen.settle();
    }

    /// Starts a take without countdown, to its first frame.
    void startTake() {
        run(model->startRecording());
        ASSERT_TRUE(model->isRecording()) << messages.str();
        sendFirstFrame();
    }

    RecordingMetadata metadataOf(const std::filesystem::path& folder) const {
        return decodeRecordingMetadata(readFile(folder / "metadata.json")).value();
    }
    RecordingMetadata stop() { return metadataOf(run(model->stopRecording()).value()); }

    /// The folders below the library.
    std::vector<std::filesystem::path> folders() const {
        const std::filesystem::directory_iterator all(library.path());
        return {begin(all), end(all)};
    }

    /// The calls since the last time this was asked.
    std::vector<std::string> newCalls() { return log.newCalls(); }

    TemporaryFolder library;
    CallLog log;
    FakeShareableContent content{&log};
    FakeScreenshots screenshots{&log};
    FakeCaptureDevices devices{&log};
    FakeCaptureSessions sessions{&log};
    FakeScreenStreams screen{&log};
    FakeMediaLibrary media{&log};
    FakeImageFiles images;
    FakePointer pointer{&log};
    FakeHelperLauncher launcher{&log};
    FakeOverlayPanels panels{&log};
    FakeSourceFrames frames;
    FakeTimers timers;
    FakeWakeLocks wakeLocks;
    FakeClock clock;
    QtExecutor main;
    std::ostringstream messages;
    std::unique_ptr<RecordingViewModel> model = makeModel();

private:
    template<typename T>
    static QCoro::Task<> keep(QCoro::Task<T> task, std::optional<T>& result) {
        result = co_await task;
    }
    static QCoro::Task<> note(QCoro::Task<> task, bool& isDone) {
        co_await task;
        isDone = true;
    }
};

} // namespace tavi::test
