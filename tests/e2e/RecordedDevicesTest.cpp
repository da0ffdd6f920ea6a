#include "capture/CursorImageBytes.h"
#include "capture/TakeRecorder.h"
#include "fakes/FakeTakeSurroundings.h"
#include "platform/ffmpeg/FfmpegImageFiles.h"
#include "platform/ffmpeg/FfmpegMediaLibrary.h"
#include "project/RecordingMetadataJson.h"
#include "render/YuvConverter.h"

#include <gmock/gmock.h>

#include <cmath>
#include <numbers>

namespace tavi {
namespace {

using testing::IsEmpty;
using testing::SizeIs;

constexpr double kZero = 1000; ///< Host seconds of the screen's first frame.
constexpr double kLength = 2;  ///< Seconds of a take.
constexpr int kRate = 48000;
constexpr int kPieceLength = 960; ///< Moments of sound in a sample.
constexpr Size kScreenSize{320, 180};

/// A burst around `kBurst` seconds after time zero, and silence.
constexpr double kBurst = 1.25;

float soundAt(double time) {
    constexpr double kHalfWidth = 0.01;
    const double x = (time - kBurst) / kHalfWidth;
    if (std::abs(x) >= 1) {
        return 0;
    }
    const double window = 0.5 + 0.5 * std::cos(std::numbers::pi * x);
    return static_cast<float>(0.8 * window *
                              std::sin(2 * std::numbers::pi * 1000 * (time - kBurst)));
}

PixelBufferPtr greyPicture(Size size, int shade) {
    auto image =
        std::make_shared<PixelBuffer>(static_cast<int>(size.width), static_cast<int>(size.height));
    for (int y = 0; y < image->height(); ++y) {
        std::fill_n(image->row(y), image->width() * PixelBuffer::kBytesPerPixel,
                    static_cast<std::uint8_t>(shade));
        for (int x = 0; x < image->width(); ++x) {
            image->row(y)[x * PixelBuffer::kBytesPerPixel + 3] = 255;
        }
    }
    return image;
}

/// Takes whose screen, camera and microphone are the test's, and whose files are real ones.
class RecordedDevicesTest : public testing::Test, protected FakeTakeSurroundings {
protected:
    RecordedDevicesTest() {
        pointer.arrow = {cursorImageBytes(PixelBuffer(2, 2), 0, 0), {0, 0}, {2, 2}};
        pointer.current = pointer.arrow;
        sessions.recommendation = recommendedMovieAudio({16, 1, kRate});
    }

    void warmUp() {
        devices.microphone = kFakeMicrophone;
        devices.audioWarmUpService = std::make_unique<AudioCaptureService>(sessions);
        ASSERT_TRUE(devices.audioWarmUpService->startWarmUp(kFakeMicrophone));
        sendSound(-1, -0.9);
        ASSERT_EQ(devices.audioWarmUpService->state(), AudioCaptureService::State::ready);
    }

    Result<void, CaptureError> start() { return recorder.start(display, library.path(), devices); }

    /// The sound of a stretch of time, in seconds after time zero.
    void sendSound(double from, double to) {
        const auto pieces = std::lround((to - from) * kRate / kPieceLength);
        for (long piece = 0; piece < pieces; ++piece) {
            const double begin = from + static_cast<double>(piece * kPieceLength) / kRate;
            auto sound = std::make_shared<AudioBuffer>(AudioBuffer{kRate, 1, {}});
            for (int i = 0; i < kPieceLength; ++i) {
                sound->samples.push_back(soundAt(begin + static_cast<double>(i) / kRate));
            }
            CaptureSample sample;
            sample.presentationTime =
                MediaTime::fromSeconds(kZero + begin, MediaTime::kNanoseconds);
            sample.sound = sound;
            sample.format = AudioSampleFormat{16, 1, kRate};
            sessions.send(sample);
        }
        sessions.settle();
    }

    void sendFrame(double time) {
        clock.setHostTime(kZero + time);
        ScreenSample sample;
        sample.presentationTime = clock.hostTime();
        sample.image = greyPicture(kScreenSize, 60);
        screen.send(sample);
        screen.settle();
    }

    void sendCameraPicture(double time, int shade) {
        clock.setHostTime(kZero + time);
        CaptureSample sample;
        sample.kind = CaptureSampleKind::picture;
        sample.presentationTime = clock.hostTime();
        sample.image = greyPicture(sessions.pictureSize, shade);
        sessions.send(sample);
        sessions.settle();
    }

    void stop() {
        clock.setHostTime(kZero + kLength);
        folder = recorder.stop().value();
    }

    Asset opened(const char* name) { return media.openAsset(folder / name).value(); }

    /// When, in seconds, the energy of a file's sound has its centre.
    double burstIn(const char* name) {
        const Asset asset = opened(name);
        const auto reader = media.makeAudioReader(asset, asset.audioTracks.at(0)).value();
        double energy = 0;
        double moment = 0;
        while (const auto sample = reader->copyNextSample()) {
            const auto& [rate, channels, samples] = *sample->buffer;
            for (std::size_t i = 0; i < samples.size(); i += static_cast<std::size_t>(channels)) {
                const double power = samples[i] * samples[i];
                const double offset = static_cast<double>(i) / channels / rate;
                energy += power;
                moment += power * (sample->presentationTime.seconds() + offset);
            }
        }
        return moment / energy;
    }

    const Display display{3, "test", 320, 180, {0, 0, 320, 180}, true};
    FfmpegMediaLibrary media{std::make_shared<YuvConverter>()};
    FfmpegImageFiles images;
    FakeCaptureSessions sessions;
    TakeRecorder recorder{ports(media, images, sessions)};
    std::filesystem::path folder;
};

TEST_F(RecordedDevicesTest, soundOfTheMicrophoneLiesAtItsTimeInTheScreensFile) {
    warmUp();
    ASSERT_TRUE(start());
    sendSound(-0.5, 0); // before time zero: not in the file
    sendFrame(0);
    sendSound(0, kLength);
    sendFrame(1);
    stop();
    const Asset video = opened("video.mov");
    EXPECT_THAT(video.videoTracks, SizeIs(1));
    ASSERT_THAT(video.audioTracks, SizeIs(1));
    EXPECT_EQ(video.audioTracks[0].sampleRate, kRate);
    EXPECT_EQ(video.audioTracks[0].channels, 1);
    EXPECT_NEAR(video.duration.seconds(), kLength, 0.03);
    EXPECT_NEAR(burstIn("video.mov"), kBurst, 0.001);
}

TEST_F(RecordedDevicesTest, cameraHasAFileOfItsOwnAndItsMicrophoneTheScreens) {
    warmUp();
    devices.camera = kFakeCamera;
    ASSERT_TRUE(start());
    sendFrame(0);
    sendSound(0, 0.5);
    for (int i = 0; i < 8; ++i) {
        sendCameraPicture(0.5 + 0.1 * i, 100 + 10 * i);
    }
    sendSound(0.5, kLength);
    stop();
    const Asset video = opened("video.mov");
    ASSERT_THAT(video.audioTracks, SizeIs(1));
    EXPECT_NEAR(burstIn("video.mov"), kBurst, 0.001);

    const Asset camera = opened("camera.mov");
    EXPECT_THAT(camera.audioTracks, IsEmpty());
    ASSERT_THAT(camera.videoTracks, SizeIs(1));
    EXPECT_EQ(camera.videoTracks[0].naturalSize, (Size{640, 480}));
    const auto reader =
        media.makeVideoReader(camera, camera.videoTracks[0], {{0, 1}, camera.duration}).value();
    int pictures = 0;
    for (; const auto sample = reader->copyNextSample(); ++pictures) {
        EXPECT_NEAR(sample->presentationTime.seconds(), 0.1 * pictures, 0.001);
        EXPECT_NEAR(sample->image->row(240)[4 * 320], 100 + 10 * pictures, 3);
    }
    EXPECT_EQ(pictures, 8);

    const auto metadata = decodeRecordingMetadata(test::readFile(folder / "metadata.json")).value();
    EXPECT_DOUBLE_EQ(metadata.cameraStartDelay, 0.5);
    EXPECT_TRUE(metadata.hasCameraRecording);
    EXPECT_TRUE(metadata.hasAudioRecording);
}

TEST_F(RecordedDevicesTest, microphoneThatIsUnpluggedLeavesSilenceAndComesBackInTime) {
    warmUp();
    ASSERT_TRUE(start());
    sendFrame(0);
    sendSound(0, 0.3);
    sendSound(1.0, kLength); // as if away in between
    stop();
    EXPECT_NEAR(burstIn("video.mov"), kBurst, 0.001);
    EXPECT_NEAR(opened("video.mov").duration.seconds(), kLength, 0.03);
}

TEST_F(RecordedDevicesTest, microphoneThatSaysNothingDuringTheTakeLeavesAVideo) {
    warmUp();
    ASSERT_TRUE(start());
    sendFrame(0);
    stop();
    EXPECT_EQ(recorder.failure(), std::nullopt);
    EXPECT_THAT(opened("video.mov").videoTracks, SizeIs(1));
    EXPECT_NEAR(opened("video.mov").duration.seconds(), kLength, 0.03);
}

} // namespace
} // namespace tavi
