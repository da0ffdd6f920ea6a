#include "capture/CursorImageBytes.h"
#include "capture/TakeRecorder.h"
#include "fakes/FakeMedia.h"
#include "fakes/FakeTakeSurroundings.h"
#include "project/RecordingMetadataJson.h"

#include <gmock/gmock.h>

namespace tavi {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::Not;
using State = AudioCaptureService::State;

class TakeRecorderDevicesTest : public testing::Test, protected FakeTakeSurroundings {
protected:
    TakeRecorderDevicesTest() {
        pointer.arrow = {cursorImageBytes(PixelBuffer(2, 2), 0, 0), {0, 0}, {2, 2}};
        pointer.current = pointer.arrow;
    }
    ~TakeRecorderDevicesTest() override { devices = {}; } // A warm-up stands on the sessions.

    /// A microphone that is warm after `samples` equal samples.
    void warmUp(int samples = 3) {
        devices.microphone = kFakeMicrophone;
        devices.audioWarmUpService = std::make_unique<AudioCaptureService>(sessions);
        ASSERT_TRUE(devices.audioWarmUpService->startWarmUp(kFakeMicrophone));
        for (int i = 0; i < samples; ++i) {
            sessions.sendSound(16, 0.1 * i);
        }
        sessions.settle();
    }

    Result<void, CaptureError> start() { return recorder.start(display, library.path(), devices); }

    void sendFirstFrame(double hostTime = 10) {
        clock.setHostTime(hostTime);
        screen.sendPicture(hostTime);
        screen.settle();
    }

    void sendFromCamera(double hostTime) {
        clock.setHostTime(hostTime);
        sessions.sendPicture(hostTime);
        sessions.settle();
    }

    void sendSound(double time, std::uint32_t bits = 16) {
        sessions.sendSound(bits, time);
        sessions.settle();
    }

    RecordingMetadata stop() {
        const auto folder = recorder.stop();
        return decodeRecordingMetadata(test::readFile(folder.value() / "metadata.json")).value();
    }

    /// The calls since the last time this was asked.
    std::vector<std::string> newCalls() { return log.newCalls(); }

    const Display display{3, "test", 640, 480, {0, 0, 640, 480}, true};
    CallLog log;
    FakeMediaLibrary media{&log};
    FakeCaptureSessions sessions{&log};
    FakeImageFiles images;
    TakeRecorder recorder{ports(media, images, sessions)};
};

TEST_F(TakeRecorderDevicesTest, warmMicrophoneIsHandedOverWithItsSessionRunning) {
    warmUp();
    newCalls();
    ASSERT_TRUE(start());
    EXPECT_THAT(newCalls(),
                ElementsAre("makeWriter", "addVideoInput", "addAudioInput", "startWriting"));
    EXPECT_EQ(media.lastAudioSettings.bitRate, 96'000) << "what its output recommends";
    EXPECT_EQ(devices.audioWarmUpService, nullptr);
    sendSound(9);
    sendFirstFrame(10);
    sendSound(10.5);
    sendSound(10.6, 32);
    EXPECT_THAT(newCalls(),
                ElementsAre("startSession 10.000", "append 10.000", "appendAudio 10.500"));
    const RecordingMetadata metadata = stop();
    EXPECT_TRUE(metadata.hasAudioRecording);
    EXPECT_FALSE(metadata.hasCameraRecording);
    EXPECT_EQ(metadata.cameraStartDelay, 0);
}

TEST_F(TakeRecorderDevicesTest, microphoneStopsBeforeTheScreensFileIsFinished) {
    warmUp();
    ASSERT_TRUE(start());
    sendFirstFrame(10);
    newCalls();
    recorder.stop();
    EXPECT_THAT(newCalls(), ElementsAre("stopRunning", "endSession 10.000", "markAsFinished",
                                        "markAudioAsFinished", "finishWriting"));
}

TEST_F(TakeRecorderDevicesTest, warmUpThatIsNotReadyStaysAsItWasAndTheTakeIsSilent) {
    warmUp(2);
    ASSERT_TRUE(start());
    ASSERT_NE(devices.audioWarmUpService, nullptr);
    EXPECT_EQ(devices.audioWarmUpService->state(), State::preparing);
    sendFirstFrame();
    sendSound(11);
    EXPECT_EQ(devices.audioWarmUpService->state(), State::ready) << "it goes on by itself";
    EXPECT_FALSE(stop().hasAudioRecording);
    EXPECT_THAT(log.calls(), Not(Contains("addAudioInput")));
    EXPECT_TRUE(sessions.isRunning());
}

TEST_F(TakeRecorderDevicesTest, withoutDevicesNothingIsAskedOfTheSessions) {
    ASSERT_TRUE(start());
    sendFirstFrame();
    const RecordingMetadata metadata = stop();
    EXPECT_FALSE(metadata.hasAudioRecording);
    EXPECT_FALSE(metadata.hasCameraRecording);
    EXPECT_THAT(log.calls(), Not(Contains("makeSession")));
}

TEST_F(TakeRecorderDevicesTest, cameraIsRecordedBesideTheScreen) {
    devices.camera = kFakeCamera;
    ASSERT_TRUE(start());
    EXPECT_EQ(media.lastPath.filename(), "camera.mov");
    sendFirstFrame(10);
    sendFromCamera(10.75);
    const RecordingMetadata metadata = stop();
    EXPECT_TRUE(metadata.hasCameraRecording);
    EXPECT_FALSE(metadata.hasAudioRecording);
    EXPECT_DOUBLE_EQ(metadata.cameraStartDelay, 0.75);
}

TEST_F(TakeRecorderDevicesTest, microphoneMovesIntoTheCamerasSession) {
    warmUp();
    devices.camera = kFakeCamera;
    newCalls();
    ASSERT_TRUE(start());
    EXPECT_EQ(devices.audioWarmUpService, nullptr);
    EXPECT_THAT(newCalls(),
                ElementsAre("makeWriter", "addVideoInput", "addAudioInput", "startWriting",
                            "stopRunning", "makeSession medium", "makeDeviceInput v4l2.cam",
                            "addInput v4l2.cam", "addVideoOutput", "makeDeviceInput alsa.mic",
                            "addInput alsa.mic", "addAudioOutput", "camera.mov makeWriter",
                            "camera.mov addVideoInput", "camera.mov startWriting", "startRunning"));
    sendFirstFrame(10);
    sendSound(10.1);
    sendSound(10.2, 32);
    newCalls();
    const RecordingMetadata metadata = stop();
    EXPECT_TRUE(metadata.hasAudioRecording);
    EXPECT_TRUE(metadata.hasCameraRecording);
    EXPECT_THAT(newCalls(), ElementsAre("stopRunning", "camera.mov markAsFinished",
                                        "camera.mov finishWriting", "endSession 10.000",
                                        "markAsFinished", "markAudioAsFinished", "finishWriting"));
    EXPECT_THAT(log.calls(), Contains("appendAudio 10.100"));
    EXPECT_THAT(log.calls(), Not(Contains("appendAudio 10.200"))) << "not the warm-up's bits";
}

TEST_F(TakeRecorderDevicesTest, cameraWithoutSelectedMicrophoneEndsTheWarmUpAndIsSilent) {
    warmUp();
    devices.camera = kFakeCamera;
    devices.microphone.reset();
    ASSERT_TRUE(start());
    EXPECT_EQ(devices.audioWarmUpService, nullptr);
    sendFirstFrame();
    EXPECT_FALSE(stop().hasAudioRecording);
    EXPECT_THAT(log.calls(), Contains("camera.mov finishWriting"));
}

TEST_F(TakeRecorderDevicesTest, cameraLeavesAWarmUpThatIsNotReadyAlone) {
    warmUp(1);
    devices.camera = kFakeCamera;
    ASSERT_TRUE(start());
    ASSERT_NE(devices.audioWarmUpService, nullptr);
    EXPECT_EQ(devices.audioWarmUpService->state(), State::preparing);
    EXPECT_FALSE(stop().hasAudioRecording);
}

struct DelayCase {
    std::optional<double> screen; ///< Host seconds of the first frame.
    std::optional<double> camera; ///< Host seconds of the first picture.
    double delay;
};

class CameraStartDelay : public TakeRecorderDevicesTest,
                         public testing::WithParamInterface<DelayCase> {};

TEST_P(CameraStartDelay, isTheTimeFromScreenToCameraAndNeverNegative) {
    devices.camera = kFakeCamera;
    ASSERT_TRUE(start());
    const auto [screenTime, cameraTime, delay] = GetParam();
    if (screenTime) {
        sendFirstFrame(*screenTime);
    }
    if (cameraTime) {
        sendFromCamera(*cameraTime);
    }
    EXPECT_DOUBLE_EQ(stop().cameraStartDelay, delay);
}

INSTANTIATE_TEST_SUITE_P(Starts, CameraStartDelay,
                         testing::Values(DelayCase{10, 10.5, 0.5}, DelayCase{10, 9.5, 0},
                                         DelayCase{10, 10, 0}, DelayCase{10, std::nullopt, 0},
                                         DelayCase{std::nullopt, 10, 0}));

TEST_F(TakeRecorderDevicesTest, cameraThatFailsStartsNoTakeAndTheScreenGoesOn) {
    const CaptureDeviceError gone{CaptureDeviceError::Kind::gone, "Lid Camera"};
    sessions.deviceErrors = {{kFakeCamera.id, gone}};
    devices.camera = kFakeCamera;
    const auto started = start();
    ASSERT_FALSE(started);
    EXPECT_EQ(started.error().kind, CaptureError::Kind::camera);
    EXPECT_EQ(started.error().description(), gone.description());
    EXPECT_FALSE(recorder.isRecording());
    EXPECT_TRUE(screen.isRunning());
    EXPECT_TRUE(pointer.installed.empty()) << "the pointer is not watched";
    EXPECT_EQ(recorder.stop(), std::nullopt);
}

TEST_F(TakeRecorderDevicesTest, screenThatFailsLeavesTheWarmUpAlone) {
    warmUp();
    devices.camera = kFakeCamera;
    screen.startError = CaptureError{CaptureError::Kind::sourceGone, ""};
    EXPECT_FALSE(start());
    ASSERT_NE(devices.audioWarmUpService, nullptr);
    EXPECT_EQ(devices.audioWarmUpService->state(), State::ready);
    EXPECT_THAT(log.calls(), Not(Contains("makeSession medium")));
}

TEST_F(TakeRecorderDevicesTest, devicesThatVanishAreToldAndEndNoTake) {
    warmUp();
    ASSERT_TRUE(start());
    EXPECT_EQ(recorder.interruption(), std::nullopt);
    sessions.interruption = CaptureDeviceError{CaptureDeviceError::Kind::gone, "Desk Microphone"};
    EXPECT_EQ(recorder.interruption(), sessions.interruption);
    EXPECT_EQ(recorder.failure(), std::nullopt);
    EXPECT_TRUE(stop().hasAudioRecording);
    EXPECT_EQ(recorder.interruption(), std::nullopt);
}

TEST_F(TakeRecorderDevicesTest, destroyedWhileRecordingStopsTheDevicesAndSavesTheTake) {
    warmUp();
    devices.camera = kFakeCamera;
    {
        TakeRecorder dropped(
            {screen,
             media,
             images,
             {pointer, pointer, pointer, launcher, clock, main, nullptr, "/package/TaviKeys"},
             &sessions});
        ASSERT_TRUE(dropped.start(display, library.path(), devices));
        sendFirstFrame();
    }
    EXPECT_EQ(sessions.sessionCount(), 0U);
    EXPECT_THAT(log.calls(), Contains("camera.mov finishWriting"));
    EXPECT_EQ(log.calls().back(), "finishWriting");
}

} // namespace
} // namespace tavi
