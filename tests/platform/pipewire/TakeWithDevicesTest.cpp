#include "cli/RunTavi.h"
#include "platform/ffmpeg/FfmpegMediaLibrary.h"
#include "platform/pipewire/FakeDevices.h"
#include "platform/pipewire/PipeWireTestServer.h"

#include <gmock/gmock.h>

#include <cmath>
#include <filesystem>

namespace tavi::test {
namespace {

namespace fs = std::filesystem;

using testing::HasSubstr;

/// The recorder itself, on a private display, with a microphone that hears a tone
/// and a camera that sees two colours.
class TakeWithDevices : public testing::Test {
protected:
    /// Runs tavi on a display of its own.
    Outcome tavi(const std::string& arguments) {
        const std::string fifo = "'" + (folder / "display").string() + "'";
        return runShell("rm -f " + fifo + "; mkfifo " + fifo +
                        "; Xvfb -displayfd 3 -screen 0 640x480x24 -nolisten tcp -noreset 3>" +
                        fifo + " >/dev/null 2>&1 & server=$!; read number <" + fifo +
                        "; DISPLAY=:$number TAVI_DOCUMENTS_DIR='" + folder.path().string() + "' " +
                        test::tavi() + " " + arguments +
                        "; status=$?; kill $server; wait $server; exit $status");
    }

    fs::path takeOf(const Outcome& outcome) {
        std::string path = outcome.out;
        path.erase(path.find_last_not_of('\n') + 1);
        return path;
    }

    PipeWireTestServer server;
    FakeMicrophone microphone{"mic", "Test Microphone", {}};
    FakeCamera camera{"cam", "Test Camera", {FakeMode{}}};
    TemporaryFolder folder;
    FfmpegMediaLibrary media{nullptr};
};

/// Waits until the session manager knows both.
bool hasBoth(const Outcome& sources) {
    return sources.out.find("microphone  Test Microphone") != std::string::npos &&
           sources.out.find("camera  Test Camera") != std::string::npos;
}

/// Periods of a tone a second, by its rises from well below to well above zero, and
/// its loudest sample.
struct Tone {
    double frequency = 0;
    float peak = 0;
    double seconds = 0;
    double begin = 0;   ///< When it is first heard, seconds.
    double longest = 0; ///< Of the silences after that, seconds.
};

Tone toneOf(MediaLibrary& media, const fs::path& file) {
    const auto asset = media.openAsset(file);
    if (!asset || asset->audioTracks.empty()) {
        return {};
    }
    auto reader = media.makeAudioReader(*asset, asset->audioTracks.front());
    std::vector<float> sound;
    const auto channels = static_cast<std::size_t>(asset->audioTracks.front().channels);
    while (const auto sample = (*reader)->copyNextSample()) {
        for (std::size_t i = 0; i < sample->buffer->samples.size(); i += channels) {
            sound.push_back(sample->buffer->samples[i]);
        }
    }
    Tone tone;
    constexpr float kClear = 0.1F;
    int rises = 0;
    const double rate = asset->audioTracks.front().sampleRate;
    bool isLow = false;
    std::size_t lastClear = 0;
    for (std::size_t i = 0; i < sound.size(); ++i) {
        rises += isLow && sound[i] > kClear;
        isLow = sound[i] < -kClear || (isLow && sound[i] <= kClear);
        tone.peak = std::max(tone.peak, std::abs(sound[i]));
        if (std::abs(sound[i]) > kClear) {
            const double silence = static_cast<double>(i - lastClear) / rate;
            (lastClear == 0 ? tone.begin : tone.longest) =
                lastClear == 0 ? silence : std::max(tone.longest, silence);
            lastClear = i;
        }
    }
    tone.seconds = static_cast<double>(sound.size()) / rate;
    tone.frequency = rises / (tone.seconds - tone.begin);
    return tone;
}

/// Heard from `begin` at the latest to the end of a take of that many seconds.
void expectTone(const Tone& tone, double seconds, double begin) {
    EXPECT_NEAR(tone.seconds, seconds, 0.5);
    EXPECT_NEAR(tone.frequency, 440, 4);
    EXPECT_GT(tone.peak, 0.3F);
    EXPECT_LT(tone.begin, begin);
    EXPECT_LT(tone.longest, 0.01);
}

TEST_F(TakeWithDevices, holdsSoundAndCamera) {
    ASSERT_TRUE(waitFor([this] { return hasBoth(tavi("sources")); }));
    const Outcome recorded = tavi("record --mic 'Test Microphone' --camera default --duration 3");
    ASSERT_EQ(recorded.status, 0) << recorded.err;
    const fs::path take = takeOf(recorded);
    // The microphone is opened anew in the camera's session.
    expectTone(toneOf(media, take / "video.mov"), 3, 1);
    const auto film = media.openAsset(take / "camera.mov");
    ASSERT_TRUE(film) << film.error().description();
    EXPECT_EQ(film->videoTracks.front().naturalSize, (Size{640, 480}));
    EXPECT_NEAR(film->duration.seconds(), 3, 1);
    const std::string metadata = readFile(take / "metadata.json");
    EXPECT_THAT(metadata, HasSubstr("\"hasAudioRecording\":true"));
    EXPECT_THAT(metadata, HasSubstr("\"hasCameraRecording\":true"));
    EXPECT_THAT(metadata, HasSubstr("\"cameraStartDelay\":"));
}

TEST_F(TakeWithDevices, microphoneAloneSoundsToo) {
    ASSERT_TRUE(waitFor([this] { return hasBoth(tavi("sources")); }));
    const Outcome recorded = tavi("record --mic default --duration 2");
    ASSERT_EQ(recorded.status, 0) << recorded.err;
    expectTone(toneOf(media, takeOf(recorded) / "video.mov"), 2, 0.3);
    EXPECT_FALSE(fs::exists(takeOf(recorded) / "camera.mov"));
}

TEST_F(TakeWithDevices, unknownNameIsToldBeforeAnythingIsRecorded) {
    const Outcome outcome = tavi("record --mic nobody --duration 1");
    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(outcome.err, HasSubstr("There is no microphone \"nobody\""));
    EXPECT_FALSE(fs::exists(folder / "Tavlin"));
}

} // namespace
} // namespace tavi::test
