#include "ui/SpringMotion.h"

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>

namespace tavi {
namespace {

/// The same motion by many small steps of the defining equation.
SpringState integrate(SpringShape shape, SpringState state, double seconds) {
    const double w = 2 * std::numbers::pi / shape.response;
    const int steps = 200'000;
    const double h = seconds / steps;
    for (int i = 0; i < steps; ++i) {
        const auto force = [&](double x, double v) {
            return -w * w * x - 2 * shape.damping * w * v;
        };
        const double v = state.velocity + h / 2 * force(state.displacement, state.velocity);
        const double x = state.displacement + h / 2 * state.velocity;
        state.displacement += h * v;
        state.velocity += h * force(x, v);
    }
    return state;
}

class SpringMotion : public testing::TestWithParam<SpringShape> {};

TEST_P(SpringMotion, solvesItsEquation) {
    for (const double seconds : {0.01, 0.1, 0.37, 1.2}) {
        const SpringState exact = advance(GetParam(), {-1, 0.5}, seconds);
        const SpringState stepped = integrate(GetParam(), {-1, 0.5}, seconds);
        EXPECT_NEAR(exact.displacement, stepped.displacement, 1e-6) << seconds;
        EXPECT_NEAR(exact.velocity, stepped.velocity, 1e-5) << seconds;
    }
}

TEST_P(SpringMotion, isTheSameInOneStepAndInMany) {
    SpringState walked{1, 0};
    for (int i = 0; i < 60; ++i) {
        walked = advance(GetParam(), walked, 1 / 60.0);
    }
    EXPECT_NEAR(walked.displacement, advance(GetParam(), {1, 0}, 1).displacement, 1e-9);
}

TEST_P(SpringMotion, settlesForGood) {
    double seconds = 0;
    while (!isSettled(GetParam(), advance(GetParam(), {1, 0}, seconds), 0.001)) {
        seconds += 0.01;
    }
    ASSERT_LT(seconds, 10);
    for (double later = seconds; later < seconds + 2; later += 0.01) {
        EXPECT_LT(std::abs(advance(GetParam(), {1, 0}, later).displacement), 0.001);
    }
}

INSTANTIATE_TEST_SUITE_P(Shapes, SpringMotion,
                         testing::Values(SpringShape{0.25, 0.8}, SpringShape{0.3, 0.85},
                                         SpringShape{0.8, 0.68}, SpringShape{0.7, 0.8},
                                         SpringShape{0.5, 1}, SpringShape{0.5, 1.0000001},
                                         SpringShape{0.4, 1.6}));

TEST(SpringMotionWithoutDamping, swingsOnceAResponse) {
    EXPECT_NEAR(advance({0.8, 0}, {1, 0}, 0.8).displacement, 1, 1e-12);
    EXPECT_NEAR(advance({0.8, 0}, {1, 0}, 0.4).displacement, -1, 1e-12);
}

TEST(SpringMotionUnderdamped, overshootsByItsDamping) {
    // The first peak beyond the place of rest: exp(-pi z / sqrt(1 - z^2)).
    const double z = 0.68;
    const double peak = 0.8 / (2 * std::sqrt(1 - z * z));
    EXPECT_NEAR(advance({0.8, z}, {-1, 0}, peak).displacement,
                std::exp(-std::numbers::pi * z / std::sqrt(1 - z * z)), 1e-12);
}

} // namespace
} // namespace tavi
