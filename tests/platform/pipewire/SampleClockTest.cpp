#include "platform/pipewire/SampleClock.h"

#include <gtest/gtest.h>

#include <random>

namespace tavi {
namespace {

constexpr std::int64_t kMillisecond = 1'000'000;

TEST(SampleClock, firstStretchIsWhereItWasReported) {
    SampleClock clock(48000);
    EXPECT_EQ(clock.place(12345, 480), 12345);
}

TEST(SampleClock, tremblingReportsGiveEvenSteps) {
    std::mt19937 random(3); // fixed seed: the same reports at every run
    SampleClock clock(48000);
    std::int64_t last = clock.place(0, 960);
    for (int i = 1; i < 1000; ++i) {
        const std::int64_t trembling = static_cast<std::int64_t>(random() % 4000) * 1000;
        const std::int64_t placed = clock.place(i * 20 * kMillisecond + trembling, 960);
        EXPECT_NEAR(static_cast<double>(placed - last), 20e6, 0.05e6) << i;
        EXPECT_LT(std::abs(placed - i * 20 * kMillisecond), 5 * kMillisecond);
        last = placed;
    }
}

TEST(SampleClock, fasterOrSlowerDeviceIsFollowed) {
    for (const std::int64_t parts : {-300, 300}) {
        SampleClock clock(48000);
        std::int64_t reported = 0;
        std::int64_t placed = 0;
        for (int i = 0; i < 50'000; ++i) {
            placed = clock.place(reported, 960);
            reported += 20 * kMillisecond + 20 * parts; // parts per million
        }
        EXPECT_LT(std::abs(placed - (reported - 20 * kMillisecond - 20 * parts)), kMillisecond);
    }
}

TEST(SampleClock, lostSoundLeavesAGap) {
    SampleClock clock(48000);
    clock.place(0, 960);
    EXPECT_EQ(clock.place(100 * kMillisecond, 960), 100 * kMillisecond);
    EXPECT_EQ(clock.place(120 * kMillisecond, 960), 120 * kMillisecond);
}

TEST(SampleClock, growsEvenWhenReportsGoBack) {
    SampleClock clock(48000);
    std::int64_t last = clock.place(1'000 * kMillisecond, 48);
    for (int i = 0; i < 100; ++i) {
        const std::int64_t placed = clock.place(0, 48);
        EXPECT_GT(placed, last);
        last = placed;
    }
}

} // namespace
} // namespace tavi
