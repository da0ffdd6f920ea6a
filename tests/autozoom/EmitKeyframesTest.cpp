#include "autozoom/Events.h"

#include <gtest/gtest.h>

#include <cmath>

namespace tavi::UnifiedAutoZoom {
namespace {

using enum CursorEventType;
using test::eventAt;
using test::fullHd;

ZoomRegion region(double start, double end, double x, double y) {
    return {start, end, {{(start + end) * 0.5, x, y}}, x, y};
}

std::vector<ZoomKeyframe> emitted(const std::vector<ZoomRegion>& regions,
                                  const std::vector<CursorEvent>& events, const Inputs& inputs) {
    return emitKeyframes(regions, events, inputs);
}

TEST(EmitKeyframes, noRegionsMakeNoKeyframes) {
    EXPECT_TRUE(emitted({}, {eventAt(1, 2, 3, move)}, fullHd(0.5)).empty());
}

TEST(EmitKeyframes, aRegionBecomesAShotAroundItsFocus) {
    const auto keyframes = emitted({region(10, 12, 900, 500)}, {}, fullHd(1));
    ASSERT_EQ(keyframes.size(), 1u);
    const ZoomKeyframe& k = keyframes[0];
    EXPECT_DOUBLE_EQ(k.timestamp, 9.6);
    EXPECT_DOUBLE_EQ(k.endTime, 13.6); // two tails of 0.8
    EXPECT_EQ(k.rect, (Rect{580, 320, 640, 360}));
    EXPECT_TRUE(k.waypoints.empty());
    EXPECT_DOUBLE_EQ(k.transitionDuration, 0.8);
    EXPECT_EQ(k.easingType, EasingType::easeInOut);
    ASSERT_EQ(k.zoomCurve.size(), 2u);
    EXPECT_DOUBLE_EQ(k.zoomCurve[0].time, 9.6 + 0.8);
    EXPECT_DOUBLE_EQ(k.zoomCurve[1].time, 13.6 - 0.8);
    EXPECT_EQ(k.zoomCurve[0].zoomLevel, 3.0);
    EXPECT_EQ(k.zoomCurve[1].zoomLevel, 3.0);
    EXPECT_NE(k.zoomCurve[0].id, k.zoomCurve[1].id);
    EXPECT_NE(k.zoomCurve[0].id, k.id);
}

TEST(EmitKeyframes, theLevelIsAgainstTheVideosWidthNotTheBase) {
    Inputs inputs = fullHd(1);
    inputs.base = {1080, 1080};
    const auto keyframes = emitted({region(10, 12, 900, 500)}, {}, inputs);
    EXPECT_EQ(keyframes[0].rect.width, 360);
    EXPECT_DOUBLE_EQ(keyframes[0].zoomCurve[0].zoomLevel, 1920.0 / 360);
}

TEST(EmitKeyframes, theCentreIsTheFirstFocalPointNotTheMean) {
    ZoomRegion shot = region(10, 12, 900, 500);
    shot.focalPoints.push_back({12, 1000, 600});
    shot.primaryFocalX = 950;
    shot.primaryFocalY = 550;
    EXPECT_EQ(emitted({shot}, {}, fullHd(1))[0].rect.center(), (Point{900, 500}));
    shot.focalPoints.clear();
    EXPECT_EQ(emitted({shot}, {}, fullHd(1))[0].rect.center(), (Point{950, 550}));
}

TEST(EmitKeyframes, theViewportStaysInsideTheVideo) {
    const auto low = emitted({region(10, 12, 0, 0)}, {}, fullHd(1));
    EXPECT_EQ(low[0].rect, (Rect{0, 0, 640, 360}));
    const auto high = emitted({region(10, 12, 1e6, 1e6)}, {}, fullHd(1));
    EXPECT_EQ(high[0].rect, (Rect{1280, 720, 640, 360}));
}

TEST(EmitKeyframes, aClickSoonAfterTheStartBeginsAtZero) {
    EXPECT_EQ(emitted({region(0.1, 0.1, 900, 500)}, {}, fullHd(0.5))[0].timestamp, 0);
}

TEST(EmitKeyframes, aLastShotEndsWithTheVideo) {
    Inputs inputs = fullHd(0.5);
    inputs.duration = 10;
    const auto k = emitted({region(9.8, 9.8, 900, 500)}, {}, inputs)[0];
    EXPECT_EQ(k.endTime, 10);
    EXPECT_LT(k.zoomCurve[1].time, k.zoomCurve[0].time);
}

TEST(EmitKeyframes, aRegionWithRoomHoldsForTwoTails) {
    // Calm: lead-in 0.8, tail 1.5. The first ends at 1, so two tails end at 4.
    const auto end = [](double next) {
        return emitted({region(0, 1, 900, 500), region(next, next, 900, 500)}, {}, fullHd(0))[0]
            .endTime;
    };
    ASSERT_EQ(4.8 - 0.8, 4.0);
    EXPECT_EQ(end(4.8), 4.0); // the next begins exactly there
    EXPECT_EQ(end(9), 4.0);
    EXPECT_EQ(end(4.7), 2.5); // crowded: one tail
    EXPECT_EQ(end(2), 2.5);   // and may overlap
}

TEST(EmitKeyframes, onlyTheLongHoldIsLimitedByTheDuration) {
    Inputs inputs = fullHd(0);
    inputs.duration = 2;
    const auto keyframes =
        emitted({region(0, 1, 900, 500), region(2.5, 2.5, 900, 500)}, {}, inputs);
    EXPECT_EQ(keyframes[0].endTime, 2.5);
    EXPECT_EQ(keyframes[1].endTime, 2);
}

/// The waypoints of a calm shot at 0..0 focused on (0, 0), of which the dead
/// zone is 0.3 of a viewport and the interval 0.6 s.
std::vector<ZoomWaypoint> calmWaypoints(const std::vector<CursorEvent>& events) {
    return emitted({region(0, 0, 0, 0)}, events, fullHd(0))[0].waypoints;
}

CursorEvent moveTo(double time, double x) {
    return eventAt(time, x, 1080, move);
}

TEST(EmitKeyframes, anyEventBeyondTheDeadZoneMovesTheCamera) {
    for (const auto type : {move, leftClick, scroll, leftMouseUp, keyDown}) {
        const auto points = calmWaypoints({eventAt(1, 960, 580, type)});
        ASSERT_EQ(points.size(), 1u);
        EXPECT_EQ(points[0], (ZoomWaypoint{1, 960, 500}));
    }
}

TEST(EmitKeyframes, exactlyTheDeadZoneDoesNotMoveTheCamera) {
    const double deadZone = 0.3 * viewportSize(fullHd(0)).width;
    EXPECT_TRUE(calmWaypoints({moveTo(1, deadZone)}).empty());
    EXPECT_EQ(calmWaypoints({moveTo(1, std::nextafter(deadZone, 1e9))}).size(), 1u);
}

TEST(EmitKeyframes, exactlyTheIntervalDoesNotMoveTheCamera) {
    EXPECT_TRUE(calmWaypoints({moveTo(0.6, 900)}).empty());
    EXPECT_EQ(calmWaypoints({moveTo(std::nextafter(0.6, 1), 900)}).size(), 1u);
}

TEST(EmitKeyframes, eventsFromTheStartToTheHoldCountBothIncluded) {
    EXPECT_EQ(calmWaypoints({moveTo(1.5, 900)}).size(), 1u); // one tail after the end
    EXPECT_TRUE(calmWaypoints({moveTo(std::nextafter(1.5, 2), 900)}).empty());
    // At the start itself the interval can't have passed.
    Inputs eager = fullHd(0);
    eager.aggressiveness = 3; // an interval below zero
    const auto at = [&](double time) {
        return emitted({region(5, 50, 0, 0)}, {moveTo(time, 1900)}, eager)[0].waypoints.size();
    };
    EXPECT_EQ(at(5), 1u);
    EXPECT_EQ(at(std::nextafter(5.0, 0)), 0u);
}

TEST(EmitKeyframes, distanceAndIntervalCountFromTheLastWaypointUnclamped) {
    // The second is near the first's real place, though far from its clamped one.
    const auto points = calmWaypoints({moveTo(0.7, 5000), moveTo(1.4, 4700)});
    ASSERT_EQ(points.size(), 1u);
    const Size viewport = viewportSize(fullHd(0));
    EXPECT_EQ(points[0].centerX, 1920 - viewport.width * 0.5);
    EXPECT_EQ(calmWaypoints({moveTo(0.7, 5000), moveTo(1.4, 100)}).size(), 2u);
    EXPECT_EQ(calmWaypoints({moveTo(0.7, 5000), moveTo(1.2, 100)}).size(), 1u);
}

TEST(EmitKeyframes, aPointerInTheCornerMakesTheViewportMeetTheVideosEdge) {
    const auto keyframes =
        emitted({region(10, 12, 960, 540)}, {eventAt(11, 1920, 1080, move)}, fullHd(1));
    ASSERT_EQ(keyframes[0].waypoints.size(), 1u);
    EXPECT_EQ(keyframes[0].waypoints[0], (ZoomWaypoint{11, 1600, 180}));
}

ZoomKeyframe keyframe(double start, double end) {
    ZoomKeyframe k;
    k.timestamp = start;
    k.endTime = end;
    k.rect = {start, 0, 10, 10};
    k.waypoints = {{start, 1, 1}};
    k.zoomCurve = {{Uuid::make(), start, 2}, {Uuid::make(), end, 2}};
    return k;
}

TEST(MergeKeyframes, anEmptyListStaysEmpty) {
    EXPECT_TRUE(mergeKeyframes({}).empty());
}

TEST(MergeKeyframes, sortsByTimestampStably) {
    auto first = keyframe(5, 6);
    auto second = keyframe(1, 2);
    const auto merged = mergeKeyframes({first, second});
    ASSERT_EQ(merged.size(), 2u);
    EXPECT_EQ(merged[0], second);
    EXPECT_EQ(merged[1], first);
    auto equal = keyframe(5, 9);
    const auto one = mergeKeyframes({first, equal});
    ASSERT_EQ(one.size(), 1u);
    EXPECT_EQ(one[0].id, first.id);
}

TEST(MergeKeyframes, exactlyTheToleranceApartStayTwo) {
    const double border = 1.0 + 0.05;
    EXPECT_EQ(mergeKeyframes({keyframe(0, 1), keyframe(border, 3)}).size(), 2u);
    EXPECT_EQ(mergeKeyframes({keyframe(0, 1), keyframe(std::nextafter(border, 0), 3)}).size(), 1u);
}

TEST(MergeKeyframes, theFirstKeepsItsIdentityAndTakesTheRest) {
    auto first = keyframe(0, 4);
    first.easingType = EasingType::spring;
    first.transitionDuration = 0.7;
    const auto second = keyframe(3, 6);
    const auto merged = mergeKeyframes({first, second});
    ASSERT_EQ(merged.size(), 1u);
    const ZoomKeyframe& k = merged[0];
    EXPECT_EQ(k.id, first.id);
    EXPECT_EQ(k.timestamp, 0);
    EXPECT_EQ(k.endTime, 6);
    EXPECT_EQ(k.rect, first.rect);
    EXPECT_EQ(k.easingType, EasingType::spring);
    EXPECT_EQ(k.transitionDuration, 0.7);
    const std::vector<ZoomWaypoint> waypoints{{0, 1, 1}, {3, 1, 1}};
    EXPECT_EQ(k.waypoints, waypoints);
    ASSERT_EQ(k.zoomCurve.size(), 4u);
    EXPECT_EQ(k.zoomCurve[0].time, 0);
    EXPECT_EQ(k.zoomCurve[1].time, 3); // sorted
    EXPECT_EQ(k.zoomCurve[2].time, 4);
    EXPECT_EQ(k.zoomCurve[3].time, 6);
}

TEST(MergeKeyframes, aShorterOneInsideDoesNotShortenTheFirst) {
    const auto merged = mergeKeyframes({keyframe(0, 9), keyframe(1, 2), keyframe(8, 10)});
    ASSERT_EQ(merged.size(), 1u);
    EXPECT_EQ(merged[0].endTime, 10);
}

TEST(MergeKeyframes, farShotsThatOverlapBecomeOneWithWaypoints) {
    const std::vector<ZoomRegion> regions{region(0, 1, 100, 980), region(1.1, 2, 1800, 180)};
    const std::vector<CursorEvent> events{
        eventAt(0, 100, 100, leftClick), eventAt(1, 100, 100, leftClick),
        eventAt(1.1, 1800, 900, leftClick), eventAt(2, 1800, 900, leftClick)};
    const auto keyframes = emitted(regions, events, fullHd(0.5));
    ASSERT_EQ(keyframes.size(), 2u);
    const auto merged = mergeKeyframes(keyframes);
    ASSERT_EQ(merged.size(), 1u);
    ASSERT_EQ(merged[0].waypoints.size(), 1u);
    EXPECT_EQ(merged[0].waypoints[0].time, 1.1);
    EXPECT_EQ(merged[0].zoomCurve.size(), 4u);
}

} // namespace
} // namespace tavi::UnifiedAutoZoom
