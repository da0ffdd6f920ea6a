#include "capture/ScreenCaptureService.h"

#include "fakes/FakeClock.h"
#include "fakes/FakeMedia.h"
#include "fakes/FakeScreen.h"

#include <gmock/gmock.h>

namespace tavi {
namespace {

using testing::ElementsAre;

const CaptureError kScreenError{CaptureError::Kind::sourceGone, "test"};

class ScreenCaptureServiceTest : public testing::Test {
protected:
    Result<void, CaptureError> start(int width = 1920, int height = 1080) {
        return service.startCapture(ScreenFilter::display(7), width, height, "/takes/video.mov");
    }

    Result<void, CaptureError> startWithAudio() {
        return service.startCapture(
            ScreenFilter{7}, 64, 64, "/takes/video.mov",
            {.audioSettings = AudioSettings{2, 48000, 96'000, /*realTime=*/false}});
    }

    FakeScreenStreams screen;
    FakeMediaLibrary media;
    FakeClock clock;
    ScreenCaptureService service{screen, media, clock};
};

TEST_F(ScreenCaptureServiceTest, configuresStreamAndWriterAsTold) {
    ASSERT_TRUE(start());
    EXPECT_EQ(screen.lastFilter, ScreenFilter::display(7));
    EXPECT_EQ(screen.lastConfiguration.width, 1920);
    EXPECT_EQ(screen.lastConfiguration.height, 1080);
    EXPECT_EQ(screen.lastConfiguration.minimumFrameInterval, (MediaTime{1, 60}));
    EXPECT_EQ(screen.queueLabel(), "com.tavi.capture");
    EXPECT_EQ(media.lastPath, "/takes/video.mov");
    EXPECT_EQ(media.lastType, FileType::quickTimeMovie);
    EXPECT_EQ(media.lastSettings.codec, VideoCodec::hevc);
    EXPECT_EQ(media.lastSettings.width, 1920);
    EXPECT_EQ(media.lastSettings.height, 1080);
    EXPECT_EQ(media.lastSettings.bitRate, 20'000'000);
    EXPECT_EQ(media.lastSettings.expectedFrameRate, 60);
    EXPECT_TRUE(media.lastSettings.realTime);
    EXPECT_THAT(media.calls(), ElementsAre("makeWriter", "addVideoInput", "startWriting"));
}

TEST_F(ScreenCaptureServiceTest, oddSizesGrowToTheNextEvenOne) {
    ASSERT_TRUE(start(1367, 767));
    EXPECT_EQ(media.lastSettings.width, 1368);
    EXPECT_EQ(media.lastSettings.height, 768);
    EXPECT_EQ(screen.lastConfiguration.width, 1368);
    EXPECT_EQ(screen.lastConfiguration.height, 768);
}

TEST_F(ScreenCaptureServiceTest, writesFromFirstFrameToStop) {
    ASSERT_TRUE(start());
    clock.setHostTime(10.5);
    screen.sendPicture(10);
    screen.sendPicture(10.1);
    screen.settle();
    EXPECT_EQ(service.sessionStartTime(), MediaTime::fromSeconds(10.5, MediaTime::kNanoseconds));
    clock.setHostTime(12);
    service.stopCapture();
    EXPECT_THAT(media.calls(), ElementsAre("makeWriter", "addVideoInput", "startWriting",
                                           "startSession 10.000", "append 10.000", "append 10.100",
                                           "endSession 12.000", "markAsFinished", "finishWriting"));
    EXPECT_EQ(service.appendedFrames(), 2U);
    EXPECT_EQ(service.sessionStartTime(), std::nullopt);
}

TEST_F(ScreenCaptureServiceTest, withoutAudioSettingsTheFileHasOneTrack) {
    ASSERT_TRUE(start());
    EXPECT_EQ(service.audioWriterInput(), nullptr);
    service.stopCapture();
    EXPECT_THAT(media.calls(), ElementsAre("makeWriter", "addVideoInput", "startWriting",
                                           "markAsFinished", "finishWriting"));
}

TEST_F(ScreenCaptureServiceTest, soundIsAddedAfterTheVideoAndFinishedAfterIt) {
    ASSERT_TRUE(startWithAudio());
    EXPECT_EQ(media.lastAudioSettings.channels, 2);
    EXPECT_EQ(media.lastAudioSettings.sampleRate, 48000);
    EXPECT_EQ(media.lastAudioSettings.bitRate, 96'000);
    EXPECT_TRUE(media.lastAudioSettings.realTime) << "whatever the settings say";
    screen.sendPicture(10);
    screen.settle();
    ASSERT_NE(service.audioWriterInput(), nullptr);
    service.audioWriterInput()->append(std::make_shared<AudioBuffer>(), {10, 1});
    clock.setHostTime(12);
    service.stopCapture();
    EXPECT_THAT(media.calls(),
                ElementsAre("makeWriter", "addVideoInput", "addAudioInput", "startWriting",
                            "startSession 10.000", "append 10.000", "appendAudio 10.000",
                            "endSession 12.000", "markAsFinished", "markAudioAsFinished",
                            "finishWriting"));
    EXPECT_EQ(service.audioWriterInput(), nullptr);
}

TEST_F(ScreenCaptureServiceTest, soundThatCannotBeEncodedEndsTheStart) {
    media.audioInputError = MediaError{MediaError::Kind::noEncoder, "video.mov", "aac"};
    const auto started = startWithAudio();
    ASSERT_FALSE(started);
    EXPECT_EQ(started.error().description(), media.audioInputError->description());
    EXPECT_EQ(media.calls().back(), "addAudioInput");
    EXPECT_EQ(service.audioWriterInput(), nullptr);
}

TEST_F(ScreenCaptureServiceTest, failedStreamTakesTheSoundsWayBack) {
    screen.startError = kScreenError;
    EXPECT_FALSE(startWithAudio());
    EXPECT_EQ(media.calls().back(), "cancelWriting");
    EXPECT_EQ(service.audioWriterInput(), nullptr);
}

struct AlphaCase {
    bool isWanted;
    bool isThere;
    bool isRecorded;
};

class ScreenCaptureServiceAlpha : public ScreenCaptureServiceTest,
                                  public testing::WithParamInterface<AlphaCase> {};

TEST_P(ScreenCaptureServiceAlpha, isRecordedWhereItIsWantedAndThere) {
    screen.givesAlpha = GetParam().isThere;
    ASSERT_TRUE(service.startCapture(ScreenFilter::window(7), 64, 64, "/takes/video.mov",
                                     {.alpha = GetParam().isWanted}));
    EXPECT_EQ(media.lastSettings.hasAlpha, GetParam().isRecorded);
    EXPECT_EQ(media.lastSettings.codec, VideoCodec::hevc);
    EXPECT_THAT(media.calls(), ElementsAre("makeWriter", "addVideoInput", "startWriting"));
}

INSTANTIATE_TEST_SUITE_P(Sources, ScreenCaptureServiceAlpha,
                         testing::Values(AlphaCase{true, true, true}, AlphaCase{true, false, false},
                                         AlphaCase{false, true, false}));

TEST_F(ScreenCaptureServiceTest, frameThatComesWhileTheStreamStartsCounts) {
    screen.sendsFirstPictureAtStart = true;
    ASSERT_TRUE(start());
    EXPECT_TRUE(service.sessionStarted());
    EXPECT_EQ(service.appendedFrames(), 1U);
}

TEST_F(ScreenCaptureServiceTest, firstFrameIsToldOnce) {
    int calls = 0;
    std::optional<MediaTime> startTimeInCall;
    bool startedInCall = false;
    service.onSessionStarted = [&] {
        ++calls;
        startTimeInCall = service.sessionStartTime();
        startedInCall = service.sessionStarted();
    };
    ASSERT_TRUE(start());
    EXPECT_FALSE(service.sessionStarted());
    screen.sendPicture(1);
    screen.sendPicture(2);
    screen.settle();
    EXPECT_EQ(calls, 1);
    EXPECT_TRUE(startedInCall);
    EXPECT_TRUE(startTimeInCall.has_value());
}

TEST_F(ScreenCaptureServiceTest, sampleWithoutPictureStartsTheSessionAndAppendsNothing) {
    ASSERT_TRUE(start());
    ScreenSample status;
    status.presentationTime = {5, 1};
    screen.send(status);
    screen.settle();
    EXPECT_TRUE(service.sessionStarted());
    EXPECT_EQ(media.calls().back(), "startSession 5.000");
    screen.sendPicture(6);
    screen.settle();
    EXPECT_EQ(media.calls().back(), "append 6.000");
}

TEST_F(ScreenCaptureServiceTest, samplesOfOtherTypesAndInvalidOnesAreIgnored) {
    ASSERT_TRUE(start());
    ScreenSample sample;
    sample.image = std::make_shared<PixelBuffer>(2, 2);
    sample.type = ScreenSampleType::audio;
    screen.send(sample);
    sample.type = ScreenSampleType::screen;
    sample.isValid = false;
    screen.send(sample);
    screen.settle();
    EXPECT_FALSE(service.sessionStarted());
    EXPECT_EQ(media.calls().back(), "startWriting");
}

TEST_F(ScreenCaptureServiceTest, frameIsDroppedWhenTheEncoderIsNotReady) {
    ASSERT_TRUE(start());
    screen.sendPicture(1);
    screen.settle();
    media.isReady = false;
    screen.sendPicture(2);
    screen.settle();
    media.isReady = true;
    screen.sendPicture(3);
    screen.settle();
    EXPECT_EQ(media.calls().back(), "append 3.000");
    EXPECT_EQ(service.appendedFrames(), 2U);
    EXPECT_EQ(service.droppedFrames(), 1U);
}

TEST_F(ScreenCaptureServiceTest, stopBeforeTheFirstFrameFinishesWithoutSession) {
    ASSERT_TRUE(start());
    EXPECT_EQ(service.sessionStartTime(), std::nullopt);
    service.stopCapture();
    EXPECT_THAT(media.calls(), ElementsAre("makeWriter", "addVideoInput", "startWriting",
                                           "markAsFinished", "finishWriting"));
}

TEST_F(ScreenCaptureServiceTest, secondStopReturnsAtOnce) {
    ASSERT_TRUE(start());
    service.stopCapture();
    const auto calls = media.calls();
    service.stopCapture();
    EXPECT_EQ(media.calls(), calls);
}

TEST_F(ScreenCaptureServiceTest, stopWithoutStartDoesNothing) {
    service.stopCapture();
    EXPECT_TRUE(media.calls().empty());
}

TEST_F(ScreenCaptureServiceTest, frameInFlightAtStopFallsOut) {
    ASSERT_TRUE(start());
    screen.sendPicture(1);
    screen.settle();
    screen.whileStopping = [this] { screen.sendPicture(2); };
    service.stopCapture();
    EXPECT_EQ(service.appendedFrames(), 1U);
    EXPECT_EQ(media.calls().back(), "finishWriting");
}

TEST_F(ScreenCaptureServiceTest, streamThatCannotBeStoppedStillLeavesAFile) {
    ASSERT_TRUE(start());
    screen.sendPicture(1);
    screen.settle();
    screen.stopError = kScreenError;
    service.stopCapture();
    EXPECT_EQ(media.calls().back(), "finishWriting");
}

TEST_F(ScreenCaptureServiceTest, writerThatCannotBeMadeEndsTheStart) {
    media.makeError = MediaError{MediaError::Kind::cannotWrite, "/takes/video.mov", "read-only"};
    const auto started = start();
    ASSERT_FALSE(started);
    EXPECT_EQ(started.error().kind, CaptureError::Kind::writer);
    EXPECT_EQ(started.error().description(), media.makeError->description());
    EXPECT_FALSE(screen.isRunning());
}

TEST_F(ScreenCaptureServiceTest, missingEncoderEndsTheStart) {
    media.inputError = MediaError{MediaError::Kind::noEncoder, "/takes/video.mov", ""};
    EXPECT_FALSE(start());
    EXPECT_EQ(media.calls().back(), "addVideoInput");
}

TEST_F(ScreenCaptureServiceTest, streamErrorsEndTheStartAndCancelTheFile) {
    for (auto* error : {&screen.makeError, &screen.outputError, &screen.startError}) {
        *error = kScreenError;
        ScreenCaptureService failing(screen, media, clock);
        const auto started =
            failing.startCapture(ScreenFilter::display(7), 64, 64, "/takes/video.mov");
        ASSERT_FALSE(started);
        EXPECT_EQ(started.error(), kScreenError);
        EXPECT_EQ(media.calls().back(), "cancelWriting");
        failing.stopCapture();
        EXPECT_EQ(media.calls().back(), "cancelWriting");
        error->reset();
    }
}

TEST_F(ScreenCaptureServiceTest, failuresOfWriterAndStreamCanBeSeen) {
    ASSERT_TRUE(start());
    EXPECT_EQ(service.failure(), std::nullopt);
    media.hasFailed = true;
    ASSERT_TRUE(service.failure());
    EXPECT_EQ(service.failure()->kind, CaptureError::Kind::writer);
    media.hasFailed = false;
    screen.failure = CaptureError{CaptureError::Kind::connectionLost, ""};
    EXPECT_EQ(service.failure(), screen.failure);
    service.stopCapture();
    EXPECT_EQ(service.failure(), screen.failure) << "remembered after the stop";
}

TEST_F(ScreenCaptureServiceTest, failureWhileFinishingIsRemembered) {
    ASSERT_TRUE(start());
    media.finishError = MediaError{MediaError::Kind::diskFull, "video.mov", ""};
    service.stopCapture();
    ASSERT_TRUE(service.failure());
    EXPECT_EQ(service.failure()->description(), media.finishError->description());
}

TEST_F(ScreenCaptureServiceTest, destroyedWithoutStopCancelsTheFile) {
    {
        ScreenCaptureService dropped(screen, media, clock);
        ASSERT_TRUE(dropped.startCapture(ScreenFilter::display(7), 64, 64, "/takes/video.mov"));
        screen.sendPicture(1);
    }
    EXPECT_EQ(media.calls().back(), "cancelWriting");
}

} // namespace
} // namespace tavi
