#include "cursor/SpringIntegrator.h"

#include "support/RandomLog.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

namespace tavi {
namespace {

constexpr SpringConstants kSprings[]{
    {3.0, 20.0, 80.0}, {1.5, 26.0, 170.0}, {1.0, 34.0, 300.0}, {0.6, 44.0, 500.0}};

TEST(SpringSteps, aStretchIsCutAtEveryMillisecondBegun) {
    EXPECT_EQ(springSteps(0.0004), 1);
    EXPECT_EQ(springSteps(0.001), 1);
    EXPECT_EQ(springSteps(std::nextafter(0.001, 1)), 2);
    EXPECT_EQ(springSteps(0.0165), 17);
    EXPECT_EQ(springSteps(std::nextafter(1.0, 0)), 1000);
    EXPECT_EQ(springSteps(std::numeric_limits<double>::denorm_min()), 1);
}

TEST(SpringSteps, theQuotientIsFormedInDoubles) {
    // 0.003 / 0.001 is a hair above or at 3 only as the doubles have it.
    EXPECT_EQ(springSteps(0.003), static_cast<int>(std::ceil(0.003 / 0.001)));
    EXPECT_EQ(springSteps(0.009), static_cast<int>(std::ceil(0.009 / 0.001)));
}

TEST(IntegrateSpring, oneStepMovesThePositionByTheNewVelocity) {
    SpringState state{10, 2};
    integrateSpring(state, 20, 0.001, {2, 4, 100});
    const double acceleration = (100.0 * (20 - 10) - 4.0 * 2) / 2;
    EXPECT_EQ(state.velocity, 2 + 0.001 * acceleration);
    EXPECT_EQ(state.position, 10 + 0.001 * state.velocity);
}

TEST(IntegrateSpring, theStepsOfAStretchAreEqual) {
    SpringState whole{0, 0};
    integrateSpring(whole, 1, 0.0025, kSprings[1]);
    SpringState parts{0, 0};
    const double h = 0.0025 / 3;
    for (int i = 0; i < 3; ++i) {
        integrateSpring(parts, 1, h, kSprings[1]);
    }
    EXPECT_EQ(whole.position, parts.position);
    EXPECT_EQ(whole.velocity, parts.velocity);
}

TEST(IntegrateSpring, aMassAtRestOnItsTargetStays) {
    SpringState state{37.25, 0};
    integrateSpring(state, 37.25, 0.9, kSprings[0]);
    EXPECT_EQ(state.position, 37.25);
    EXPECT_EQ(state.velocity, 0);
}

TEST(SpringPropagator, aMassAtRestOnItsTargetStays) {
    SpringState state{37.25, 0};
    SpringPropagator(0.9, kSprings[0]).apply(state, 37.25);
    EXPECT_EQ(state.position, 37.25);
    EXPECT_EQ(state.velocity, 0);
}

// The largest difference found over 200,000 seeds is 3.2e-14 of the distance to
// cover for the position and 4.6e-14 for the velocity.
TEST(SpringPropagator, agreesWithTheStepsOneAfterTheOther) {
    double position = 0;
    double velocity = 0;
    for (std::uint64_t seed = 0; seed < test::seedCount(); ++seed) {
        test::RandomValues random(seed);
        const SpringConstants& spring = kSprings[random.index(4)];
        const double gap = random.chance(0.1)   ? std::nextafter(1.0, 0)
                           : random.chance(0.5) ? random.between(1e-9, 0.05)
                                                : random.between(1e-6, 1);
        const double target = random.between(-2000, 2000);
        SpringState plain{random.between(-2000, 2000), random.between(-5000, 5000)};
        SpringState fast = plain;
        integrateSpring(plain, target, gap, spring);
        SpringPropagator(gap, spring).apply(fast, target);
        position = std::max(position, std::abs(plain.position - fast.position) / 2000);
        velocity = std::max(velocity, std::abs(plain.velocity - fast.velocity) / 5000);
    }
    RecordProperty("position", std::to_string(position * 1e15) + "e-15");
    RecordProperty("velocity", std::to_string(velocity * 1e15) + "e-15");
    EXPECT_LT(position, 1e-13);
    EXPECT_LT(velocity, 1e-13);
}

} // namespace
} // namespace tavi
