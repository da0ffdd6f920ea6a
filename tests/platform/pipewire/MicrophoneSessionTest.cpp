#include "platform/pipewire/DeviceCapture.h"
#include "platform/pipewire/FakeDevices.h"
#include "platform/pipewire/SessionRig.h"

#include <cmath>

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

/// Before the tone, while links are made, there is silence.
constexpr double kStart = 0.3;

TEST(MicrophoneSession, deliversTheToneWithoutGapOrOverlap) {
    const PipeWireTestServer server;
    const FakeMicrophone fake("mic", "Fake", {SPA_AUDIO_FORMAT_S16, 48000, 1, 700});
    SessionRig rig;
    ASSERT_NO_FATAL_FAILURE(rig.add(microphone("mic")));
    EXPECT_EQ(rig.audioOutput().recommendedAudioSettings().sampleRate, 48000);
    const std::int64_t before = hostNanoseconds();
    rig.session().startRunning();
    EXPECT_TRUE(rig.session().isRunning());
    ASSERT_TRUE(test::waitFor([&] { return secondsOf(rig.samples()) > 4; }));
    rig.session().stopRunning();
    const std::int64_t after = hostNanoseconds();
    const auto all = rig.samples();
    EXPECT_EQ(rig.session().interruption(), std::nullopt);
    EXPECT_NEAR(steadyPitch(channelOf(all, 0, kStart), 48000), 700, 0.05);
    EXPECT_GT(all.front().presentationTime.value, before - 50'000'000);
    EXPECT_LT(all.front().presentationTime.value, before + 500'000'000);
    EXPECT_LT(all.back().presentationTime.value, after);
    for (std::size_t i = 1; i < all.size(); ++i) {
        const double length = static_cast<double>(all[i - 1].sound->frames()) / 48000;
        const double step = (all[i].presentationTime - all[i - 1].presentationTime).seconds();
        EXPECT_NEAR(step, length, 0.0005) << i;
        EXPECT_LE(length, 0.05);
    }
    // The sound is as long as it took.
    const double took = (all.back().presentationTime - all.front().presentationTime).seconds();
    const double length = secondsOf(all) - static_cast<double>(all.back().sound->frames()) / 48000;
    EXPECT_NEAR(took, length, 0.01);
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
    ASSERT_TRUE(test::waitFor([&] { return secondsOf(rig.samples()) > 1; }));
    rig.session().stopRunning();
    const auto all = rig.samples();
    const std::uint32_t bits =
        sound.format == SPA_AUDIO_FORMAT_S16                                              ? 16
        : sound.format == SPA_AUDIO_FORMAT_S24 || sound.format == SPA_AUDIO_FORMAT_S24_32 ? 24
                                                                                          : 32;
    const auto rate = static_cast<int>(sound.rate);
    const auto channels = static_cast<int>(sound.channels);
    for (const auto& sample : all) {
        ASSERT_EQ(sample.format, (AudioSampleFormat{bits, channels, rate}));
        ASSERT_EQ(sample.sound->sampleRate, rate);
        ASSERT_EQ(sample.sound->channels, channels);
        ASSERT_TRUE(sample.isValid);
    }
    for (int channel = 0; channel < channels; ++channel) {
        const auto tone = channelOf(all, channel, kStart);
        EXPECT_NEAR(steadyPitch(tone, rate), sound.frequency * (channel + 1), 0.5) << channel;
        const float loudest = *std::ranges::max_element(tone);
        EXPECT_NEAR(loudest, FakeSound::kAmplitude, 0.02) << channel;
    }
}

INSTANTIATE_TEST_SUITE_P(Device, MicrophoneFormats,
                         testing::Values(FakeSound{SPA_AUDIO_FORMAT_S16, 44100, 1, 300},
                                         FakeSound{SPA_AUDIO_FORMAT_S16, 16000, 1, 300},
                                         FakeSound{SPA_AUDIO_FORMAT_S24, 48000, 2, 300},
                                         FakeSound{SPA_AUDIO_FORMAT_S24_32, 48000, 4, 300},
                                         FakeSound{SPA_AUDIO_FORMAT_S32, 96000, 2, 300},
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
    fake = std::make_unique<FakeMicrophone>("mic", "Fake",
                                            FakeSound{SPA_AUDIO_FORMAT_S32, 48000, 1, 600});
    ASSERT_TRUE(test::waitFor([&] { return secondsOf(rig.samples()) > 1; }));
    EXPECT_EQ(rig.session().interruption(), std::nullopt);
    const auto after = rig.samples();
    EXPECT_NEAR(steadyPitch(channelOf(after, 0, kStart), 48000), 600, 0.5);
    EXPECT_EQ(after.back().format->bitsPerChannel, 32U);
    const double pause =
        (after.front().presentationTime - before.back().presentationTime).seconds();
    EXPECT_GT(pause, 0.9);
    EXPECT_LT(pause, 5);
}

TEST(MicrophoneSession, outlivesTheDaemonAndContinuesWithANewOne) {
    PipeWireTestServer server;
    auto fake = std::make_unique<FakeMicrophone>("mic", "Fake", FakeSound{});
    SessionRig rig;
    ASSERT_NO_FATAL_FAILURE(rig.add(microphone("mic")));
    rig.session().startRunning();
    ASSERT_TRUE(rig.waitForCount(5));
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
