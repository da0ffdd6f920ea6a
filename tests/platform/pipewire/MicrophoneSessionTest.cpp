#include "platform/pipewire/DeviceCapture.h"
#include "platform/pipewire/FakeDevices.h"
#include "platform/pipewire/FakeSamples.h"
#include "platform/pipewire/SessionRig.h"

#include <gmock/gmock.h>

#include <cmath>
#include <cstdlib>

namespace tavi {
namespace {

using test::FakeMicrophone;
using test::FakeSound;
using test::microphone;
using test::PipeWireTestServer;
using test::SessionRig;
using ErrorKind = CaptureDeviceError::Kind;

/// Sound of one channel, one sample after the other, from `from` seconds on.
std::vector<float> channelOf(const std::vector<CaptureSample>& samples, int channel, double from) {
    std::vector<float> all;
    for (const auto& sample : samples) {
        const auto& sound = *sample.sound;
        for (std::size_t i = 0; i < sound.frames(); ++i) {
            all.push_back(sound.samples[i * static_cast<std::size_t>(sound.channels) +
                                        static_cast<std::size_t>(channel)]);
        }
    }
    const auto skipped =
        std::min(all.size(), static_cast<std::size_t>(from * samples.front().sound->sampleRate));
    all.erase(all.begin(), all.begin() + static_cast<std::ptrdiff_t>(skipped));
    return all;
}

/// Hz, by the moments at which a tone rises through zero; 0 when their distances differ by more
/// than a sample.
double steadyPitch(const std::vector<float>& tone, int rate) {
    std::vector<double> rises;
    for (std::size_t i = 1; i < tone.size(); ++i) {
        if (tone[i - 1] < 0 && tone[i] >= 0) {
            rises.push_back(static_cast<double>(i) -
                            tone[i] / static_cast<double>(tone[i] - tone[i - 1]));
        }
    }
    if (rises.size() < 3) {
        return 0;
    }
    const double mean = (rises.back() - rises.front()) / static_cast<double>(rises.size() - 1);
    for (std::size_t i = 1; i < rises.size(); ++i) {
        if (std::abs(rises[i] - rises[i - 1] - mean) > 1) {
            return 0;
        }
    }
    return rate / mean;
}

double secondsOf(const std::vector<CaptureSample>& samples) {
    double seconds = 0;
    for (const auto& sample : samples) {
        seconds += static_cast<double>(sample.sound->frames()) / sample.sound->sampleRate;
    }
    return seconds;
}

/// The time of the first sample above a tenth of the tone; 0: none.
std::int64_t firstLoudTime(const std::vector<CaptureSample>& samples) {
    for (const auto& sample : samples) {
        const auto& sound = *sample.sound;
        for (std::size_t i = 0; i < sound.frames(); ++i) {
            if (std::abs(sound.samples[i * static_cast<std::size_t>(sound.channels)]) >
                FakeSound::kAmplitude / 10) {
                return sample.presentationTime.value +
                       static_cast<std::int64_t>(i) * 1'000'000'000 / sound.sampleRate;
            }
        }
    }
    return 0;
}

/// Before the tone, while links are made, there is silence.
constexpr double kStart = 0.3;

/// Whether each stretch begins where the one before ends.
bool isSeamless(const std::vector<CaptureSample>& samples) {
    for (std::size_t i = 1; i < samples.size(); ++i) {
        const auto& before = *samples[i - 1].sound;
        const double length = static_cast<double>(before.frames()) / before.sampleRate;
        const double step =
            (samples[i].presentationTime - samples[i - 1].presentationTime).seconds();
        if (std::abs(step - length) > 0.0005) {
            return false;
        }
    }
    return true;
}

/// Listens for `seconds` until `isGood`, four times at most: on a busy machine a PipeWire without
/// real-time rights loses sound by itself.
bool isHeard(SessionRig& rig, double seconds,
             const std::function<bool(const std::vector<CaptureSample>&)>& isGood) {
    for (int i = 0; i < 4; ++i) {
        rig.clear();
        if (test::waitFor([&] { return secondsOf(rig.samples()) > seconds; }) &&
            isGood(rig.samples())) {
            return true;
        }
    }
    return false;
}

TEST(MicrophoneSession, deliversTheToneWithoutGapOrOverlap) {
    const PipeWireTestServer server;
    const FakeMicrophone fake("mic", "Fake", {SPA_AUDIO_FORMAT_S16, 48000, 1, 700});
    SessionRig rig;
    ASSERT_NO_FATAL_FAILURE(rig.add(microphone("mic")));
    EXPECT_EQ(rig.audioOutput().recommendedAudioSettings().sampleRate, 48000);
    const std::int64_t before = hostNanoseconds();
    rig.session().startRunning();
    EXPECT_TRUE(rig.session().isRunning());
    ASSERT_TRUE(rig.waitForCount(1));
    const MediaTime first = rig.samples().front().presentationTime;
    EXPECT_GT(first.value, before);
    EXPECT_LT(first.value, hostNanoseconds());
    EXPECT_TRUE(isHeard(rig, 2, [](const auto& samples) {
        return isSeamless(samples) &&
               std::abs(steadyPitch(channelOf(samples, 0, kStart), 48000) - 700) < 0.05;
    }));
    rig.session().stopRunning();
    const auto all = rig.samples();
    EXPECT_LT(all.back().presentationTime.value, hostNanoseconds());
    EXPECT_EQ(rig.session().interruption(), std::nullopt);
    for (const auto& sample : all) {
        EXPECT_LE(static_cast<double>(sample.sound->frames()) / 48000, 0.05);
    }
}

TEST(MicrophoneSession, soundHasTheTimeAtWhichItWasHeard) {
    const PipeWireTestServer server;
    FakeMicrophone fake("mic", "Fake", {SPA_AUDIO_FORMAT_F32, 48000, 1, 700});
    fake.mute(true);
    SessionRig rig;
    ASSERT_NO_FATAL_FAILURE(rig.add(microphone("mic")));
    rig.session().startRunning();
    for (int i = 0; i < 5; ++i) {
        ASSERT_TRUE(test::waitFor(
            [&] { return secondsOf(rig.samples()) > 0.3 && fake.firstHeard() == 0; }));
        rig.clear();
        fake.mute(false);
        std::int64_t heard = 0;
        ASSERT_TRUE(test::waitFor([&] { return (heard = firstLoudTime(rig.samples())) > 0; }));
        // The first sample of the tone is none yet; and the device's clock stands for the host's.
        EXPECT_NEAR(static_cast<double>(heard - fake.firstHeard()) / 1e6, 0, 1) << "milliseconds";
        fake.mute(true);
        ASSERT_TRUE(test::waitFor([&] { return fake.firstHeard() == 0; }));
        rig.clear();
    }
}

TEST(MicrophoneSession, streamThatIsTakenAwayIsMadeAnew) {
    const PipeWireTestServer server;
    const FakeMicrophone fake("mic", "Fake", {});
    SessionRig rig;
    ASSERT_NO_FATAL_FAILURE(rig.add(microphone("mic")));
    rig.session().startRunning();
    ASSERT_TRUE(rig.waitForCount(5));
    ASSERT_EQ(std::system("pw-cli destroy $(pw-cli ls Node | awk '/^\\tid/ { id = $2 } "
                          "/node.name = \"tavlin\"/ { print id }' | tr -d ,) >/dev/null"),
              0);
    ASSERT_TRUE(rig.waitForInterruption(ErrorKind::unconnected));
    rig.clear();
    ASSERT_TRUE(rig.waitForCount(5));
    EXPECT_EQ(rig.session().interruption(), std::nullopt);
}

class MicrophoneFormats : public testing::TestWithParam<FakeSound> {};

TEST_P(MicrophoneFormats, comeAsFloatsAtTheirRateAndChannels) {
    const FakeSound sound = GetParam();
    const PipeWireTestServer server;
    const FakeMicrophone fake("mic", "Fake", sound);
    SessionRig rig;
    ASSERT_NO_FATAL_FAILURE(rig.add(microphone("mic")));
    EXPECT_EQ(rig.audioOutput().recommendedAudioSettings().sampleRate,
              sound.rate == 44100 ? 44100 : 48000);
    rig.session().startRunning();
    ASSERT_TRUE(rig.waitForCount(10));
    const auto all = rig.samples();
    const std::uint32_t bits = test::bitsOfSample(sound.format);
    const auto rate = static_cast<int>(sound.rate);
    const auto channels = static_cast<int>(sound.channels);
    for (const auto& sample : all) {
        ASSERT_EQ(sample.format, (AudioSampleFormat{bits, channels, rate}));
        ASSERT_EQ(sample.sound->sampleRate, rate);
        ASSERT_EQ(sample.sound->channels, channels);
        ASSERT_TRUE(sample.isValid);
    }
    EXPECT_TRUE(isHeard(rig, 0.7, [&](const auto& samples) {
        for (int channel = 0; channel < channels; ++channel) {
            const auto tone = channelOf(samples, channel, kStart);
            const double wanted = sound.frequency * (channel + 1);
            if (std::abs(steadyPitch(tone, rate) - wanted) > 0.5 ||
                std::abs(*std::ranges::max_element(tone) - FakeSound::kAmplitude) > 0.02) {
                return false;
            }
        }
        return true;
    }));
}

INSTANTIATE_TEST_SUITE_P(Device, MicrophoneFormats,
                         testing::Values(FakeSound{SPA_AUDIO_FORMAT_S16, 44100, 1, 300},
                                         FakeSound{SPA_AUDIO_FORMAT_S16, 16000, 1, 300},
                                         FakeSound{SPA_AUDIO_FORMAT_U8, 8000, 1, 300},
                                         FakeSound{SPA_AUDIO_FORMAT_S16, 11025, 2, 300},
                                         FakeSound{SPA_AUDIO_FORMAT_S24, 48000, 2, 300},
                                         FakeSound{SPA_AUDIO_FORMAT_S32, 22050, 3, 300},
                                         FakeSound{SPA_AUDIO_FORMAT_S24_32, 48000, 4, 300},
                                         FakeSound{SPA_AUDIO_FORMAT_S24, 32000, 5, 300},
                                         FakeSound{SPA_AUDIO_FORMAT_F32, 44100, 6, 300},
                                         FakeSound{SPA_AUDIO_FORMAT_F64, 88200, 7, 300},
                                         FakeSound{SPA_AUDIO_FORMAT_S32, 96000, 2, 300},
                                         FakeSound{SPA_AUDIO_FORMAT_F32, 192000, 1, 300},
                                         FakeSound{SPA_AUDIO_FORMAT_F32, 48000, 8, 300}));

TEST(MicrophoneSession, unpluggedMicrophoneIsQuietAndContinuesWhenItIsBack) {
    const PipeWireTestServer server;
    // Another one, to which nothing may be switched.
    const FakeMicrophone other("other", "Other", {SPA_AUDIO_FORMAT_S16, 48000, 1, 1000});
    auto fake = std::make_unique<FakeMicrophone>("mic", "Fake",
                                                 FakeSound{SPA_AUDIO_FORMAT_S16, 48000, 1, 400});
    SessionRig rig;
    ASSERT_NO_FATAL_FAILURE(rig.add(microphone("mic")));
    rig.session().startRunning();
    ASSERT_TRUE(test::waitFor([&] { return secondsOf(rig.samples()) > 0.5; }));
    fake.reset();
    ASSERT_TRUE(rig.waitForInterruption(ErrorKind::gone));
    const auto before = rig.samples();
    rig.clear();
    EXPECT_FALSE(test::waitFor([&] { return rig.count() > 1; }, 1)) << "sound of no microphone";
    EXPECT_TRUE(rig.session().isRunning());
    rig.clear();
    const std::int64_t back = hostNanoseconds();
    fake = std::make_unique<FakeMicrophone>("mic", "Fake",
                                            FakeSound{SPA_AUDIO_FORMAT_S32, 48000, 1, 600});
    ASSERT_TRUE(test::waitFor([&] { return secondsOf(rig.samples()) > 1; }));
    EXPECT_EQ(rig.session().interruption(), std::nullopt);
    const auto after = rig.samples();
    EXPECT_TRUE(isHeard(rig, 1, [](const auto& samples) {
        return std::abs(steadyPitch(channelOf(samples, 0, kStart), 48000) - 600) < 0.5;
    }));
    EXPECT_EQ(after.back().format->bitsPerChannel, 32U);
    const double pause =
        (after.front().presentationTime - before.back().presentationTime).seconds();
    EXPECT_GT(pause, 0.9);
    EXPECT_GT(after.front().presentationTime.value, back);
    EXPECT_LT(after.front().presentationTime.value, hostNanoseconds());
}

/// A microphone whose sound comes, and the server that it may lose.
class RunningMicrophone : public testing::Test {
protected:
    void SetUp() override {
        ASSERT_NO_FATAL_FAILURE(rig.add(microphone("mic")));
        rig.session().startRunning();
        ASSERT_TRUE(rig.waitForCount(5));
    }

    PipeWireTestServer server;
    std::unique_ptr<FakeMicrophone> fake =
        std::make_unique<FakeMicrophone>("mic", "Fake", FakeSound{});
    SessionRig rig;
};

TEST_F(RunningMicrophone, outlivesTheDaemonAndContinuesWithANewOne) {
    server.die();
    ASSERT_TRUE(rig.waitForInterruption(ErrorKind::noService));
    EXPECT_NE(rig.session().interruption()->description().find("PipeWire"), std::string::npos);
    fake.reset();
    rig.clear();
    server.start();
    fake = std::make_unique<FakeMicrophone>("mic", "Fake", FakeSound{});
    ASSERT_TRUE(rig.waitForCount(5));
    EXPECT_EQ(rig.session().interruption(), std::nullopt);
}

TEST_F(RunningMicrophone, outlivesTheSessionManagerAndContinuesWithANewOne) {
    server.killManager();
    ASSERT_TRUE(rig.waitForInterruption(ErrorKind::unconnected));
    EXPECT_THAT(rig.session().interruption()->description(), testing::HasSubstr("WirePlumber"));
    // Sound cards come and go with the one who watches for them.
    fake.reset();
    ASSERT_TRUE(rig.waitForInterruption(ErrorKind::gone));
    rig.clear();
    fake = std::make_unique<FakeMicrophone>("mic", "Fake", FakeSound{});
    server.startManager();
    ASSERT_TRUE(rig.waitForCount(5));
    EXPECT_EQ(rig.session().interruption(), std::nullopt);
}

TEST(MicrophoneSession, keepsItsMicrophoneWhenAnotherBecomesTheDefault) {
    const PipeWireTestServer server;
    const FakeMicrophone fake("mic", "Fake", {SPA_AUDIO_FORMAT_S16, 48000, 1, 700});
    const FakeMicrophone other("other", "Other", {SPA_AUDIO_FORMAT_S16, 48000, 1, 1000});
    SessionRig rig;
    ASSERT_NO_FATAL_FAILURE(rig.add(microphone("mic")));
    rig.session().startRunning();
    ASSERT_TRUE(rig.waitForCount(5));
    for (const char* name : {"other", "mic", "other"}) {
        ASSERT_TRUE(PipeWireTestServer::chooseDefaultSource(name));
        EXPECT_TRUE(isHeard(rig, 0.5, [](const auto& samples) {
            const double pitch = steadyPitch(channelOf(samples, 0, 0), 48000);
            EXPECT_TRUE(pitch == 0 || std::abs(pitch - 700) < 0.5) << pitch;
            return pitch > 0 && isSeamless(samples);
        }));
    }
}

TEST(MicrophoneSession, stopsPromptlyWhenTheDaemonIsStuckOrDead) {
    PipeWireTestServer server;
    const FakeMicrophone fake("mic", "Fake", {});
    SessionRig rig;
    ASSERT_NO_FATAL_FAILURE(rig.add(microphone("mic")));
    rig.session().startRunning();
    ASSERT_TRUE(rig.waitForCount(5));
    server.freeze(true);
    const std::int64_t before = hostNanoseconds();
    rig.session().stopRunning();
    EXPECT_LT(hostNanoseconds() - before, 1'000'000'000);
    server.freeze(false);
    rig.session().startRunning();
    server.die();
    rig.session().stopRunning();
    EXPECT_FALSE(rig.session().isRunning());
}

TEST(MicrophoneSession, deliversNothingAfterStop) {
    const PipeWireTestServer server;
    const FakeMicrophone fake("mic", "Fake", {});
    SessionRig rig;
    ASSERT_NO_FATAL_FAILURE(rig.add(microphone("mic")));
    rig.session().startRunning();
    ASSERT_TRUE(rig.waitForCount(5));
    rig.session().stopRunning();
    test::waitFor([] { return false; }, 0.05); // what was queued before
    rig.clear();
    EXPECT_FALSE(test::waitFor([&] { return rig.count() > 0; }, 0.3));
    rig.session().startRunning();
    EXPECT_TRUE(rig.waitForCount(5)) << "a session may run again";
}

TEST(MicrophoneSession, missingDeviceAndMissingDaemonAreTold) {
    {
        const PipeWireTestServer server;
        SessionRig rig;
        const auto input = rig.session().makeDeviceInput(microphone("nobody"));
        ASSERT_FALSE(input);
        EXPECT_EQ(input.error(), (CaptureDeviceError{ErrorKind::gone, "Microphone nobody"}));
        server.freeze(true);
        const std::int64_t before = hostNanoseconds();
        const auto stuck = rig.session().makeDeviceInput(microphone("nobody"));
        ASSERT_FALSE(stuck);
        EXPECT_EQ(stuck.error().kind, ErrorKind::noService);
        EXPECT_LT(hostNanoseconds() - before, 2'500'000'000);
        server.freeze(false);
    }
    const test::NoPipeWire nothing;
    SessionRig rig;
    const auto input = rig.session().makeDeviceInput(microphone("mic"));
    ASSERT_FALSE(input);
    EXPECT_EQ(input.error().kind, ErrorKind::noService);
}

} // namespace
} // namespace tavi
