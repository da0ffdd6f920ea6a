#include "base/MediaTime.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace tavi {

TEST(MediaTime, secondsAreRoundedToTheNearestUnitHalvesAwayFromZero) {
    EXPECT_EQ(MediaTime::fromSeconds(1.0 / 1200).value, 1);
    EXPECT_EQ(MediaTime::fromSeconds(-1.0 / 1200).value, -1);
    EXPECT_EQ(MediaTime::fromSeconds(0.49 / 600).value, 0);
    EXPECT_EQ(MediaTime::fromSeconds(5.5).value, 3300);
    EXPECT_EQ(MediaTime::fromSeconds(5.5).timescale, 600);
}

TEST(MediaTime, valuesBeyondItsRangeAreLimitedAndNanIsZero) {
    EXPECT_EQ(MediaTime::fromSeconds(1e300).value, std::numeric_limits<std::int64_t>::max());
    EXPECT_EQ(MediaTime::fromSeconds(-INFINITY).value, std::numeric_limits<std::int64_t>::min());
    EXPECT_EQ(MediaTime::fromSeconds(NAN).value, 0);
}

TEST(MediaTime, equalMomentsOfDifferentTimescalesAreEqual) {
    EXPECT_EQ((MediaTime{1, 2}), (MediaTime{300, 600}));
    EXPECT_LT((MediaTime{1, 3}), (MediaTime{1, 2}));
    EXPECT_GT((MediaTime{std::numeric_limits<std::int64_t>::max(), 1}),
              (MediaTime{std::numeric_limits<std::int64_t>::max(), 1'000'000'000}));
}

TEST(MediaTime, sumsTakeTheFinerTimescale) {
    const MediaTime sum = MediaTime{1, 2} + MediaTime{1, 600};
    EXPECT_EQ(sum.value, 301);
    EXPECT_EQ(sum.timescale, 600);
    const MediaTime difference = MediaTime{1, 2} - MediaTime{1, 1'000'000'000};
    EXPECT_EQ(difference.value, 499'999'999);
}

TEST(MediaTime, rescalingRoundsHalvesAwayFromZero) {
    EXPECT_EQ((MediaTime{1, 2}.rescaled(1).value), 1);
    EXPECT_EQ((MediaTime{-1, 2}.rescaled(1).value), -1);
    EXPECT_EQ((MediaTime{1, 3}.rescaled(600).value), 200);
}

TEST(MediaTimeRange, endIsStartPlusDuration) {
    const MediaTimeRange range{{600, 600}, {300, 600}};
    EXPECT_EQ(range.end(), (MediaTime{3, 2}));
}

} // namespace tavi
