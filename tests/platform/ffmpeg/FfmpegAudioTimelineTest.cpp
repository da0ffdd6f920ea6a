#include "platform/ffmpeg/FfmpegAudioTimeline.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace tavi {

namespace {

AudioBuffer piece(int frames, int sampleRate = 44100, int channels = 1) {
    return {sampleRate, channels, std::vector<float>(static_cast<std::size_t>(frames * channels))};
}

MediaTime nanoseconds(double seconds) {
    return MediaTime::fromNanoseconds(std::llround(seconds * 1e9));
}

} // namespace

TEST(FfmpegAudioTimeline, theFirstPieceStandsExactlyWhereItsTimeSays) {
    for (const bool isLive : {false, true}) {
        FfmpegAudioTimeline timeline(44100, isLive);
        EXPECT_EQ(timeline.end(), 0);
        const auto placed = timeline.place(piece(1000), {15, 1000});
        ASSERT_TRUE(placed);
        EXPECT_TRUE(placed->isNewStretch);
        EXPECT_EQ(placed->start, 662); // 661.5
        EXPECT_EQ(placed->cut, 0);
        EXPECT_EQ(timeline.end(), 1662);
    }
}

TEST(FfmpegAudioTimeline, piecesThatTouchAreOneStretch) {
    FfmpegAudioTimeline timeline(44100, false);
    const AudioBuffer buffer = piece(1024, 48000);
    for (int n = 0; n < 200'000; ++n) { // More than an hour.
        const auto placed = timeline.place(buffer, {n * std::int64_t{1024}, 48000});
        ASSERT_TRUE(placed);
        ASSERT_EQ(placed->isNewStretch, n == 0) << n;
        ASSERT_EQ(placed->stretch, 0);
    }
    EXPECT_EQ(timeline.end(), std::llround(200'000.0 * 1024 * 44100 / 48000));
}

TEST(FfmpegAudioTimeline, timesOfACoarseClockRoundAway) {
    FfmpegAudioTimeline timeline(44100, false);
    for (int n = 0; n < 10'000; ++n) { // Times in ticks of 1/90000 s.
        const MediaTime time = MediaTime{n * std::int64_t{1024}, 44100}.rescaled(90000);
        const auto placed = timeline.place(piece(1024), time);
        ASSERT_TRUE(placed);
        ASSERT_EQ(placed->isNewStretch, n == 0) << n;
    }
}

TEST(FfmpegAudioTimeline, aGapOfTwoMomentsIsAGap) {
    FfmpegAudioTimeline timeline(44100, false);
    ASSERT_TRUE(timeline.place(piece(1000), {0, 1}));
    const auto placed = timeline.place(piece(1000), {1002, 44100});
    ASSERT_TRUE(placed);
    EXPECT_TRUE(placed->isNewStretch);
    EXPECT_EQ(placed->start, 1002);
    EXPECT_EQ(timeline.end(), 2002);
}

TEST(FfmpegAudioTimeline, overlapIsCutAtTheFrontInTheSourcesFrames) {
    FfmpegAudioTimeline timeline(44100, false);
    ASSERT_TRUE(timeline.place(piece(44100), {0, 1}));
    const auto placed = timeline.place(piece(96000, 96000), {1, 2});
    ASSERT_TRUE(placed);
    EXPECT_TRUE(placed->isNewStretch);
    EXPECT_EQ(placed->start, 44100);
    EXPECT_EQ(placed->cut, 48000);
    EXPECT_EQ(timeline.end(), 66150);
    EXPECT_FALSE(timeline.place(piece(4410), {1, 1}));
    EXPECT_EQ(timeline.end(), 66150);
}

TEST(FfmpegAudioTimeline, aTimeThatCanNotBeMeantIsRefused) {
    FfmpegAudioTimeline timeline(44100, false);
    EXPECT_FALSE(timeline.place(piece(1000), {1'000'000, 1}));
    EXPECT_FALSE(timeline.place(piece(1000), {-1'000'000, 1}));
    EXPECT_FALSE(timeline.place(piece(1000), {std::numeric_limits<std::int64_t>::max(), 1}));
    EXPECT_TRUE(timeline.place(piece(1000), {1, 1}));
}

TEST(FfmpegAudioTimeline, whatLiesBeforeTheStartIsCut) {
    FfmpegAudioTimeline timeline(48000, true);
    EXPECT_FALSE(timeline.place(piece(480, 48000), {-10, 1000}));
    const auto placed = timeline.place(piece(480, 48000), {-4, 1000});
    ASSERT_TRUE(placed);
    EXPECT_EQ(placed->start, 0);
    EXPECT_EQ(placed->cut, 192);
}

TEST(FfmpegAudioTimeline, aLiveSourceMayTremble) {
    FfmpegAudioTimeline timeline(48000, true);
    double least = 1;
    double most = -1;
    for (int n = 0; n < 60'000; ++n) { // 10 minutes of 10 ms each.
        const double jitter = (n * 7919 % 31 - 15) * 1e-3;
        const auto placed =
            timeline.place(piece(480, 48000), nanoseconds(1 + n * 0.01 + (n ? jitter : 0.0)));
        ASSERT_TRUE(placed);
        ASSERT_EQ(placed->isNewStretch, n == 0) << n;
        const double error = static_cast<double>(timeline.end()) / 48000 - (1 + (n + 1) * 0.01);
        least = std::min(least, error);
        most = std::max(most, error);
    }
    EXPECT_GT(least, -0.002);
    EXPECT_LT(most, 0.002);
}

TEST(FfmpegAudioTimeline, aLiveClockThatIsNotOursIsFollowedUnheard) {
    for (const double skew : {-300e-6, 300e-6}) {
        FfmpegAudioTimeline timeline(48000, true);
        for (int n = 0; n < 360'000; ++n) { // An hour.
            const double time = n * 0.01 * (1 + skew);
            const auto placed = timeline.place(piece(480, 48000), nanoseconds(time));
            ASSERT_TRUE(placed);
            ASSERT_EQ(placed->isNewStretch, n == 0) << n;
            ASSERT_LE(std::abs(placed->stretch), 96);
            const double error =
                static_cast<double>(timeline.end()) / 48000 - (n + 1) * 0.01 * (1 + skew);
            ASSERT_LT(std::abs(error), 0.004) << n;
        }
    }
}

TEST(FfmpegAudioTimeline, aPauseOfALiveSourceIsSilence) {
    FfmpegAudioTimeline timeline(48000, true);
    ASSERT_TRUE(timeline.place(piece(480, 48000), {0, 1}));
    const auto placed = timeline.place(piece(480, 48000), {50, 1000});
    ASSERT_TRUE(placed);
    EXPECT_TRUE(placed->isNewStretch);
    EXPECT_EQ(placed->start, 2400);
}

TEST(FfmpegAudioTimeline, soundOfAnotherKindIsAnotherStretch) {
    FfmpegAudioTimeline timeline(48000, true);
    ASSERT_TRUE(timeline.place(piece(480, 48000), {0, 1}));
    const auto placed = timeline.place(piece(441, 44100, 2), {15, 1000});
    ASSERT_TRUE(placed);
    EXPECT_TRUE(placed->isNewStretch);
    EXPECT_EQ(placed->start, 480); // 5 ms away: no hole for that.
    EXPECT_EQ(timeline.end(), 960);
}

} // namespace tavi
