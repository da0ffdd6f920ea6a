#include "autozoom/Events.h"

#include <gtest/gtest.h>

#include <cmath>

namespace tavi::UnifiedAutoZoom {
namespace {

using enum CursorEventType;
using test::eventAt;
using test::fullHd;

std::vector<ActivitySegment> detect(const std::vector<CursorEvent>& events, double a = 0.5) {
    return detectActivity(events, fullHd(a));
}

struct ThresholdCase {
    double Thresholds::*quantity;
    double calm;   ///< At aggressiveness 0.
    double middle; ///< At 0.5.
    double eager;  ///< At 1.
};

TEST(Thresholds, followTheAggressiveness) {
    const ThresholdCase cases[] = {
        {&Thresholds::activityGap, 2.5, 1.85, 1.2},
        {&Thresholds::mergeGap, 3.0, 2.25, 1.5},
        {&Thresholds::zoomFactor, 1.3, 2.15, 3.0},
        {&Thresholds::leadIn, 0.8, 0.6, 0.4},
        {&Thresholds::tail, 1.5, 1.15, 0.8},
        {&Thresholds::minWaypointInterval, 0.6, 0.45, 0.3},
    };
    for (const ThresholdCase& c : cases) {
        EXPECT_DOUBLE_EQ(Thresholds(0).*c.quantity, c.calm);
        EXPECT_DOUBLE_EQ(Thresholds(0.5).*c.quantity, c.middle);
        EXPECT_DOUBLE_EQ(Thresholds(1).*c.quantity, c.eager);
    }
}

TEST(DetectActivity, anEmptyLogHasNone) {
    EXPECT_TRUE(detect({}).empty());
}

TEST(DetectActivity, movesAndReleasesAreNoActivity) {
    EXPECT_TRUE(detect({eventAt(1, 5, 5, move), eventAt(2, 5, 5, leftMouseUp)}).empty());
}

TEST(DetectActivity, movesDoNotBridgeAPause) {
    EXPECT_EQ(
        detect({eventAt(1, 5, 5, rightClick), eventAt(2, 5, 5, move), eventAt(3, 5, 5, rightClick)})
            .size(),
        2u);
}

TEST(DetectActivity, positionsAreScaledAndFlipped) {
    Inputs inputs = fullHd(0.5);
    inputs.scale = 2;
    const auto segments = detectActivity(std::vector{eventAt(1, 100, 40, leftClick)}, inputs);
    const std::vector<ActivitySegment> expected{{1, 1, 200, 1000}};
    EXPECT_EQ(segments, expected);
}

TEST(DetectActivity, twoClicksOneSecondApartMakeOneSegment) {
    const auto segments =
        detect({eventAt(4, 300, 80, leftMouseDown), eventAt(5, 300, 80, leftMouseDown)});
    const std::vector<ActivitySegment> expected{{4, 5, 300, 1000}};
    EXPECT_EQ(segments, expected);
}

TEST(DetectActivity, twoClicksTwoSecondsApartMakeTwoSegments) {
    EXPECT_EQ(detect({eventAt(4, 300, 80, leftMouseDown), eventAt(6, 300, 80, leftMouseDown)}),
              (std::vector<ActivitySegment>{{4, 4, 300, 1000}, {6, 6, 300, 1000}}));
}

TEST(DetectActivity, aPauseOfExactlyTheGapDoesNotEndABurst) {
    const auto burst = [](double pause) {
        return detect({eventAt(0, 0, 0, scroll), eventAt(pause, 0, 0, scroll)}, 0).size();
    };
    EXPECT_EQ(burst(2.5), 1u);
    EXPECT_EQ(burst(std::nextafter(2.5, 3)), 2u);
}

TEST(DetectActivity, theLastRunIsKept) {
    const auto segments = detect(
        {eventAt(0, 0, 80, scroll), eventAt(9, 10, 80, scroll), eventAt(9.5, 20, 80, scroll)});
    const std::vector<ActivitySegment> expected{{0, 0, 0, 1000}, {9, 9.5, 15, 1000}};
    EXPECT_EQ(segments, expected);
}

TEST(SummarizeActivity, anEmptyRunHasNoResult) {
    EXPECT_FALSE(summarizeActivity({}));
}

TEST(SummarizeActivity, aRunOfNoWeightHasNoResult) {
    EXPECT_FALSE(summarizeActivity(std::vector<InteractionEvent>{{0, 5, 5, move}}));
}

TEST(SummarizeActivity, pressesWeighThreeTimesAScrollOrAKey) {
    for (const auto heavy : {leftClick, rightClick, leftMouseDown}) {
        for (const auto light : {scroll, keyDown}) {
            const auto segment = summarizeActivity(
                std::vector<InteractionEvent>{{1, 100, 20, heavy}, {2, 200, 60, light}});
            ASSERT_TRUE(segment);
            EXPECT_EQ(*segment, (ActivitySegment{1, 2, 125, 30}));
        }
    }
}

/// `count` keys at `x`, `pause` seconds apart, from `start` on.
void type(std::vector<InteractionEvent>& run, int count, double start, double pause, double x) {
    for (int i = 0; i < count; ++i) {
        run.push_back({start + i * pause, x + i, 0, keyDown});
    }
}

TEST(SummarizeActivity, tenKeysAndAClickWeighTenToThree) {
    std::vector<InteractionEvent> run;
    for (int i = 0; i < 10; ++i) {
        run.push_back({i * 0.1, 1300, 130, keyDown});
    }
    run.push_back({1.5, 0, 260, leftClick});
    const auto segment = summarizeActivity(run);
    ASSERT_TRUE(segment);
    EXPECT_EQ(*segment, (ActivitySegment{0, 1.5, (10 * 1300.0 + 3 * 0.0) / 13,
                                         (10 * 130.0 + 3 * 260.0) / 13}));
}

TEST(SummarizeActivity, aTypingRunCountsWhereItsFirstKeyFell) {
    std::vector<InteractionEvent> run;
    type(run, 4, 0, 0.2, 100); // at 100, 101, 102, 103
    EXPECT_EQ(summarizeActivity(run)->focalX, 100);
}

TEST(SummarizeActivity, twoKeysCountEachAtTheirOwnPosition) {
    std::vector<InteractionEvent> run{{0, 100, 10, keyDown}, {0.1, 200, 30, keyDown}};
    EXPECT_EQ(*summarizeActivity(run), (ActivitySegment{0, 0.1, 150, 20}));
}

TEST(SummarizeActivity, aPauseOfExactlyTheTypingPauseKeepsTheRunTogether) {
    const auto focus = [](double pause) {
        return summarizeActivity(std::vector<InteractionEvent>{{0, 0, 0, keyDown},
                                                               {0, 30, 0, keyDown},
                                                               {pause, 60, 0, keyDown}})
            ->focalX;
    };
    EXPECT_EQ(focus(0.8), 0);                     // three keys: all at the first
    EXPECT_EQ(focus(std::nextafter(0.8, 1)), 30); // two and one: each at its own
}

TEST(SummarizeActivity, aPauseSplitsTypingIntoRunsOfTheirOwn) {
    std::vector<InteractionEvent> run;
    type(run, 3, 0, 0.1, 0);     // a run at 0, weight 3
    type(run, 2, 1.5, 0.1, 600); // two single keys at 600 and 601
    type(run, 3, 3, 0.1, 900);   // a run at 900, weight 3
    EXPECT_DOUBLE_EQ(summarizeActivity(run)->focalX, (3 * 0.0 + 600 + 601 + 3 * 900.0) / 8);
}

TEST(SummarizeActivity, otherEventsBetweenKeysDoNotEndATypingRun) {
    const std::vector<InteractionEvent> run{
        {0, 0, 0, keyDown}, {0.1, 700, 0, scroll}, {0.2, 50, 0, keyDown}, {0.3, 60, 0, keyDown}};
    EXPECT_EQ(summarizeActivity(run)->focalX, 700.0 / 4);
}

} // namespace
} // namespace tavi::UnifiedAutoZoom
