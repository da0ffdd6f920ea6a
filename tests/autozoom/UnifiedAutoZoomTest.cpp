#include "autozoom/Events.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace tavi::UnifiedAutoZoom {
namespace {

using enum CursorEventType;
using test::eventAt;
using test::fullHd;

std::vector<ZoomKeyframe> generated(const std::vector<CursorEvent>& events, const Inputs& inputs) {
    return generate(events, inputs);
}

TEST(UnifiedAutoZoom, anEmptyLogMakesNoKeyframes) {
    EXPECT_TRUE(generated({}, fullHd(0.5)).empty());
}

TEST(UnifiedAutoZoom, onlyMovesMakeNoKeyframes) {
    EXPECT_TRUE(
        generated({eventAt(1, 5, 5, move), eventAt(1.1, 900, 5, move)}, fullHd(0.5)).empty());
}

TEST(UnifiedAutoZoom, aDurationThatIsNotPositiveMakesNoKeyframes) {
    Inputs inputs = fullHd(0.5);
    for (const double duration : {0.0, -1.0, std::numeric_limits<double>::quiet_NaN()}) {
        inputs.duration = duration;
        EXPECT_TRUE(generated({eventAt(1, 5, 5, leftClick)}, inputs).empty());
    }
}

TEST(UnifiedAutoZoom, aSingleClickMakesAKeyframe) {
    const auto keyframes = generated({eventAt(10, 960, 540, leftMouseDown)}, fullHd(0.5));
    ASSERT_EQ(keyframes.size(), 1u);
    EXPECT_DOUBLE_EQ(keyframes[0].timestamp, 9.4);
    EXPECT_DOUBLE_EQ(keyframes[0].endTime, 12.3);
    EXPECT_EQ(keyframes[0].rect.center(), (Point{960, 540}));
}

TEST(UnifiedAutoZoom, twoClicksTwoSecondsApartInOnePlaceMakeOneKeyframe) {
    const auto keyframes = generated(
        {eventAt(4, 960, 540, leftMouseDown), eventAt(6, 960, 540, leftMouseDown)}, fullHd(0.5));
    ASSERT_EQ(keyframes.size(), 1u);
    EXPECT_EQ(keyframes[0].zoomCurve.size(), 2u); // one region, not two merged keyframes
    EXPECT_DOUBLE_EQ(keyframes[0].timestamp, 3.4);
    EXPECT_DOUBLE_EQ(keyframes[0].endTime, 8.3);
}

TEST(UnifiedAutoZoom, farShotsThatAlmostTouchBecomeOneKeyframe) {
    // Eager: the first is held until 4.8; the second's lead-in is 0.4.
    const auto shots = [](double second) {
        return generated(
            {eventAt(4, 300, 300, leftMouseDown), eventAt(second, 1700, 800, leftMouseDown)},
            fullHd(1));
    };
    const auto one = shots(5.24); // starts at 4.84
    ASSERT_EQ(one.size(), 1u);
    EXPECT_EQ(one[0].zoomCurve.size(), 4u);
    EXPECT_DOUBLE_EQ(one[0].timestamp, 3.6);
    EXPECT_DOUBLE_EQ(one[0].endTime, 6.84);
    EXPECT_EQ(shots(5.26).size(), 2u); // starts at 4.86
}

TEST(UnifiedAutoZoom, aFullyEagerFullHdShotIsAThird) {
    const auto keyframes = generated({eventAt(5, 960, 540, rightClick)}, fullHd(1));
    ASSERT_EQ(keyframes.size(), 1u);
    EXPECT_EQ(keyframes[0].rect.size(), (Size{640, 360}));
    EXPECT_EQ(keyframes[0].zoomCurve[0].zoomLevel, 3.0);
}

TEST(UnifiedAutoZoom, theLogMayBeOutOfOrder) {
    const std::vector<CursorEvent> sorted{eventAt(4, 960, 540, leftMouseDown),
                                          eventAt(4.5, 1900, 1000, move),
                                          eventAt(5, 960, 540, leftMouseDown)};
    const std::vector<CursorEvent> shuffled{sorted[2], sorted[0], sorted[1]};
    const auto a = generated(sorted, fullHd(0.5));
    const auto b = generated(shuffled, fullHd(0.5));
    ASSERT_EQ(a.size(), 1u);
    ASSERT_EQ(b.size(), 1u);
    EXPECT_EQ(a[0].timestamp, b[0].timestamp);
    EXPECT_EQ(a[0].endTime, b[0].endTime);
    EXPECT_EQ(a[0].waypoints, b[0].waypoints);
}

TEST(UnifiedAutoZoom, aVideoWithoutSizeMakesNoKeyframes) {
    EditProject project;
    project.cursorEvents = {eventAt(5, 960, 540, rightClick)};
    for (const Size video : {Size{0, 0}, Size{0, 1080}, Size{1920, 0}}) {
        EXPECT_TRUE(generate(project, video, 10, 0.5).empty());
    }
    project.outputSettings.resolution = {0, 0};
    EXPECT_EQ(generate(project, {1920, 1080}, 10, 0.5).size(), 1u);
    project.outputSettings.resolution = {0, 1080};
    EXPECT_TRUE(generate(project, {1920, 1080}, 10, 0.5).empty());
}

TEST(UnifiedAutoZoom, aggressivenessOutsideItsRangeGivesFiniteKeyframes) {
    constexpr double kMost = std::numeric_limits<double>::max();
    const std::vector<CursorEvent> log{
        eventAt(1, 20, 20, leftMouseDown),  eventAt(1.5, 1900, 900, move),
        eventAt(4, 1900, 1000, rightClick), eventAt(30, 7, 7, scroll),
        eventAt(-kMost, 7, 7, scroll),      eventAt(kMost, 7, 7, scroll)};
    for (const double a : {-kMost, kMost, -1e308, 1e308, -1e99, 1e99, -1e300, -1e6, -5.0,
                           -1.3 / 1.7, -0.5, 1.5, 2.0, 7.0, 1e6, 1e300}) {
        for (const ZoomKeyframe& k : generated(log, fullHd(a))) {
            EXPECT_TRUE(std::isfinite(k.timestamp) && std::isfinite(k.endTime)) << a;
            EXPECT_TRUE(std::isfinite(k.rect.x) && std::isfinite(k.rect.width)) << a;
            EXPECT_TRUE(std::isfinite(k.rect.y) && std::isfinite(k.rect.height)) << a;
            EXPECT_TRUE(std::isfinite(k.transitionDuration)) << a;
            for (const ZoomCurvePoint& point : k.zoomCurve) {
                EXPECT_TRUE(std::isfinite(point.time) && std::isfinite(point.zoomLevel)) << a;
            }
        }
    }
}

TEST(UnifiedAutoZoom, positionsBeyondAllScreensStayFinite) {
    constexpr double kMost = std::numeric_limits<double>::max();
    const auto keyframes = generated({eventAt(1, kMost, -kMost, leftMouseDown),
                                      eventAt(2, -kMost, kMost, leftMouseDown),
                                      eventAt(3, kMost, -kMost, leftMouseDown)},
                                     fullHd(1));
    ASSERT_EQ(keyframes.size(), 1u);
    EXPECT_EQ(keyframes[0].rect, (Rect{1280, 720, 640, 360})); // two of three lie top right
}

} // namespace
} // namespace tavi::UnifiedAutoZoom
