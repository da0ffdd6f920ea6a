#include "cursor/CursorSmoothing.h"

#include <gtest/gtest.h>

#include <cmath>

namespace tavi {
namespace {

using enum CursorEventType;
constexpr double kHeight = 1000;
constexpr CursorSmoothingPreset kPresets[]{
    CursorSmoothingPreset::none, CursorSmoothingPreset::slow, CursorSmoothingPreset::medium,
    CursorSmoothingPreset::fast, CursorSmoothingPreset::rapid};

CursorEvent at(double time, double x, double y, CursorEventType type = move) {
    return {time, x, y, type, 0, {}, {}};
}

std::vector<SmoothedCursorSample>
smooth(const std::vector<CursorEvent>& events,
       CursorSmoothingPreset preset = CursorSmoothingPreset::medium) {
    return smoothCursorEvents(events, preset, kHeight);
}

TEST(CursorSmoothing, anEmptyLogYieldsNoSamplesForEveryPreset) {
    for (const auto preset : kPresets) {
        EXPECT_TRUE(smooth({}, preset).empty());
    }
}

TEST(CursorSmoothing, oneEventYieldsItsFlippedPositionForEveryPreset) {
    for (const auto preset : kPresets) {
        const std::vector<SmoothedCursorSample> expected{{2.5, 30, 960}};
        EXPECT_EQ(smooth({at(2.5, 30, 40)}, preset), expected);
    }
}

TEST(CursorSmoothing, thePresetNoneFlipsAndNothingElse) {
    const auto samples =
        smooth({at(0, 1, 2), at(0.1, 3, 4), at(0.2, 5, 6)}, CursorSmoothingPreset::none);
    const std::vector<SmoothedCursorSample> expected{{0, 1, 998}, {0.1, 3, 996}, {0.2, 5, 994}};
    EXPECT_EQ(samples, expected);
}

TEST(CursorSmoothing, aClickStandsExactlyOnTheRealPosition) {
    for (const auto type : {leftClick, rightClick}) {
        const auto samples =
            smooth({at(0, 0, 0), at(0.016, 123.456, 77.7, type), at(0.032, 500, 900)});
        EXPECT_EQ(samples[1].x, 123.456);
        EXPECT_EQ(samples[1].y, kHeight - 77.7);
    }
}

TEST(CursorSmoothing, nothingButClicksAnchors) {
    for (const auto type : {move, scroll, leftMouseDown, leftMouseUp, keyDown}) {
        const auto samples = smooth({at(0, 0, 0), at(0.016, 100, 0, type), at(0.032, 500, 900)});
        EXPECT_NE(samples[1].x, 100) << static_cast<int>(type);
    }
}

TEST(CursorSmoothing, aClickTakesTheVelocityAway) {
    // After the click the spring starts from rest towards the next event, in the
    // forward run; the backward run is the same with and without what precedes.
    const auto rushing = smooth({at(0, 0, 0), at(0.1, 900, 0, rightClick), at(0.15, 905, 0)});
    const auto resting = smooth({at(0.1, 900, 0, rightClick), at(0.15, 905, 0)});
    EXPECT_EQ(rushing[2], resting[1]);
}

TEST(CursorSmoothing, aSecondOrMoreBetweenEventsIsNotIntegratedAcross) {
    const auto samples = smooth({at(0, 0, 0), at(1.0, 700, 300)});
    const std::vector<SmoothedCursorSample> expected{{0, 0, 1000}, {1.0, 700, 700}};
    EXPECT_EQ(samples, expected);
    EXPECT_EQ(smooth({at(0, 0, 0), at(4, 700, 300)})[1].x, 700);
}

TEST(CursorSmoothing, justUnderASecondIsIntegrated) {
    const double under = std::nextafter(1.0, 0);
    const auto samples = smooth({at(0, 0, 0), at(under, 700, 300)});
    EXPECT_NE(samples[0].x, 0);
    EXPECT_NE(samples[1].x, 700);
    EXPECT_NEAR(samples[1].x, 700, 1); // a second is long for the spring
}

TEST(CursorSmoothing, theStepsOfAGapAreThoseOfTheSemiImplicitScheme) {
    // A gap of 2.5 ms is three steps. The backward run starts at the second point.
    const auto samples = smooth({at(0, 0, kHeight), at(0.0025, 90, kHeight)});
    const double h = 0.0025 / 3;
    double s = 0;
    double v = 0;
    for (int i = 0; i < 3; ++i) {
        const double a = (170.0 * (90 - s) - 26.0 * v) / 1.5;
        v += h * a;
        s += h * v;
    }
    EXPECT_NEAR(samples[1].x, 0.5 * (s + 90), 1e-12);
    EXPECT_NEAR(samples[0].x, 0.5 * (0 + (90 - s)), 1e-12);
}

TEST(CursorSmoothing, equalTimestampsResetBothRuns) {
    const auto samples = smooth({at(0, 0, 0), at(0.1, 50, 0), at(0.1, 80, 0), at(0.2, 100, 0)});
    // The pair cuts the log in two: each half is as if it stood alone.
    const auto before = smooth({at(0, 0, 0), at(0.1, 50, 0)});
    const auto after = smooth({at(0.1, 80, 0), at(0.2, 100, 0)});
    EXPECT_EQ(samples[0], before[0]);
    EXPECT_EQ(samples[1], before[1]);
    EXPECT_EQ(samples[2], after[0]);
    EXPECT_EQ(samples[3], after[1]);
}

TEST(CursorSmoothing, aTimestampRunningBackwardsResets) {
    const auto samples = smooth({at(0, 0, 0), at(0.1, 50, 0), at(0.05, 80, 0), at(0.15, 99, 0)});
    const auto before = smooth({at(0, 0, 0), at(0.1, 50, 0)});
    const auto after = smooth({at(0.05, 80, 0), at(0.15, 99, 0)});
    EXPECT_EQ(samples[1], before[1]);
    EXPECT_EQ(samples[2], after[0]);
}

TEST(CursorSmoothing, theLogIsNotSorted) {
    const auto samples = smooth({at(5, 1, 1), at(4, 2, 2), at(3, 3, 3)});
    ASSERT_EQ(samples.size(), 3u);
    EXPECT_EQ(samples[0].timestamp, 5);
    EXPECT_EQ(samples[2].timestamp, 3);
}

TEST(CursorSmoothing, firstAndLastSampleAreTheMeansOfTheTwoRuns) {
    const auto samples = smooth({at(0, 0, kHeight), at(0.05, 100, kHeight)});
    EXPECT_GT(samples[0].x, 0);
    EXPECT_LT(samples[0].x, 50);
    EXPECT_GT(samples[1].x, 50);
    EXPECT_LT(samples[1].x, 100);
    // By symmetry of the two runs.
    EXPECT_NEAR(samples[0].x + samples[1].x, 100, 1e-12);
}

TEST(CursorSmoothing, aStifferPresetStaysNearerToTheLog) {
    std::vector<CursorEvent> log;
    for (int i = 0; i < 60; ++i) {
        log.push_back(at(i * 0.016, i < 30 ? 0 : 100, 0));
    }
    double last = 1e9;
    for (const auto preset : {CursorSmoothingPreset::slow, CursorSmoothingPreset::medium,
                              CursorSmoothingPreset::fast, CursorSmoothingPreset::rapid}) {
        double error = 0;
        const auto samples = smooth(log, preset);
        for (std::size_t i = 0; i < log.size(); ++i) {
            error += std::abs(samples[i].x - log[i].x);
        }
        EXPECT_LT(error, last);
        last = error;
    }
}

} // namespace
} // namespace tavi
