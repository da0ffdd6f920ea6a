#include "capture/AudioCaptureService.h"

#include "fakes/FakeCapture.h"
#include "fakes/FakeMedia.h"

#include <gmock/gmock.h>

#include <chrono>
#include <future>
#include <thread>

namespace tavi {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using State = AudioCaptureService::State;

class AudioCaptureServiceTest : public testing::Test {
protected:
    Result<void, AudioCaptureError> start() { return service.startWarmUp(kFakeMicrophone); }

    void send(const std::vector<std::uint32_t>& bitsInOrder) {
        for (const std::uint32_t bits : bitsInOrder) {
            sessions.sendSound(bits);
        }
        sessions.settle();
    }

    /// A service that records sound of 16 bits.
    void record() {
        ASSERT_TRUE(start());
        send({16, 16, 16});
        service.startRecording(input, [this] { return isWriterSessionReady.load(); });
    }

    void sendAt(double seconds, std::uint32_t bits = 16) {
        sessions.sendSound(bits, seconds);
        sessions.settle();
    }

    FakeCaptureSessions sessions;
    CallLog writer;
    FakeAudioInput input{writer};
    std::atomic<bool> isWriterSessionReady = true;
    AudioCaptureService service{sessions};
};

TEST_F(AudioCaptureServiceTest, warmUpMakesASessionOfSoundInOrder) {
    EXPECT_EQ(service.state(), State::idle);
    EXPECT_EQ(service.audioDataOutput(), nullptr);
    ASSERT_TRUE(start());
    EXPECT_EQ(service.state(), State::preparing);
    EXPECT_THAT(sessions.calls(),
                ElementsAre("makeSession", "makeDeviceInput alsa.mic", "addInput alsa.mic",
                            "addAudioOutput", "startRunning"));
    EXPECT_THAT(sessions.queueLabels, ElementsAre("com.tavi.audio"));
    ASSERT_NE(service.audioDataOutput(), nullptr);
    EXPECT_EQ(service.audioDataOutput()->recommendedAudioSettings().bitRate, 96'000);
}

TEST_F(AudioCaptureServiceTest, serviceIsPreparingBeforeTheMicrophoneRuns) {
    auto stateAtStart = State::idle;
    sessions.whileStarting = [&] { stateAtStart = service.state(); };
    ASSERT_TRUE(start());
    EXPECT_EQ(stateAtStart, State::preparing);
}

TEST_F(AudioCaptureServiceTest, secondWarmUpDoesNothing) {
    ASSERT_TRUE(start());
    send({16, 16});
    const auto calls = sessions.calls();
    EXPECT_TRUE(start());
    EXPECT_EQ(sessions.calls(), calls);
    EXPECT_EQ(service.lastSeenBitsPerChannel(), 16U);
    send({16});
    EXPECT_EQ(service.state(), State::ready) << "the count went on";
    EXPECT_TRUE(start());
    EXPECT_EQ(service.state(), State::ready);
}

struct StabilityCase {
    std::vector<std::uint32_t> bits; ///< The last one makes it ready, or none does.
    bool isReady;
};

class FormatStability : public testing::TestWithParam<StabilityCase> {};

TEST_P(FormatStability, takesThreeEqualSamplesInARow) {
    FakeCaptureSessions sessions;
    AudioCaptureService service(sessions);
    ASSERT_TRUE(service.startWarmUp(kFakeMicrophone));
    for (const std::uint32_t bits : GetParam().bits) {
        EXPECT_EQ(service.state(), State::preparing);
        EXPECT_EQ(service.stableFormatDesc(), std::nullopt);
        sessions.sendSound(bits);
        sessions.settle();
        EXPECT_EQ(service.lastSeenBitsPerChannel(), bits);
    }
    EXPECT_EQ(service.state() == State::ready, GetParam().isReady);
    if (GetParam().isReady) {
        EXPECT_EQ(service.stableFormatDesc(),
                  (AudioSampleFormat{GetParam().bits.back(), 1, 48000}));
    }
}

INSTANTIATE_TEST_SUITE_P(Sequences, FormatStability,
                         testing::Values(StabilityCase{{16, 16, 16}, true},
                                         StabilityCase{{32, 16, 16, 16}, true},
                                         StabilityCase{{16, 16, 32, 16, 16}, false},
                                         StabilityCase{{16, 16, 32, 32, 32}, true},
                                         StabilityCase{{16, 16}, false}));

TEST_F(AudioCaptureServiceTest, samplesWithoutFormatAndInvalidOnesDoNotCount) {
    ASSERT_TRUE(start());
    send({16, 16});
    CaptureSample sample;
    sample.sound = std::make_shared<AudioBuffer>();
    sessions.send(sample);
    sample.format = AudioSampleFormat{16, 1, 48000};
    sample.isValid = false;
    sessions.send(sample);
    sessions.settle();
    EXPECT_EQ(service.state(), State::preparing);
    send({16});
    EXPECT_EQ(service.state(), State::ready);
}

TEST_F(AudioCaptureServiceTest, readyServiceThrowsSoundAwayAndKeepsTheFormat) {
    ASSERT_TRUE(start());
    send({16, 16, 16, 32, 32, 32});
    EXPECT_EQ(service.state(), State::ready);
    EXPECT_EQ(service.lastSeenBitsPerChannel(), 16U);
    EXPECT_EQ(service.stableFormatDesc()->bitsPerChannel, 16U);
    EXPECT_TRUE(sessions.isRunning());
}

TEST_F(AudioCaptureServiceTest, recordingWritesWithoutTouchingTheSession) {
    ASSERT_TRUE(start());
    send({16, 16, 16});
    const auto calls = sessions.calls();
    service.startRecording(input, [] { return true; });
    EXPECT_EQ(service.state(), State::recording);
    EXPECT_EQ(sessions.calls(), calls);
    EXPECT_TRUE(service.stableFormatDesc());
    sendAt(2);
    sendAt(2.01);
    EXPECT_THAT(writer.calls(), ElementsAre("appendAudio 2.000", "appendAudio 2.010"));
}

TEST_F(AudioCaptureServiceTest, soundOfAnotherBitDepthIsDropped) {
    record();
    sendAt(1, 32);
    sendAt(2, 32);
    sendAt(3, 32);
    sendAt(4, 32);
    EXPECT_THAT(writer.calls(), IsEmpty());
    EXPECT_EQ(service.state(), State::recording);
    EXPECT_EQ(service.lastSeenBitsPerChannel(), 16U) << "the format is not learned anew";
    sendAt(5);
    EXPECT_THAT(writer.calls(), ElementsAre("appendAudio 5.000"));
}

TEST_F(AudioCaptureServiceTest, soundBeforeTheScreensFirstFrameIsDropped) {
    isWriterSessionReady = false;
    record();
    sendAt(1);
    EXPECT_THAT(writer.calls(), IsEmpty());
    isWriterSessionReady = true;
    sendAt(2);
    EXPECT_THAT(writer.calls(), ElementsAre("appendAudio 2.000"));
}

TEST_F(AudioCaptureServiceTest, soundIsDroppedWhileTheWriterIsNotReady) {
    record();
    input.isReady = false;
    sendAt(1);
    input.isReady = true;
    sendAt(2);
    EXPECT_THAT(writer.calls(), ElementsAre("appendAudio 2.000"));
}

TEST_F(AudioCaptureServiceTest, withoutAnAnswerOnTheWritersSessionNothingIsWritten) {
    ASSERT_TRUE(start());
    send({16, 16, 16});
    service.startRecording(input, nullptr);
    sendAt(1);
    EXPECT_THAT(writer.calls(), IsEmpty());
}

TEST_F(AudioCaptureServiceTest, soundQueuedWhenItStopsNeverReachesTheWriter) {
    record();
    sessions.whileStopping = [this] { sessions.sendSound(16, 9); };
    service.stopAudio();
    EXPECT_THAT(writer.calls(), IsEmpty());
}

TEST_F(AudioCaptureServiceTest, stopWaitsForTheSampleThatIsBeingWritten) {
    std::promise<void> isAppending;
    input.whileAppending = [&] {
        isAppending.set_value();
        std::this_thread::sleep_for(std::chrono::milliseconds(30)); // a slow writer
    };
    record();
    sessions.sendSound(16, 3);
    ASSERT_EQ(isAppending.get_future().wait_for(std::chrono::seconds(20)),
              std::future_status::ready);
    service.stopAudio();
    EXPECT_THAT(writer.calls(), ElementsAre("appendAudio 3.000"));
}

class StopFrom : public testing::TestWithParam<State> {};

TEST_P(StopFrom, leavesAnIdleServiceThatCanWarmUpAgain) {
    FakeCaptureSessions sessions;
    CallLog writer;
    FakeAudioInput input(writer);
    AudioCaptureService service(sessions);
    ASSERT_TRUE(service.startWarmUp(kFakeMicrophone));
    for (int i = 0; GetParam() != State::preparing && i < 3; ++i) {
        sessions.sendSound(24);
    }
    sessions.settle();
    if (GetParam() == State::recording) {
        service.startRecording(input, [] { return true; });
    }
    ASSERT_EQ(service.state(), GetParam());

    // What is queued during the stop must not count for the next warm-up.
    sessions.whileStopping = [&] { sessions.sendSound(24); };
    service.stopAudio();
    EXPECT_EQ(service.state(), State::idle);
    EXPECT_EQ(service.stableFormatDesc(), std::nullopt);
    EXPECT_EQ(service.audioDataOutput(), nullptr);
    EXPECT_EQ(sessions.sessionCount(), 0U);
    EXPECT_EQ(sessions.calls().back(), "stopRunning");

    ASSERT_TRUE(service.startWarmUp(kFakeMicrophone));
    EXPECT_EQ(service.lastSeenBitsPerChannel(), 0U);
    sessions.sendSound(24);
    sessions.sendSound(24);
    sessions.settle();
    EXPECT_EQ(service.state(), State::preparing);
    sessions.sendSound(24);
    sessions.settle();
    EXPECT_EQ(service.state(), State::ready);
}

INSTANTIATE_TEST_SUITE_P(EachState, StopFrom,
                         testing::Values(State::preparing, State::ready, State::recording));

TEST_F(AudioCaptureServiceTest, stopOfAnIdleServiceDoesNothing) {
    service.stopAudio();
    EXPECT_EQ(service.state(), State::idle);
    EXPECT_THAT(sessions.calls(), IsEmpty());
}

TEST_F(AudioCaptureServiceTest, destroyedServiceStopsTheMicrophone) {
    {
        AudioCaptureService dropped(sessions);
        ASSERT_TRUE(dropped.startWarmUp(kFakeMicrophone));
    }
    EXPECT_EQ(sessions.calls().back(), "stopRunning");
    EXPECT_EQ(sessions.sessionCount(), 0U);
}

TEST_F(AudioCaptureServiceTest, failedWarmUpsLeaveAnIdleServiceAndNoSession) {
    const CaptureDeviceError gone{CaptureDeviceError::Kind::gone, "Desk Microphone"};
    sessions.deviceErrors = {{kFakeMicrophone.id, gone}};
    EXPECT_EQ(start().error().description(), gone.description());
    sessions.deviceErrors.clear();
    sessions.refusedInputs = {kFakeMicrophone.id};
    EXPECT_EQ(start().error().description(), "Cannot add microphone input.");
    sessions.refusedInputs.clear();
    sessions.refusedOutputs = {CaptureSampleKind::sound};
    EXPECT_EQ(start().error().description(), "Cannot add audio output.");
    EXPECT_EQ(service.state(), State::idle);
    EXPECT_EQ(service.audioDataOutput(), nullptr);
    EXPECT_EQ(sessions.sessionCount(), 0U);
    sessions.refusedOutputs.clear();
    EXPECT_TRUE(start());
    EXPECT_EQ(service.state(), State::preparing);
}

TEST_F(AudioCaptureServiceTest, unpluggedMicrophoneIsToldAndSoundGoesOnWhenItIsBack) {
    record();
    EXPECT_EQ(service.interruption(), std::nullopt);
    sessions.interruption = CaptureDeviceError{CaptureDeviceError::Kind::gone, "Desk Microphone"};
    EXPECT_EQ(service.interruption(), sessions.interruption);
    EXPECT_EQ(service.state(), State::recording);
    sessions.interruption.reset();
    sendAt(8);
    EXPECT_THAT(writer.calls(), ElementsAre("appendAudio 8.000"));
    service.stopAudio();
    EXPECT_EQ(service.interruption(), std::nullopt);
}

} // namespace
} // namespace tavi
