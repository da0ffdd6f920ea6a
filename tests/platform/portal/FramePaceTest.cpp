#include "platform/portal/FramePace.h"

#include <gtest/gtest.h>

namespace tavi {
namespace {

constexpr std::int64_t kMillisecond = 1'000'000;
constexpr MediaTime kInterval{1, 60};
constexpr std::int64_t kSixtieth = 16'666'667; // rounded up

TEST(FramePace, firstPictureIsAdmittedWithItsOwnTime) {
    FramePace pace(kInterval);
    EXPECT_EQ(pace.admit(5, 1000), 5);
}

TEST(FramePace, pictureThatComesTooEarlyWaitsForItsTurn) {
    FramePace pace(kInterval);
    pace.admit(0, 0);
    EXPECT_EQ(pace.admit(7 * kMillisecond, 7 * kMillisecond), std::nullopt);
    EXPECT_EQ(pace.nextTurn(), kSixtieth);
    EXPECT_EQ(pace.admit(7 * kMillisecond, pace.nextTurn()), kSixtieth);
}

TEST(FramePace, pictureAfterSilenceKeepsItsTime) {
    FramePace pace(kInterval);
    pace.admit(0, 0);
    EXPECT_EQ(pace.admit(900 * kMillisecond, 901 * kMillisecond), 900 * kMillisecond);
}

TEST(FramePace, sixtyTremblingPicturesASecondAreAllAdmittedAnIntervalApart) {
    FramePace pace(kInterval);
    std::int64_t last = -kSixtieth;
    for (int i = 0; i < 600; ++i) {
        const std::int64_t now = i * kSixtieth + (i % 3 - 1) * 1'900'000 + 2 * kMillisecond;
        const auto time = pace.admit(now, now);
        ASSERT_TRUE(time) << "picture " << i;
        ASSERT_GE(*time - last, kSixtieth) << "picture " << i;
        ASSERT_LE(std::abs(*time - now), 5 * kMillisecond) << "picture " << i;
        last = *time;
    }
}

TEST(FramePace, fasterPicturesAreThinnedToSixtyASecond) {
    FramePace pace(kInterval);
    int admitted = 0;
    std::int64_t last = -kSixtieth;
    for (std::int64_t now = 0; now < 1000 * kMillisecond; now += 7 * kMillisecond) {
        if (const auto time = pace.admit(now, now)) {
            ASSERT_GE(*time - last, kSixtieth);
            last = *time;
            ++admitted;
        }
    }
    EXPECT_GE(admitted, 45);
    EXPECT_LE(admitted, 60);
}

} // namespace
} // namespace tavi
