#include "project/Camera.h"

#include <gtest/gtest.h>

#include <cmath>
#include <random>

namespace tavi {
namespace {

constexpr Size kVideo{1920, 1080};
constexpr double kAspect = 16.0 / 9.0;
constexpr Rect kFullFrame{0, 0, 1920, 1080};

struct EaseCase {
    EasingType easing;
    double t;
    double expected;
};

class Ease : public testing::TestWithParam<EaseCase> {};

TEST_P(Ease, matchesItsCurve) {
    const auto [easing, t, expected] = GetParam();
    EXPECT_NEAR(ease(easing, t), expected, 1e-12);
}

INSTANTIATE_TEST_SUITE_P(
    Curves, Ease,
    testing::Values(EaseCase{EasingType::linear, 0.3, 0.3}, EaseCase{EasingType::linear, -1, 0},
                    EaseCase{EasingType::linear, 2, 1}, EaseCase{EasingType::easeIn, 0.5, 0.125},
                    EaseCase{EasingType::easeOut, 0.5, 0.875},
                    EaseCase{EasingType::easeInOut, 0.5, 0.5},
                    EaseCase{EasingType::easeInOut, 0.25, 0.103515625},
                    EaseCase{EasingType::spring, 0, 0}, EaseCase{EasingType::spring, 1, 1}));

TEST(Ease, theSpringOvershootsToItsPeakAndSettles) {
    double peak = 0;
    for (double t = 0; t <= 1; t += 0.001) {
        peak = std::max(peak, ease(EasingType::spring, t));
    }
    EXPECT_NEAR(peak, 1.036, 0.001);
    EXPECT_NEAR(ease(EasingType::spring, 0.47), peak, 0.001);
}

ZoomKeyframe keyframe(double start, double end, double ramp, Rect rect = {480, 270, 960, 540}) {
    ZoomKeyframe k;
    k.timestamp = start;
    k.endTime = end;
    k.transitionDuration = ramp;
    k.rect = rect;
    return k;
}

Rect camera(const std::vector<ZoomKeyframe>& keyframes, double t) {
    return evaluateCamera(keyframes, t, kVideo, kAspect);
}

TEST(EvaluateCamera, withoutAnActiveKeyframeItIsExactlyTheFullFrame) {
    EXPECT_EQ(camera({}, 1), kFullFrame);
    EXPECT_EQ(camera({keyframe(1, 2, 0.3)}, 0.999), kFullFrame);
    EXPECT_EQ(camera({keyframe(1, 2, 0.3)}, 2.001), kFullFrame);
}

TEST(EvaluateCamera, theFullFrameKeepsTheVideosAspectWhateverTheCropAspect) {
    EXPECT_EQ(evaluateCamera({}, 1, kVideo, 1.0), kFullFrame);
}

TEST(EvaluateCamera, startsAtTheFullFrameWithEveryEasing) {
    for (int easing = 0; easing < 5; ++easing) {
        auto k = keyframe(1, 5, 0.5);
        k.easingType = static_cast<EasingType>(easing);
        EXPECT_EQ(camera({k}, 1), kFullFrame) << easing;
    }
}

TEST(EvaluateCamera, rampsThatWouldOverlapMeetInTheMiddle) {
    const auto k = keyframe(0, 1, 0.8);
    EXPECT_NEAR(camera({k}, 0.5).width, 960, 1e-9);
    EXPECT_GT(camera({k}, 0.49).width, 960);
    EXPECT_GT(camera({k}, 0.51).width, 960);
    EXPECT_NEAR(camera({k}, 1).width, 1920, 1e-9);
}

TEST(EvaluateCamera, bothEndsOfTheHoldBelongToIt) {
    auto k = keyframe(0, 4, 1);
    k.easingType = EasingType::spring; // passes 1 just before the end of the ramp
    const Rect hold{480, 270, 960, 540};
    EXPECT_EQ(camera({k}, 1), hold);
    EXPECT_EQ(camera({k}, 3), hold);
}

TEST(EvaluateCamera, ofTwoTouchingKeyframesTheEarlierAppliesAtTheSeam) {
    const auto first = keyframe(0, 2, 0, {0, 0, 960, 540});
    const auto second = keyframe(2, 4, 0, {960, 540, 960, 540});
    EXPECT_EQ(camera({second, first}, 2), (Rect{0, 0, 960, 540}));
    EXPECT_EQ(camera({second, first}, 2.001), (Rect{960, 540, 960, 540}));
}

TEST(EvaluateCamera, ofEqualTimestampsTheFirstStoredWins) {
    const auto first = keyframe(0, 2, 0, {0, 0, 960, 540});
    const auto second = keyframe(0, 2, 0, {960, 540, 960, 540});
    EXPECT_EQ(camera({first, second}, 1), (Rect{0, 0, 960, 540}));
}

TEST(EvaluateCamera, withoutRampsItSnapsInAndOut) {
    const auto k = keyframe(1, 2, 0);
    EXPECT_EQ(camera({k}, 1).width, 960);
    EXPECT_EQ(camera({k}, 2).width, 960);
}

TEST(EvaluateCamera, aKeyframeWithoutAnEndNeverMatches) {
    ZoomKeyframe k = keyframe(0, 2, 0);
    k.endTime = ZoomKeyframe::kNoEndTime;
    EXPECT_EQ(camera({k}, 0), kFullFrame);
}

TEST(EvaluateCamera, theEntryFollowsTheMovingTargetAndTheExitIsFrozen) {
    auto k = keyframe(0, 4, 1);
    k.easingType = EasingType::linear;
    k.zoomCurve = {{Uuid::make(), 0, 2}, {Uuid::make(), 4, 4}};
    EXPECT_NEAR(camera({k}, 0.5).width, 1920 / (1 + (2.25 - 1) * 0.5), 1e-9);
    EXPECT_NEAR(camera({k}, 3.5).width, 1920 / (3.5 + (1 - 3.5) * 0.5), 1e-9);
}

TEST(EvaluateCamera, theCropIsHeldInsideOnTheLowSideEvenForACentreOutside) {
    const auto k = keyframe(0, 2, 0, {-5000, -5000, 960, 540});
    EXPECT_EQ(camera({k}, 1), (Rect{0, 0, 960, 540}));
    const auto far = keyframe(0, 2, 0, {5000, 5000, 960, 540});
    EXPECT_EQ(camera({far}, 1), (Rect{960, 540, 960, 540}));
}

TEST(EvaluateCamera, aCropTallerThanTheVideoSitsOnTheBottom) {
    const auto k = keyframe(0, 2, 0, {0, 0, 1920, 1080});
    const Rect crop = evaluateCamera(std::vector{k}, 1, kVideo, 1.0);
    EXPECT_EQ(crop, (Rect{0, 0, 1920, 1920}));
}

TEST(EvaluateCamera, zoomNeverFallsBelowOne) {
    auto k = keyframe(0, 2, 0);
    k.zoomCurve = {{Uuid::make(), 0, 0.25}};
    EXPECT_EQ(camera({k}, 1), kFullFrame);
}

TEST(Center, passesTheWaypointsWithASoftStartAndEndOnEveryLeg) {
    auto k = keyframe(0, 10, 1, {0, 0, 200, 200});
    k.waypoints = {{2, 500, 500}, {6, 900, 100}};
    EXPECT_EQ(center(k, 0), (Point{100, 100}));
    EXPECT_EQ(center(k, 1), (Point{300, 300}));
    EXPECT_EQ(center(k, 2), (Point{500, 500}));
    EXPECT_EQ(center(k, 4), (Point{700, 300}));
    EXPECT_EQ(center(k, 9), (Point{900, 100}));
    EXPECT_NEAR(center(k, 3).x, 500 + 400 * smootherstep(0.25), 1e-9);
}

TEST(Center, aFirstWaypointAtTheStartIsTakenAtOnce) {
    auto k = keyframe(2, 10, 1);
    k.waypoints = {{2, 5, 6}};
    EXPECT_EQ(center(k, 2), (Point{5, 6}));
    EXPECT_EQ(center(k, 1), (Point{5, 6}));
}

TEST(Center, unsortedWaypointsWithoutAPairGiveTheBase) {
    auto k = keyframe(0, 10, 1);
    k.waypoints = {{4, 0, 0}, {2, 1, 1}, {3, 2, 2}, {9, 3, 3}};
    EXPECT_EQ(center(k, 5), (Point{2 + (3 - 2) * smootherstep((5.0 - 3) / 6),
                                   2 + (3 - 2) * smootherstep((5.0 - 3) / 6)}));
    k.waypoints = {{4, 0, 0}, {9, 1, 1}, {8, 2, 2}, {20, 3, 3}};
    EXPECT_NE(center(k, 5), k.rect.center());
}

TEST(ZoomLevel, aCurveOutOfOrderEvaluatesAsIfSortedAndStaysAsStored) {
    auto k = keyframe(0, 10, 1);
    k.zoomCurve = {{Uuid::make(), 6, 4}, {Uuid::make(), 2, 2}};
    const auto stored = k.zoomCurve;
    EXPECT_EQ(zoomLevel(k, 4, 1920), 3);
    EXPECT_EQ(zoomLevel(k, 1, 1920), 2);
    EXPECT_EQ(zoomLevel(k, 7, 1920), 4);
    EXPECT_EQ(k.zoomCurve, stored);
}

TEST(ZoomLevel, aSinglePointIsAConstant) {
    auto k = keyframe(0, 10, 1);
    k.zoomCurve = {{Uuid::make(), 5, 2.5}};
    for (const double t : {0.0, 5.0, 10.0}) {
        EXPECT_EQ(zoomLevel(k, t, 1920), 2.5);
    }
}

TEST(ZoomLevel, aRectWithoutWidthIsZoomOne) {
    EXPECT_EQ(zoomLevel(keyframe(0, 1, 0, {0, 0, 0, 0}), 0, 1920), 1);
    EXPECT_EQ(zoomLevel(keyframe(0, 1, 0, {0, 0, -5, 0}), 0, 1920), 1);
    EXPECT_EQ(zoomLevel(keyframe(0, 1, 0, {0, 0, 960, 0}), 0, 1920), 2);
}

TEST(EvaluateCamera, aPathBeyondTheRangeOfDoublesEndsAtTheVideosEdge) {
    auto k = keyframe(0, 4, 1, {1e308, -1e308, 960, 540});
    k.waypoints = {{0, -1e308, 1e308}, {2, 1e308, -1e308}, {4, -1e308, 1e308}};
    for (const double t : {0.0, 0.5, 1.0, 2.0, 2.5, 3.0, 3.5, 4.0}) {
        const Rect crop = camera({k}, t);
        EXPECT_TRUE(crop.x >= 0 && crop.maxX() <= kVideo.width) << t;
        EXPECT_TRUE(crop.y >= 0 && crop.maxY() <= kVideo.height) << t;
    }
}

TEST(EvaluateCamera, cropsOfRandomKeyframesHaveTheAspectAndStayOnTheLowSide) {
    std::mt19937 random(5);
    std::uniform_real_distribution<double> unit(0, 1);
    for (int round = 0; round < 5000; ++round) {
        auto k = keyframe(0, 1 + unit(random) * 5, unit(random) * 2,
                          {unit(random) * 3000 - 500, unit(random) * 2000 - 500,
                           unit(random) * 1900, unit(random) * 1000});
        k.easingType = static_cast<EasingType>(random() % 5);
        const double t = unit(random) * k.endTime;
        const Rect crop = camera({k}, t);
        ASSERT_GE(crop.x, 0);
        ASSERT_GE(crop.y, 0);
        ASSERT_LE(crop.maxX(), kVideo.width + 1e-9);
        ASSERT_LE(crop.maxY(), kVideo.height + 1e-9);
        ASSERT_NEAR(crop.width / crop.height, kAspect, 1e-9);
    }
}

} // namespace
} // namespace tavi
