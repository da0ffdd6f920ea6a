#include "capture/RecordingScreen.h"

#include <algorithm>
#include <semaphore>

namespace tavi {
namespace {

using test::runLoopUntil;
using testing::Contains;
using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;
using testing::Not;
using testing::SizeIs;

class RecordingTake : public test::RecordingScreen {
protected:
    RecordingTake() { load(); }

    /// Starts a take that is expected to fail.
    void failToStart() {
        run(model->startRecording());
        EXPECT_FALSE(model->isRecording());
    }
};

const std::vector<std::string> kMonitors(6, "addMonitor");

std::vector<std::string> joined(std::vector<std::string> first,
                                const std::vector<std::string>& second,
                                const std::vector<std::string>& third = {}) {
    first.insert(first.end(), second.begin(), second.end());
    first.insert(first.end(), third.begin(), third.end());
    return first;
}

TEST_F(RecordingTake, startsTheScreenThenTheLogAndStopsInTheTurnedOrder) {
    model->setIsAudioEnabled(false);
    run(model->warmUpAudio());
    newCalls();
    startTake();
    EXPECT_THAT(newCalls(), ElementsAreArray(joined(
                                {"content", "makeWriter", "addVideoInput", "startWriting",
                                 "makeStream", "startCapture"},
                                kMonitors, {"launch", "startSession 10.000", "append 10.000"})));
    EXPECT_EQ(screen.lastFilter, ScreenFilter::display(kFakeDisplay.id));
    const RecordingMetadata metadata = stop();
    EXPECT_THAT(newCalls(),
                ElementsAreArray(joined(std::vector<std::string>(6, "removeMonitor"),
                                        {"end helper", "stopCapture", "endSession 10.000",
                                         "markAsFinished", "finishWriting"})));
    EXPECT_FALSE(metadata.hasAudioRecording);
    EXPECT_FALSE(metadata.hasCameraRecording);
    EXPECT_EQ(metadata.screenWidth, 640);
    EXPECT_EQ(metadata.screenHeight, 480);
    EXPECT_FALSE(model->isRecording());
    EXPECT_EQ(model->folder(), folders().at(0));
    EXPECT_THAT(timers.running(), IsEmpty());
}

TEST_F(RecordingTake, warmMicrophoneRecordsWithoutAStop) {
    warmUp();
    newCalls();
    startTake();
    EXPECT_THAT(newCalls(), ElementsAreArray(joined(
                                {"content", "makeWriter", "addVideoInput", "addAudioInput",
                                 "startWriting", "makeStream", "startCapture"},
                                kMonitors, {"launch", "startSession 10.000", "append 10.000"})));
    sessions.sendSound(16, 10.5);
    sessions.settle();
    EXPECT_THAT(newCalls(), ElementsAre("appendAudio 10.500"));
    EXPECT_TRUE(stop().hasAudioRecording);
    const auto calls = newCalls();
    EXPECT_LT(std::find(calls.begin(), calls.end(), "stopRunning"),
              std::find(calls.begin(), calls.end(), "stopCapture"));
}

TEST_F(RecordingTake, cameraStartsBehindTheScreenWithTheMicrophoneInItsSession) {
    model->setIsCameraEnabled(true);
    warmUp();
    newCalls();
    startTake();
    EXPECT_THAT(newCalls(),
                ElementsAreArray(
                    joined({"content", "makeWriter", "addVideoInput", "addAudioInput",
                            "startWriting", "makeStream", "startCapture", "stopRunning",
                            "makeSession medium", "makeDeviceInput v4l2.cam", "addInput v4l2.cam",
                            "addVideoOutput", "makeDeviceInput alsa.mic", "addInput alsa.mic",
                            "addAudioOutput", "camera.mov makeWriter", "camera.mov addVideoInput",
                            "camera.mov startWriting", "startRunning"},
                           kMonitors, {"launch", "startSession 10.000", "append 10.000"})));
    const RecordingMetadata metadata = stop();
    EXPECT_TRUE(metadata.hasCameraRecording);
    EXPECT_TRUE(metadata.hasAudioRecording);
    const auto calls = newCalls();
    const auto camera = std::find(calls.begin(), calls.end(), "camera.mov finishWriting");
    const auto screenEnd = std::find(calls.begin(), calls.end(), "finishWriting");
    EXPECT_LT(camera, screenEnd);
    EXPECT_NE(screenEnd, calls.end());
}

TEST_F(RecordingTake, microphoneThatIsEnabledButNotThereGivesASilentTake) {
    devices.plugged = {kFakeCamera};
    load();
    EXPECT_EQ(sessions.sessionCount(), 0U);
    startTake();
    EXPECT_FALSE(stop().hasAudioRecording);
    EXPECT_THAT(log.calls(), Not(Contains("addAudioInput")));
}

TEST_F(RecordingTake, warmUpThatIsStillPreparingIsLeftAsItWasAndTheTakeIsSilent) {
    warmUp(2);
    startTake();
    EXPECT_FALSE(model->isMicrophoneReady());
    EXPECT_TRUE(sessions.isRunning());
    warmUp(1);
    EXPECT_TRUE(model->isMicrophoneReady()) << "it goes on by itself";
    EXPECT_FALSE(stop().hasAudioRecording);
}

TEST_F(RecordingTake, microphoneThatWasSwitchedOffIsNotRecorded) {
    warmUp();
    model->setIsAudioEnabled(false);
    startTake();
    EXPECT_FALSE(stop().hasAudioRecording);
    EXPECT_TRUE(model->isMicrophoneReady());
}

TEST_F(RecordingTake, warmUpAskedForWhileTheTakeStartsReplacesTheOneThatWasNotUsed) {
    warmUp(1);
    std::binary_semaphore gate{0};
    media.whileMaking = [&] { gate.acquire(); };
    auto starting = model->startRecording();
    ASSERT_TRUE(runLoopUntil([&] { return log.calls().back() == "makeWriter"; }));
    model->restartAudioWarmUp();
    gate.release();
    run(std::move(starting));
    const auto isReplaced = [&] {
        const auto calls = log.calls();
        return std::count(calls.begin(), calls.end(), "makeSession") == 2 &&
               sessions.sessionCount() == 1 && sessions.isRunning();
    };
    EXPECT_TRUE(runLoopUntil(isReplaced));
}

TEST_F(RecordingTake, cameraWithoutASelectedMicrophoneIsRecordedInSilence) {
    warmUp();
    model->setIsCameraEnabled(true);
    model->setSelectedMicrophoneIndex(5);
    startTake();
    const RecordingMetadata metadata = stop();
    EXPECT_TRUE(metadata.hasCameraRecording);
    EXPECT_FALSE(metadata.hasAudioRecording);
    EXPECT_THAT(log.calls(), Contains("camera.mov finishWriting"));
}

TEST_F(RecordingTake, cameraThatIsNotInTheListIsNotRecorded) {
    model->setIsCameraEnabled(true);
    model->setSelectedCameraIndex(3);
    startTake();
    EXPECT_FALSE(stop().hasCameraRecording);
}

TEST_F(RecordingTake, sourceThatIsGoneFromTheListStartsNothingAndLeavesAnEmptyFolder) {
    model->setCaptureMode(CaptureMode::window);
    model->setSelectedWindowIndex(4);
    newCalls();
    failToStart();
    EXPECT_FALSE(model->isStarting());
    EXPECT_THAT(newCalls(), IsEmpty());
    EXPECT_THAT(messages.str(), IsEmpty());
    ASSERT_THAT(folders(), SizeIs(1));
    EXPECT_TRUE(std::filesystem::is_empty(folders()[0]));
}

TEST_F(RecordingTake, screenThatCannotStartIsPrintedAndToldAndTheWarmUpStays) {
    warmUp();
    screen.startError = CaptureError{CaptureError::Kind::sourceGone, ""};
    failToStart();
    EXPECT_EQ(messages.str(),
              "Failed to start recording: " + screen.startError->description() + "\n");
    EXPECT_EQ(model->failureText(), screen.startError->description());
    EXPECT_TRUE(pointer.installed.empty());
    EXPECT_TRUE(model->isMicrophoneReady());
    EXPECT_EQ(run(model->stopRecording()), std::nullopt);
    screen.startError.reset();
    startTake();
    EXPECT_THAT(model->failureText(), IsEmpty());
}

TEST_F(RecordingTake, cameraThatFailsIsPrintedAndTheStreamGoesOn) {
    const CaptureDeviceError gone{CaptureDeviceError::Kind::gone, "Lid Camera"};
    sessions.deviceErrors = {{kFakeCamera.id, gone}};
    model->setIsCameraEnabled(true);
    failToStart();
    EXPECT_EQ(messages.str(), "Failed to start recording: " + gone.description() + "\n");
    EXPECT_TRUE(screen.isRunning());
    EXPECT_TRUE(pointer.installed.empty());
    EXPECT_THAT(timers.running(), IsEmpty());
    model.reset();
    EXPECT_FALSE(screen.isRunning());
}

TEST_F(RecordingTake, windowIsRecordedWhereItIsWhenTheTakeStarts) {
    model->setCaptureMode(CaptureMode::window);
    frames.windows[kFakeWindow.id] = {200, 100, 301.5, 200};
    startTake();
    EXPECT_EQ(screen.lastFilter, ScreenFilter::window(kFakeWindow.id));
    frames.windows[kFakeWindow.id] = {0, 0, 301.5, 200}; // moved: the log's area stays
    pointer.location = {210, 110};
    pointer.fire(PointerEventKind::leftMouseDown);
    const RecordingMetadata metadata = stop();
    EXPECT_EQ(metadata.screenWidth, 301) << "whole points";
    ASSERT_THAT(metadata.cursorEvents, SizeIs(1));
    EXPECT_EQ(metadata.cursorEvents[0].x, 10);
    EXPECT_EQ(metadata.cursorEvents[0].y, 190);
}

TEST_F(RecordingTake, ofADisplayNamesTheProgramsOwnWindows) {
    Window own = kFakeWindow;
    own.id = 20;
    own.applicationId = "tavlin";
    Window hidden = own;
    hidden.id = 21;
    hidden.isOnScreen = false;
    content.list.windows = {kFakeWindow, own, hidden};
    startTake();
    EXPECT_EQ(screen.lastFilter.displayId, kFakeDisplay.id);
    EXPECT_THAT(screen.lastFilter.exceptingWindows, ElementsAre(20));
}

TEST_F(RecordingTake, windowsThatCannotBeListedAreNoReasonNotToRecord) {
    content.error = CaptureError{CaptureError::Kind::connectionLost, ""};
    startTake();
    EXPECT_THAT(screen.lastFilter.exceptingWindows, IsEmpty());
    EXPECT_THAT(messages.str(), IsEmpty());
}

TEST_F(RecordingTake, elapsedTimeCountsFromTheFirstFrameInTenths) {
    run(model->startRecording());
    EXPECT_THAT(timers.running(), ElementsAre(kTick));
    clock.advance(3);
    timers.tick(kTick);
    EXPECT_EQ(model->elapsedTime(), 0);
    sendFirstFrame();
    clock.advance(0.5);
    EXPECT_EQ(model->elapsedTime(), 0) << "until the next tick";
    timers.tick(kTick);
    EXPECT_NEAR(model->elapsedTime(), 0.5, 1e-6);
    clock.advance(0.05);
    EXPECT_NEAR(stop().duration, 0.5, 1e-6) << "what the screen showed last";
    EXPECT_EQ(model->elapsedTime(), 0);
}

TEST_F(RecordingTake, firstFrameThatNeverComesGivesTheDateOfTheStopAndNoDuration) {
    run(model->startRecording());
    clock.advance(3);
    timers.tick(kTick);
    const RecordingMetadata metadata = stop();
    EXPECT_EQ(metadata.startDate, clock.now());
    EXPECT_EQ(metadata.duration, 0);
}

TEST_F(RecordingTake, keepsTheSessionAwakeFromItsStartToItsEnd) {
    load();
    EXPECT_EQ(wakeLocks.acquired, 0);
    startTake();
    EXPECT_EQ(wakeLocks.held, 1);
    EXPECT_EQ(wakeLocks.lastReason, "A recording is running");
    stop();
    EXPECT_EQ(wakeLocks.held, 0);
    startTake();
    model.reset();
    EXPECT_EQ(wakeLocks.acquired, 2);
    EXPECT_EQ(wakeLocks.held, 0) << "of a model that is gone";
}

TEST_F(RecordingTake, thatCannotStartKeepsNobodyAwake) {
    load();
    screen.startError = CaptureError{CaptureError::Kind::connectionLost, ""};
    run(model->startRecording());
    EXPECT_EQ(wakeLocks.acquired, 0);
}

TEST_F(RecordingTake, stopWithoutATakeDoesNothing) {
    newCalls();
    EXPECT_EQ(run(model->stopRecording()), std::nullopt);
    EXPECT_THAT(newCalls(), IsEmpty());
    EXPECT_THAT(folders(), IsEmpty());
}

TEST_F(RecordingTake, loopRunsWhileEncodersAreTriedAndFilesFinished) {
    std::binary_semaphore gate{0};
    media.whileMaking = [&] { gate.acquire(); };
    screen.whileStopping = [&] { gate.acquire(); };
    auto starting = model->startRecording();
    EXPECT_TRUE(model->isStarting());
    EXPECT_FALSE(model->isRecording());
    gate.release();
    run(std::move(starting));
    EXPECT_FALSE(model->isStarting());
    auto stopping = model->stopRecording();
    EXPECT_TRUE(model->isStopping());
    EXPECT_TRUE(model->isRecording()) << "until the files are complete";
    gate.release();
    EXPECT_TRUE(run(std::move(stopping)));
    EXPECT_FALSE(model->isStopping());
    EXPECT_FALSE(model->isRecording());
}

TEST_F(RecordingTake, secondStopWaitsForTheSameFolder) {
    startTake();
    auto first = model->stopRecording();
    const auto second = run(model->stopRecording());
    EXPECT_EQ(second, run(std::move(first)));
    EXPECT_EQ(second, folders().at(0));
}

TEST_F(RecordingTake, secondStartWhileOneStartsDoesNothing) {
    auto first = model->startRecording();
    run(model->startRecording());
    run(std::move(first));
    run(model->startRecording());
    EXPECT_THAT(folders(), SizeIs(1));
}

TEST_F(RecordingTake, thatCannotGoOnIsSavedAndTold) {
    QString ended;
    QObject::connect(&*model, &RecordingViewModel::recordingEnded,
                     [&](const QString& folder) { ended = folder; });
    startTake();
    timers.tick(kTick);
    EXPECT_TRUE(model->isRecording());
    media.hasFailed = true;
    timers.tick(kTick);
    ASSERT_TRUE(runLoopUntil([&] { return !ended.isEmpty(); }));
    EXPECT_FALSE(model->isRecording());
    EXPECT_EQ(ended.toStdString(), folders().at(0).string());
    EXPECT_TRUE(std::filesystem::exists(folders()[0] / "metadata.json"));
    EXPECT_EQ(model->failureText(),
              (MediaError{MediaError::Kind::diskFull, "video.mov", ""}.description()));
}

TEST_F(RecordingTake, deviceThatIsAwayIsToldWhileItIsAndEndsNothing) {
    warmUp();
    startTake();
    timers.tick(kTick);
    EXPECT_THAT(model->interruptionText(), IsEmpty());
    sessions.interruption = CaptureDeviceError{CaptureDeviceError::Kind::gone, "Desk Microphone"};
    timers.tick(kTick);
    EXPECT_EQ(model->interruptionText(), sessions.interruption->description());
    EXPECT_TRUE(model->isRecording());
    sessions.interruption.reset();
    timers.tick(kTick);
    EXPECT_THAT(model->interruptionText(), IsEmpty());
}

TEST_F(RecordingTake, anotherTakeFollowsWithAWarmUpOfItsOwn) {
    warmUp();
    startTake();
    EXPECT_TRUE(stop().hasAudioRecording);
    EXPECT_FALSE(model->isMicrophoneReady()) << "the take used it up";
    run(model->warmUpAudio());
    warmUp();
    startTake();
    EXPECT_TRUE(stop().hasAudioRecording);
    EXPECT_THAT(folders(), SizeIs(2));
}

TEST_F(RecordingTake, ofAModelThatGoesIsSaved) {
    startTake();
    model.reset();
    EXPECT_THAT(log.calls(), Contains("finishWriting"));
    EXPECT_TRUE(std::filesystem::exists(folders().at(0) / "metadata.json"));
}

TEST_F(RecordingTake, thatStopsWhileItsModelGoesIsComplete) {
    startTake();
    auto first = model->stopRecording();
    auto second = model->stopRecording();
    model.reset();
    EXPECT_TRUE(std::filesystem::exists(folders().at(0) / "metadata.json"));
    EXPECT_EQ(run(std::move(first)), std::nullopt) << "nobody is there to be told";
    EXPECT_EQ(run(std::move(second)), std::nullopt);
}

TEST_F(RecordingTake, thatStartsWhileItsModelGoesIsGivenUp) {
    warmUp();
    auto starting = model->startRecording();
    model.reset();
    EXPECT_FALSE(screen.isRunning());
    EXPECT_EQ(sessions.sessionCount(), 0U);
    run(std::move(starting));
    EXPECT_TRUE(pointer.installed.empty());
}

} // namespace
} // namespace tavi
