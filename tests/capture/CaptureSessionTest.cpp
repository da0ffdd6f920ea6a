#include "capture/CaptureSession.h"

#include <gtest/gtest.h>

namespace tavi {
namespace {

struct RecommendationCase {
    AudioSampleFormat format;
    int channels;
    int sampleRate;
};

class RecommendedMovieAudio : public testing::TestWithParam<RecommendationCase> {};

TEST_P(RecommendedMovieAudio, keepsOneOrTwoChannelsAndTheUsualRates) {
    const AudioSettings settings = recommendedMovieAudio(GetParam().format);
    EXPECT_EQ(settings.channels, GetParam().channels);
    EXPECT_EQ(settings.sampleRate, GetParam().sampleRate);
    EXPECT_EQ(settings.bitRate, 128'000);
    EXPECT_TRUE(settings.realTime);
}

INSTANTIATE_TEST_SUITE_P(Formats, RecommendedMovieAudio,
                         testing::Values(RecommendationCase{{16, 1, 48000}, 1, 48000},
                                         RecommendationCase{{24, 2, 44100}, 2, 44100},
                                         RecommendationCase{{16, 1, 16000}, 1, 48000},
                                         RecommendationCase{{32, 2, 96000}, 2, 48000},
                                         RecommendationCase{{32, 6, 48000}, 2, 48000},
                                         RecommendationCase{{}, 1, 48000}));

TEST(CaptureDeviceError, namesTheDevice) {
    const CaptureDeviceError error{CaptureDeviceError::Kind::gone, "Lid Camera"};
    EXPECT_EQ(error.description(),
              "\"Lid Camera\" is not there; plug it in or choose another one.");
    EXPECT_EQ((CaptureDeviceError{CaptureDeviceError::Kind::gone, ""}.description()),
              "The device is not there; plug it in or choose another one.");
}

TEST(CaptureDeviceError, tellsADeviceThatIsSilentFromOneThatNobodyConnects) {
    using Kind = CaptureDeviceError::Kind;
    EXPECT_EQ((CaptureDeviceError{Kind::silent, "Desk"}.description()),
              "\"Desk\" sends nothing; see that it is switched on, or plug it in again.");
    EXPECT_EQ((CaptureDeviceError{Kind::unconnected, "Desk"}.description()),
              "\"Desk\" is not connected by the system; see that WirePlumber, or another session "
              "manager of PipeWire, runs.");
}

} // namespace
} // namespace tavi
