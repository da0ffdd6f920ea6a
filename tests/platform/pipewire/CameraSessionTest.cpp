#include "platform/pipewire/DeviceCapture.h"
#include "platform/pipewire/FakeDevices.h"
#include "platform/pipewire/SessionRig.h"

#include <algorithm>
#include <cstdlib>

namespace tavi {
namespace {

using test::camera;
using test::FakeCamera;
using test::FakeMode;
using test::PipeWireTestServer;
using test::SessionRig;
using ErrorKind = CaptureDeviceError::Kind;

/// Largest difference of a channel between a pixel and 0xRRGGBB; 255 when it isn't opaque.
int difference(const PixelBuffer& image, int x, int y, std::uint32_t colour) {
    const std::uint8_t* pixel = image.row(y) + x * 4;
    int largest = pixel[3] == 255 ? 0 : 255;
    for (int channel = 0; channel < 3; ++channel) {
        largest = std::max(
            largest, std::abs(pixel[channel] - static_cast<int>(colour >> (8 * channel) & 255)));
    }
    return largest;
}

class CameraFormats : public testing::TestWithParam<FakeMode> {};

TEST_P(CameraFormats, comeAsPicturesWithTheirColours) {
    const FakeMode mode = GetParam();
    const PipeWireTestServer server;
    const FakeCamera fake("cam", "Fake", {mode});
    SessionRig rig;
    ASSERT_NO_FATAL_FAILURE(rig.add(camera("cam")));
    EXPECT_EQ(rig.pictureSize(), (Size{1.0 * mode.width, 1.0 * mode.height}));
    rig.session().startRunning();
    ASSERT_TRUE(rig.waitForCount(3));
    rig.session().stopRunning();
    const auto all = rig.samples();
    for (const auto& sample : all) {
        ASSERT_TRUE(sample.isValid && sample.image);
        EXPECT_EQ(sample.kind, CaptureSampleKind::picture);
        ASSERT_EQ(sample.image->width(), mode.width);
        ASSERT_EQ(sample.image->height(), mode.height);
        // What 8-bit samples of brightness and colour, and a good JPEG, can't keep.
        constexpr int kLoss = 3;
        for (const int y : {1, mode.height / 2, mode.height - 2}) {
            EXPECT_LE(difference(*sample.image, 4, y, FakeCamera::kLeft), kLoss);
            EXPECT_LE(difference(*sample.image, mode.width / 2 - 12, y, FakeCamera::kLeft), kLoss);
            EXPECT_LE(difference(*sample.image, mode.width / 2 + 12, y, FakeCamera::kRight), kLoss);
            EXPECT_LE(difference(*sample.image, mode.width - 4, y, FakeCamera::kRight), kLoss);
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Device, CameraFormats,
                         testing::Values(FakeMode{SPA_VIDEO_FORMAT_BGRx, 640, 480, 30},
                                         FakeMode{SPA_VIDEO_FORMAT_BGRA, 320, 240, 30},
                                         FakeMode{SPA_VIDEO_FORMAT_RGBx, 320, 240, 30},
                                         FakeMode{SPA_VIDEO_FORMAT_YUY2, 640, 480, 30},
                                         FakeMode{SPA_VIDEO_FORMAT_UYVY, 320, 240, 30},
                                         FakeMode{SPA_VIDEO_FORMAT_NV12, 1280, 720, 30},
                                         FakeMode{SPA_VIDEO_FORMAT_I420, 640, 360, 25},
                                         FakeMode{SPA_VIDEO_FORMAT_ENCODED, 1280, 720, 30}));

TEST(CameraSession, pictureTimesAreThoseOfTheCamera) {
    const PipeWireTestServer server;
    const FakeCamera fake("cam", "Fake", {{SPA_VIDEO_FORMAT_YUY2, 640, 480, 30}});
    SessionRig rig;
    ASSERT_NO_FATAL_FAILURE(rig.add(camera("cam")));
    const std::int64_t before = hostNanoseconds();
    rig.session().startRunning();
    ASSERT_TRUE(rig.waitForCount(60));
    rig.session().stopRunning();
    const auto all = rig.samples();
    EXPECT_GT(all.front().presentationTime.value, before);
    EXPECT_LE(all.back().presentationTime.value, fake.lastPicture());
    for (std::size_t i = 1; i < all.size(); ++i) {
        EXPECT_GT(all[i].presentationTime, all[i - 1].presentationTime);
    }
    // A machine that can't keep up leaves pictures out; it adds none.
    EXPECT_LE(static_cast<int>(all.size()), fake.pictures());
}

TEST(CameraSession, takesTheModeNearestToTheMediumSize) {
    const PipeWireTestServer server;
    const FakeCamera fake("cam", "Fake",
                          {{SPA_VIDEO_FORMAT_ENCODED, 1920, 1080, 30},
                           {SPA_VIDEO_FORMAT_ENCODED, 640, 480, 30},
                           {SPA_VIDEO_FORMAT_YUY2, 640, 480, 30},
                           {SPA_VIDEO_FORMAT_YUY2, 640, 480, 10},
                           {SPA_VIDEO_FORMAT_YUY2, 320, 240, 30}});
    SessionRig rig;
    ASSERT_NO_FATAL_FAILURE(rig.add(camera("cam")));
    EXPECT_EQ(rig.pictureSize(), (Size{640, 480}));
    rig.session().startRunning();
    ASSERT_TRUE(rig.waitForCount(10));
    EXPECT_EQ(rig.samples().front().image->width(), 640);
}

TEST(CameraSession, mirroredPicturesAreTurnedLeftToRight) {
    const PipeWireTestServer server;
    const FakeCamera fake("cam", "Fake", {{}});
    SessionRig rig;
    EXPECT_FALSE(rig.session().setVideoMirrored(true)) << "there is no output";
    ASSERT_NO_FATAL_FAILURE(rig.add(camera("cam")));
    EXPECT_TRUE(rig.session().setVideoMirrored(true));
    rig.session().startRunning();
    ASSERT_TRUE(rig.waitForCount(2));
    const auto picture = rig.samples().front().image;
    EXPECT_EQ(difference(*picture, 0, 10, FakeCamera::kRight), 0);
    EXPECT_EQ(difference(*picture, 319, 10, FakeCamera::kRight), 0);
    EXPECT_EQ(difference(*picture, 320, 10, FakeCamera::kLeft), 0);
    EXPECT_EQ(difference(*picture, 639, 10, FakeCamera::kLeft), 0);
}

TEST(CameraSession, unpluggedCameraContinuesAtItsSizeOnly) {
    const PipeWireTestServer server;
    auto fake = std::make_unique<FakeCamera>("cam", "Fake", std::vector<FakeMode>{{}});
    SessionRig rig;
    ASSERT_NO_FATAL_FAILURE(rig.add(camera("cam")));
    rig.session().startRunning();
    ASSERT_TRUE(rig.waitForCount(5));
    fake.reset();
    ASSERT_TRUE(rig.waitForInterruption(ErrorKind::gone));
    const auto before = rig.samples();
    rig.clear();
    fake = std::make_unique<FakeCamera>(
        "cam", "Fake", std::vector<FakeMode>{{SPA_VIDEO_FORMAT_BGRx, 1280, 720, 30}});
    ASSERT_TRUE(rig.waitForInterruption(ErrorKind::unsupportedFormat));
    fake.reset();
    ASSERT_TRUE(rig.waitForInterruption(ErrorKind::gone));
    EXPECT_EQ(rig.count(), 0U);
    fake = std::make_unique<FakeCamera>(
        "cam", "Fake", std::vector<FakeMode>{{SPA_VIDEO_FORMAT_YUY2, 640, 480, 30}});
    ASSERT_TRUE(rig.waitForCount(5));
    EXPECT_EQ(rig.session().interruption(), std::nullopt);
    EXPECT_EQ(rig.samples().front().image->width(), 640);
    EXPECT_GT(rig.samples().front().presentationTime, before.back().presentationTime);
}

TEST(CameraSession, silentCameraIsTold) {
    const PipeWireTestServer server;
    FakeCamera fake("cam", "Fake", {{}});
    SessionRig rig;
    ASSERT_NO_FATAL_FAILURE(rig.add(camera("cam")));
    rig.session().startRunning();
    ASSERT_TRUE(rig.waitForCount(2));
    fake.freeze(true);
    ASSERT_TRUE(rig.waitForInterruption(ErrorKind::silent));
    rig.clear();
    fake.freeze(false);
    ASSERT_TRUE(rig.waitForCount(2));
    EXPECT_EQ(rig.session().interruption(), std::nullopt);
}

TEST(CameraSession, twoSessionsShareACamera) {
    const PipeWireTestServer server;
    const FakeCamera fake("cam", "Fake", {{}});
    SessionRig one;
    SessionRig two;
    ASSERT_NO_FATAL_FAILURE(one.add(camera("cam")));
    one.session().startRunning();
    ASSERT_TRUE(one.waitForCount(2));
    ASSERT_NO_FATAL_FAILURE(two.add(camera("cam")));
    two.session().startRunning();
    ASSERT_TRUE(two.waitForCount(2));
    one.clear();
    EXPECT_TRUE(one.waitForCount(2));
}

TEST(CameraSession, hasOneCameraAndOneMicrophoneAndTheirOutputs) {
    const PipeWireTestServer server;
    const FakeCamera fake("cam", "Fake", {{}});
    const test::FakeMicrophone voice("mic", "Voice", {});
    SessionRig rig;
    SessionRig other;
    EXPECT_FALSE(rig.session().canAddOutput(CaptureSampleKind::picture));
    ASSERT_NO_FATAL_FAILURE(rig.add(camera("cam")));
    EXPECT_FALSE(rig.session().canAddOutput(CaptureSampleKind::picture));
    EXPECT_FALSE(rig.session().canAddOutput(CaptureSampleKind::sound));
    EXPECT_FALSE(rig.session().canAddInput(**rig.session().makeDeviceInput(camera("cam"))));
    const auto foreign = other.session().makeDeviceInput(test::microphone("mic"));
    EXPECT_FALSE(rig.session().canAddInput(**foreign));
    ASSERT_NO_FATAL_FAILURE(rig.add(test::microphone("mic")));
    rig.session().startRunning();
    EXPECT_TRUE(test::waitFor([&] {
        const auto all = rig.samples();
        const auto isSound = [](const CaptureSample& s) {
            return s.kind == CaptureSampleKind::sound;
        };
        const auto sounds = std::ranges::count_if(all, isSound);
        return sounds > 5 && std::ssize(all) - sounds > 5;
    }));
}

} // namespace
} // namespace tavi
