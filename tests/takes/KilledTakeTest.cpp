#include "base/Clock.h"
#include "platform/ffmpeg/FfmpegMediaLibrary.h"
#include "platform/x11/RecorderProcess.h"
#include "project/RecordingMetadataJson.h"
#include "support/Eventually.h"
#include "takes/Flasher.h"
#include "takes/TakeMedia.h"
#include "takes/TakeRig.h"

#include <gtest/gtest.h>

#include <csignal>

namespace tavi::test {
namespace {

/// Seconds of a file that may be written just now; 0 where nothing can be read.
double secondsOf(const std::filesystem::path& movie) {
    const auto asset = FfmpegMediaLibrary(nullptr).openAsset(movie);
    return asset ? asset->duration.seconds() : 0;
}

TEST(KilledTake, keepsScreenSoundAndCamera) {
    TakeRig rig;
    const FakeMicrophone microphone("mic", "Test Microphone", {});
    const FakeCamera camera("cam", "Test Camera", {FakeMode{}});
    ASSERT_TRUE(rig.isListed("microphone  Test Microphone"));
    ASSERT_TRUE(rig.isListed("camera  Test Camera"));
    Flasher flasher(rig.screen());
    RecorderProcess recorder(rig.screen().name(), {"--mic", "default", "--camera", "default"});
    ASSERT_TRUE(recorder.waitForFirstFrame()) << recorder.errors();
    const auto take = recorder.take();
    constexpr double kEnough = 2; // seconds
    ASSERT_TRUE(eventually([&] { return secondsOf(take / "camera.mov") > kEnough; }));
    ASSERT_TRUE(eventually([&] { return secondsOf(take / "video.mov") > kEnough; }));
    recorder.signal(SIGKILL);
    recorder.wait();
    const Date killed = SystemClock().now();
    flasher.stop();

    int status = -1;
    recorder.run("library", status);
    EXPECT_EQ(status, 0);
    const auto metadata = decodeRecordingMetadata(readFile(take / "metadata.json"));
    ASSERT_TRUE(metadata);
    EXPECT_TRUE(metadata->hasAudioRecording);
    EXPECT_TRUE(metadata->hasCameraRecording);
    const double film = secondsOf(take / "video.mov");
    const double sound = soundOf(take / "video.mov").seconds();
    const double face = secondsOf(take / "camera.mov");
    EXPECT_GT(film, kEnough);
    EXPECT_GT(sound, kEnough / 2) << "the microphone is opened anew with the camera";
    EXPECT_GT(face, kEnough);
    EXPECT_EQ(metadata->duration, film);
    const double length = killed.since(metadata->startDate);
    RecordProperty("lostOfSoundMs", static_cast<int>((length - sound) * 1000));
    RecordProperty("lostOfCameraMs",
                   static_cast<int>((length - metadata->cameraStartDelay - face) * 1000));
}

} // namespace
} // namespace tavi::test
