#include "capture/CameraCaptureService.h"

#include "fakes/FakeCapture.h"
#include "fakes/FakeClock.h"
#include "fakes/FakeMedia.h"

#include <gmock/gmock.h>

#include <chrono>
#include <future>
#include <thread>

namespace tavi {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

const CaptureDeviceError kGone{CaptureDeviceError::Kind::gone, "test"};

class CameraCaptureServiceTest : public testing::Test {
protected:
    Result<void, CameraError> start() {
        return service.startCapture(kFakeCamera, "/takes/camera.mov", std::nullopt);
    }

    Result<void, CameraError> startWithMicrophone(std::uint32_t bits = 16) {
        return service.startCapture(kFakeCamera, "/takes/camera.mov",
                                    CameraMicrophone{kFakeMicrophone, screenInput, bits});
    }

    void sendPicture(double seconds) {
        sessions.sendPicture(seconds);
        sessions.settle();
    }

    void sendSound(std::uint32_t bits, double seconds) {
        sessions.sendSound(bits, seconds);
        sessions.settle();
    }

    /// The calls since the last time this was asked.
    std::vector<std::string> newCalls() { return log.newCalls(); }

    CallLog log;
    CallLog screenLog;
    FakeCaptureSessions sessions{&log};
    FakeMediaLibrary media{&log};
    FakeAudioInput screenInput{screenLog};
    FakeClock clock;
    CameraCaptureService service{sessions, media, clock};
};

TEST_F(CameraCaptureServiceTest, startsSessionAndFileInOrder) {
    sessions.pictureSize = {848, 480};
    ASSERT_TRUE(start());
    EXPECT_THAT(log.calls(),
                ElementsAre("makeSession medium", "makeDeviceInput v4l2.cam", "addInput v4l2.cam",
                            "addVideoOutput", "camera.mov makeWriter", "camera.mov addVideoInput",
                            "camera.mov startWriting", "startRunning"));
    EXPECT_THAT(sessions.queueLabels, ElementsAre("com.tavi.camera"));
    EXPECT_TRUE(sessions.isMirrored);
    EXPECT_EQ(media.lastPath, "/takes/camera.mov");
    EXPECT_EQ(media.lastType, FileType::quickTimeMovie);
    EXPECT_EQ(media.lastSettings.codec, VideoCodec::h264);
    EXPECT_EQ(media.lastSettings.width, 848);
    EXPECT_EQ(media.lastSettings.height, 480);
    EXPECT_EQ(media.lastSettings.bitRate, 2'000'000);
    EXPECT_EQ(media.lastSettings.expectedFrameRate, 30);
    EXPECT_TRUE(media.lastSettings.realTime);
}

TEST_F(CameraCaptureServiceTest, microphoneJoinsTheSessionBeforeTheFileIsMade) {
    ASSERT_TRUE(startWithMicrophone());
    EXPECT_THAT(log.calls(),
                ElementsAre("makeSession medium", "makeDeviceInput v4l2.cam", "addInput v4l2.cam",
                            "addVideoOutput", "makeDeviceInput alsa.mic", "addInput alsa.mic",
                            "addAudioOutput", "camera.mov makeWriter", "camera.mov addVideoInput",
                            "camera.mov startWriting", "startRunning"));
    EXPECT_THAT(sessions.queueLabels, ElementsAre("com.tavi.camera", "com.tavi.camera"));
    EXPECT_TRUE(service.hasAudio());
}

TEST_F(CameraCaptureServiceTest, cameraWithoutMicrophoneHasNoAudio) {
    ASSERT_TRUE(start());
    EXPECT_FALSE(service.hasAudio());
    EXPECT_THAT(log.calls(), testing::Not(testing::Contains("addAudioOutput")));
}

TEST_F(CameraCaptureServiceTest, writesFromFirstPictureToStop) {
    ASSERT_TRUE(start());
    EXPECT_EQ(service.firstSampleHostTime(), std::nullopt);
    newCalls();
    clock.setHostTime(10.25);
    sendPicture(10);
    clock.setHostTime(11);
    sendPicture(10.033);
    EXPECT_EQ(service.firstSampleHostTime(),
              MediaTime::fromSeconds(10.25, MediaTime::kNanoseconds));
    service.stopCapture();
    EXPECT_THAT(newCalls(),
                ElementsAre("camera.mov startSession 10.000", "camera.mov append 10.000",
                            "camera.mov append 10.033", "stopRunning", "camera.mov markAsFinished",
                            "camera.mov finishWriting"));
    EXPECT_TRUE(service.firstSampleHostTime()) << "read after the stop as well";
    EXPECT_EQ(sessions.sessionCount(), 0U);
}

TEST_F(CameraCaptureServiceTest, sampleWithoutPictureStartsTheSessionAndAppendsNothing) {
    ASSERT_TRUE(start());
    newCalls();
    CaptureSample status;
    status.kind = CaptureSampleKind::picture;
    status.presentationTime = {5, 1};
    sessions.send(status);
    sessions.settle();
    EXPECT_TRUE(service.firstSampleHostTime());
    EXPECT_THAT(newCalls(), ElementsAre("camera.mov startSession 5.000"));
    sendPicture(6);
    EXPECT_THAT(newCalls(), ElementsAre("camera.mov append 6.000"));
}

TEST_F(CameraCaptureServiceTest, invalidSamplesAreIgnored) {
    ASSERT_TRUE(startWithMicrophone());
    newCalls();
    CaptureSample sample;
    sample.isValid = false;
    sample.format = AudioSampleFormat{16, 1, 48000};
    sample.sound = std::make_shared<AudioBuffer>();
    sessions.send(sample);
    sample.kind = CaptureSampleKind::picture;
    sample.image = std::make_shared<PixelBuffer>(640, 480);
    sessions.send(sample);
    sessions.settle();
    EXPECT_THAT(newCalls(), IsEmpty());
    EXPECT_THAT(screenLog.calls(), IsEmpty());
}

TEST_F(CameraCaptureServiceTest, samplesThatComeBeforeItCapturesAreDropped) {
    sessions.whileStarting = [this] { sendPicture(1); };
    ASSERT_TRUE(start());
    EXPECT_EQ(service.firstSampleHostTime(), std::nullopt);
    sendPicture(2);
    EXPECT_EQ(log.calls().back(), "camera.mov append 2.000");
}

TEST_F(CameraCaptureServiceTest, pictureIsDroppedWhenTheEncoderIsNotReady) {
    ASSERT_TRUE(start());
    media.isReady = false;
    sendPicture(1);
    media.isReady = true;
    sendPicture(2);
    EXPECT_EQ(log.calls().back(), "camera.mov append 2.000");
    EXPECT_THAT(log.calls(), testing::Not(testing::Contains("camera.mov append 1.000")));
    EXPECT_THAT(log.calls(), testing::Contains("camera.mov startSession 1.000"));
}

TEST_F(CameraCaptureServiceTest, pictureOfAnotherSizeIsDropped) {
    ASSERT_TRUE(start());
    sendPicture(1);
    sessions.sendPicture(2, 320, 240);
    sessions.settle();
    EXPECT_EQ(log.calls().back(), "camera.mov append 1.000");
}

TEST_F(CameraCaptureServiceTest, soundGoesIntoTheScreensFileWithoutStartingTheCamerasOwn) {
    ASSERT_TRUE(startWithMicrophone());
    newCalls();
    sendSound(16, 3);
    EXPECT_THAT(screenLog.calls(), ElementsAre("appendAudio 3.000"));
    EXPECT_THAT(newCalls(), IsEmpty());
    EXPECT_EQ(service.firstSampleHostTime(), std::nullopt);
}

TEST_F(CameraCaptureServiceTest, soundOfAnotherBitDepthIsDropped) {
    ASSERT_TRUE(startWithMicrophone(16));
    sendSound(32, 1);
    sendSound(16, 2);
    EXPECT_THAT(screenLog.calls(), ElementsAre("appendAudio 2.000"));
}

TEST_F(CameraCaptureServiceTest, bitDepthZeroAcceptsAny) {
    ASSERT_TRUE(startWithMicrophone(0));
    sendSound(32, 1);
    sendSound(16, 2);
    EXPECT_THAT(screenLog.calls(), ElementsAre("appendAudio 1.000", "appendAudio 2.000"));
}

TEST_F(CameraCaptureServiceTest, soundWithoutFormatIsDropped) {
    ASSERT_TRUE(startWithMicrophone(0));
    CaptureSample sample;
    sample.sound = std::make_shared<AudioBuffer>();
    sessions.send(sample);
    sessions.settle();
    EXPECT_THAT(screenLog.calls(), IsEmpty());
}

TEST_F(CameraCaptureServiceTest, soundIsDroppedWhileTheScreensWriterIsNotReady) {
    ASSERT_TRUE(startWithMicrophone());
    screenInput.isReady = false;
    sendSound(16, 1);
    screenInput.isReady = true;
    sendSound(16, 2);
    EXPECT_THAT(screenLog.calls(), ElementsAre("appendAudio 2.000"));
}

TEST_F(CameraCaptureServiceTest, microphoneThatCannotJoinStillCountsAsSound) {
    sessions.refusedInputs = {kFakeMicrophone.id};
    ASSERT_TRUE(startWithMicrophone());
    EXPECT_TRUE(service.hasAudio());
    EXPECT_THAT(sessions.queueLabels, ElementsAre("com.tavi.camera"));
    service.stopCapture();
    sessions.refusedInputs.clear();
    sessions.refusedOutputs = {CaptureSampleKind::sound};
    CameraCaptureService second(sessions, media, clock);
    ASSERT_TRUE(second.startCapture(kFakeCamera, "/takes/camera.mov",
                                    CameraMicrophone{kFakeMicrophone, screenInput, 16}));
    EXPECT_TRUE(second.hasAudio());
}

TEST_F(CameraCaptureServiceTest, microphoneThatCannotBeOpenedEndsTheStart) {
    sessions.deviceErrors = {{kFakeMicrophone.id, kGone}};
    const auto started = startWithMicrophone();
    ASSERT_FALSE(started);
    EXPECT_EQ(started.error().description(), kGone.description());
    EXPECT_THAT(log.calls(), testing::Not(testing::Contains("startRunning")));
    EXPECT_THAT(log.calls(), testing::Not(testing::Contains("camera.mov makeWriter")));
    EXPECT_EQ(sessions.sessionCount(), 0U);
    service.stopCapture();
    EXPECT_EQ(log.calls().back(), "makeDeviceInput alsa.mic");
}

TEST_F(CameraCaptureServiceTest, cameraThatCannotBeUsedEndsTheStart) {
    sessions.deviceErrors = {{kFakeCamera.id, kGone}};
    EXPECT_EQ(start().error().description(), kGone.description());
    sessions.deviceErrors.clear();
    sessions.refusedInputs = {kFakeCamera.id};
    EXPECT_EQ(start().error().description(), "Cannot add camera input.");
    sessions.refusedInputs.clear();
    sessions.refusedOutputs = {CaptureSampleKind::picture};
    EXPECT_EQ(start().error().description(), "Cannot add camera output.");
    EXPECT_EQ(sessions.sessionCount(), 0U);
    EXPECT_FALSE(service.hasAudio());
}

TEST_F(CameraCaptureServiceTest, fileThatCannotBeMadeEndsTheStart) {
    const MediaError error{MediaError::Kind::cannotWrite, "camera.mov", "test"};
    for (auto* failure : {&media.makeError, &media.inputError, &media.startError}) {
        *failure = error;
        EXPECT_EQ(start().error().description(), error.description());
        failure->reset();
    }
    EXPECT_THAT(log.calls(), testing::Not(testing::Contains("startRunning")));
    EXPECT_EQ(sessions.sessionCount(), 0U);
}

TEST_F(CameraCaptureServiceTest, stopBeforeAnyPictureFinishesWithoutSession) {
    ASSERT_TRUE(start());
    newCalls();
    service.stopCapture();
    EXPECT_THAT(newCalls(), ElementsAre("stopRunning", "camera.mov markAsFinished",
                                        "camera.mov finishWriting"));
    EXPECT_EQ(service.firstSampleHostTime(), std::nullopt);
}

TEST_F(CameraCaptureServiceTest, secondStopAndStopWithoutStartDoNothing) {
    service.stopCapture();
    EXPECT_THAT(log.calls(), IsEmpty());
    ASSERT_TRUE(start());
    service.stopCapture();
    newCalls();
    service.stopCapture();
    EXPECT_THAT(newCalls(), IsEmpty());
}

TEST_F(CameraCaptureServiceTest, samplesQueuedWhenItStopsReachNoWriter) {
    ASSERT_TRUE(startWithMicrophone());
    sessions.whileStopping = [this] {
        sessions.sendPicture(1);
        sessions.sendSound(16, 1);
    };
    newCalls();
    service.stopCapture();
    EXPECT_THAT(newCalls(), ElementsAre("stopRunning", "camera.mov markAsFinished",
                                        "camera.mov finishWriting"));
    EXPECT_THAT(screenLog.calls(), IsEmpty());
}

TEST_F(CameraCaptureServiceTest, stopWaitsForTheSampleThatIsBeingWritten) {
    std::promise<void> isAppending;
    screenInput.whileAppending = [&] {
        isAppending.set_value();
        std::this_thread::sleep_for(std::chrono::milliseconds(30)); // a slow writer
    };
    ASSERT_TRUE(startWithMicrophone());
    sessions.sendSound(16, 3);
    ASSERT_EQ(isAppending.get_future().wait_for(std::chrono::seconds(20)),
              std::future_status::ready);
    service.stopCapture();
    EXPECT_THAT(screenLog.calls(), ElementsAre("appendAudio 3.000"));
}

TEST_F(CameraCaptureServiceTest, fileThatFailsLaterGoesUnnoticed) {
    ASSERT_TRUE(start());
    sendPicture(1);
    media.hasFailed = true;
    media.finishError = MediaError{MediaError::Kind::diskFull, "camera.mov", ""};
    service.stopCapture();
    EXPECT_EQ(log.calls().back(), "camera.mov finishWriting");
}

TEST_F(CameraCaptureServiceTest, destroyedWithoutStopCancelsTheFile) {
    {
        CameraCaptureService dropped(sessions, media, clock);
        ASSERT_TRUE(dropped.startCapture(kFakeCamera, "/takes/camera.mov", std::nullopt));
        sessions.sendPicture(1);
    }
    EXPECT_EQ(log.calls().back(), "camera.mov cancelWriting");
    EXPECT_EQ(sessions.sessionCount(), 0U);
}

TEST_F(CameraCaptureServiceTest, unpluggedCameraIsToldAndPicturesGoOnWhenItIsBack) {
    ASSERT_TRUE(start());
    sendPicture(1);
    sessions.interruption = kGone;
    EXPECT_EQ(service.interruption(), kGone);
    sessions.interruption.reset();
    sendPicture(9);
    EXPECT_EQ(log.calls().back(), "camera.mov append 9.000");
}

} // namespace
} // namespace tavi
