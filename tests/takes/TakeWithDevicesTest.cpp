#include "platform/ffmpeg/FfmpegMediaLibrary.h"
#include "takes/TakeMedia.h"
#include "takes/TakeRig.h"

#include <gmock/gmock.h>

namespace tavi::test {
namespace {

namespace fs = std::filesystem;

using testing::HasSubstr;

/// The recorder with a microphone that hears a tone and a camera that sees two colours.
class TakeWithDevices : public testing::Test {
protected:
    TakeWithDevices() {
        EXPECT_TRUE(rig.isListed("microphone  Test Microphone"));
        EXPECT_TRUE(rig.isListed("camera  Test Camera"));
    }

    TakeRig rig;
    FakeMicrophone microphone{"mic", "Test Microphone", {}};
    FakeCamera camera{"cam", "Test Camera", {FakeMode{}}};
};

/// Heard from `begin` at the latest to the end of a take of that many seconds.
void expectTone(const fs::path& video, double seconds, double begin) {
    const Sound sound = soundOf(video);
    const Tone tone = toneOf(sound);
    EXPECT_NEAR(sound.seconds(), seconds, 0.5);
    EXPECT_NEAR(tone.frequency, 440, 4);
    EXPECT_GT(tone.peak, 0.3F);
    EXPECT_LT(tone.begin, begin);
    EXPECT_LT(tone.longest, 0.01);
    EXPECT_LT(sound.seconds() - tone.end, 0.1);
}

TEST_F(TakeWithDevices, holdsSoundAndCamera) {
    const Outcome recorded =
        rig.tavi("record --mic 'Test Microphone' --camera default --duration 3");
    const fs::path take = takeOf(recorded);
    // The microphone is opened anew in the camera's session.
    expectTone(take / "video.mov", 3, 1);
    const auto film = FfmpegMediaLibrary(nullptr).openAsset(take / "camera.mov");
    ASSERT_TRUE(film) << film.error().description();
    EXPECT_EQ(film->videoTracks.front().naturalSize, (Size{640, 480}));
    EXPECT_NEAR(film->duration.seconds(), 3, 1);
    const std::string metadata = readFile(take / "metadata.json");
    EXPECT_THAT(metadata, HasSubstr("\"hasAudioRecording\":true"));
    EXPECT_THAT(metadata, HasSubstr("\"hasCameraRecording\":true"));
    EXPECT_THAT(metadata, HasSubstr("\"cameraStartDelay\":"));
}

TEST_F(TakeWithDevices, microphoneAloneSoundsToo) {
    const fs::path take = takeOf(rig.tavi("record --mic default --duration 2"));
    expectTone(take / "video.mov", 2, 0.3);
    EXPECT_FALSE(fs::exists(take / "camera.mov"));
}

TEST_F(TakeWithDevices, unknownNameIsToldBeforeAnythingIsRecorded) {
    const Outcome outcome = rig.tavi("record --mic nobody --duration 1");
    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(outcome.err, HasSubstr("There is no microphone \"nobody\""));
    EXPECT_FALSE(fs::exists(rig.home() / "Tavlin"));
}

} // namespace
} // namespace tavi::test
