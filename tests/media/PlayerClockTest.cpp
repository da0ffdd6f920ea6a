#include "media/PlayerClock.h"

#include <gtest/gtest.h>

namespace tavi {
namespace {

constexpr MediaTime kStart{5'000'000'000, MediaTime::kNanoseconds};

TEST(PlayerClock, standsWhereItWasPut) {
    const PlayerClock clock = PlayerClock::standing({7, 600});
    EXPECT_FALSE(clock.isMoving());
    EXPECT_EQ(clock.at({0, 600}), (MediaTime{7, 600}));
    EXPECT_EQ(clock.at({1000, 1}), (MediaTime{7, 600}));
}

TEST(PlayerClock, movesFromItsTickOn) {
    const PlayerClock clock{1, {2, 1}, kStart};
    EXPECT_EQ(clock.at({0, 1}), (MediaTime{2, 1})) << "before the tick it stands";
    EXPECT_EQ(clock.at(kStart), (MediaTime{2, 1}));
    EXPECT_EQ(clock.at(kStart + MediaTime{1, 1'000'000'000}),
              (MediaTime{2'000'000'001, 1'000'000'000}));
    EXPECT_EQ(clock.at(kStart + MediaTime{3, 1}), (MediaTime{5, 1}));
}

TEST(PlayerClock, tellsWhenATimeIsReached) {
    const PlayerClock clock{1, {2, 1}, kStart};
    EXPECT_EQ(clock.hostTimeOf({5, 2}), kStart + (MediaTime{1, 2}));
    EXPECT_EQ(clock.hostTimeOf({1, 1}), kStart) << "what it has passed already";
}

struct RateCase {
    double rate;
    MediaTime after;
    MediaTime moved;
};

class PlayerClockRates : public testing::TestWithParam<RateCase> {};

TEST_P(PlayerClockRates, scaleTheWay) {
    const auto [rate, after, moved] = GetParam();
    const PlayerClock clock{rate, {1, 1}, kStart};
    EXPECT_EQ(clock.at(kStart + after), (MediaTime{1, 1}) + moved);
    EXPECT_EQ(clock.hostTimeOf((MediaTime{1, 1}) + moved), kStart + after);
}

INSTANTIATE_TEST_SUITE_P(Rates, PlayerClockRates,
                         testing::Values(RateCase{0.5, {4, 1}, {2, 1}},
                                         RateCase{1, {7, 50}, {7, 50}},
                                         RateCase{2, {3, 1}, {6, 1}}));

} // namespace
} // namespace tavi
