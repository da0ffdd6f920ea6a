#include "platform/ffmpeg/KeyFrameSpacing.h"

#include "platform/ffmpeg/TestMedia.h"

#include <gtest/gtest.h>

#include <chrono>
#include <functional>
#include <string>
#include <thread>

namespace tavi {

namespace {

constexpr int kWidth = 1920;
constexpr int kHeight = 1080;
constexpr int kKeyBytes = 100'000;

/// Pictures of so many bytes from a key frame to where the next one is due; 1000 for never.
int picturesUntilDue(int bytes, int keyBytes = kKeyBytes, int width = kWidth,
                     int height = kHeight) {
    KeyFrameSpacing spacing(width, height);
    spacing.add(keyBytes, true);
    int count = 0;
    while (!spacing.isDue() && count < 1000) {
        spacing.add(bytes, false);
        ++count;
    }
    return count;
}

/// How many key frames a recording of a second has, 60 of these pictures.
int keyFramesOf(const std::string& name, const std::function<PixelBufferPtr(int)>& picture) {
    const auto path = testing::freshPath(name);
    const auto writer = testing::mediaLibrary().makeWriter(path, FileType::quickTimeMovie).value();
    VideoWriterInput* input = writer
                                  ->addVideoInput({VideoCodec::hevc, testing::kPictureWidth,
                                                   testing::kPictureHeight, 20'000'000, 60, true})
                                  .value();
    EXPECT_TRUE(writer->startWriting());
    writer->startSession({0, 1});
    for (int n = 0; n < 60; ++n) {
        while (!input->isReadyForMoreMediaData()) {
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
        EXPECT_TRUE(input->append(picture(n), {n, 60}));
    }
    EXPECT_TRUE(writer->finishWriting());
    return std::stoi(testing::outputOf("ffprobe -v error -select_streams v -show_entries "
                                       "packet=flags -of csv=p=0 " +
                                       path.string() + " | grep -c K"));
}

} // namespace

TEST(KeyFrameSpacing, nothingIsDueAtFirst) {
    EXPECT_FALSE(KeyFrameSpacing(kWidth, kHeight).isDue());
}

TEST(KeyFrameSpacing, aBusyScreenGetsThemCloser) {
    EXPECT_NEAR(picturesUntilDue(30'000), 12, 1);
    EXPECT_NEAR(picturesUntilDue(3'000), 28, 1);
    EXPECT_NEAR(picturesUntilDue(0), 33, 1);
}

TEST(KeyFrameSpacing, aKeyFrameStartsAnew) {
    KeyFrameSpacing spacing(kWidth, kHeight);
    spacing.add(2'000'000, false);
    EXPECT_TRUE(spacing.isDue());
    spacing.add(kKeyBytes, true);
    EXPECT_FALSE(spacing.isDue());
}

TEST(KeyFrameSpacing, theSizeOfPicturesCounts) {
    EXPECT_NEAR(picturesUntilDue(120'000, kKeyBytes, 2 * kWidth, 2 * kHeight),
                picturesUntilDue(30'000), 1);
}

TEST(KeyFrameSpacing, keyFramesNeverTakeMostOfTheBits) {
    const int noisy = 1'000'000;
    EXPECT_GE(picturesUntilDue(noisy, noisy), 2);
    EXPECT_GE(picturesUntilDue(100'000, noisy), 12);
}

TEST(KeyFrameSpacing, recordingsFollowIt) {
    const PixelBufferPtr still = testing::numbered(1);
    EXPECT_LE(keyFramesOf("still.mov", [&](int) { return still; }), 2);
    EXPECT_GE(keyFramesOf("noise.mov", [](int n) { return testing::noise(n); }), 5);
}

} // namespace tavi
