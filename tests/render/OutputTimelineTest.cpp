#include "render/OutputTimeline.h"

#include "support/RandomLog.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace tavi {
namespace {

CursorEvent eventAt(double time) {
    return {time, time * 10, 7, CursorEventType::move, 3, "k", 5};
}

ZoomKeyframe keyframe(double start, double end) {
    ZoomKeyframe k;
    k.timestamp = start;
    k.endTime = end;
    return k;
}

/// A take of 10 s with everything from 4 to 6 cut away.
EditProject withACut() {
    EditProject project;
    project.trimState.cutSegments = {{Uuid::make(), 4, 6}};
    return project;
}

constexpr double kDuration = 10;

TEST(OutputTimeline, anUntrimmedProjectIsOneRangeAndStaysAsItIs) {
    EditProject project;
    project.trimState.inPoint = -1; // at most zero
    project.keyframes = {keyframe(8, 10), keyframe(9, 99)};
    project.cursorEvents = {eventAt(-1), eventAt(10), eventAt(11)};
    const auto timeline = makeOutputTimeline(project, kDuration);
    ASSERT_EQ(timeline.ranges.size(), 1u);
    EXPECT_EQ(timeline.ranges[0].start, 0);
    EXPECT_EQ(timeline.ranges[0].end, 10);
    EXPECT_EQ(timeline.outputOffsets, std::vector<double>{0});
    EXPECT_EQ(timeline.keyframes, project.keyframes);
    EXPECT_EQ(timeline.cursorEvents, project.cursorEvents);
    EXPECT_EQ(timeline.duration(), 10);
}

TEST(OutputTimeline, aKeyframeEndingAtTheOutputsEndIsDroppedOnlyWhenTrimmed) {
    EditProject project;
    project.keyframes = {keyframe(8, 10)};
    EXPECT_EQ(makeOutputTimeline(project, kDuration).keyframes.size(), 1u);
    project.trimState.inPoint = 1;
    EXPECT_TRUE(makeOutputTimeline(project, kDuration).keyframes.empty());
}

TEST(OutputTimeline, anOutPointAtTheEndCountsAsTrimmed) {
    EditProject project;
    project.trimState.outPoint = 10;
    project.keyframes = {keyframe(8, 10)};
    EXPECT_TRUE(makeOutputTimeline(project, kDuration).keyframes.empty());
}

TEST(OutputTimeline, aCutThatCutsNothingCountsAsTrimmed) {
    EditProject project;
    project.trimState.cutSegments = {{Uuid::make(), 20, 30}};
    project.cursorEvents = {eventAt(9.999), eventAt(10)};
    const auto timeline = makeOutputTimeline(project, kDuration);
    ASSERT_EQ(timeline.cursorEvents.size(), 1u);
    EXPECT_EQ(timeline.cursorEvents[0].timestamp, 9.999);
}

TEST(OutputTimeline, theOffsetOfARangeIsTheLengthOfThoseBeforeIt) {
    EditProject project;
    project.trimState.inPoint = 1;
    project.trimState.outPoint = 9;
    project.trimState.cutSegments = {{Uuid::make(), 6, 6.5}, {Uuid::make(), 2, 5}};
    const auto timeline = makeOutputTimeline(project, kDuration);
    ASSERT_EQ(timeline.ranges.size(), 3u);
    EXPECT_EQ(timeline.outputOffsets, (std::vector<double>{0, 1, 2}));
    EXPECT_EQ(timeline.duration(), 4.5);
}

TEST(OutputTimeline, everythingCutAwayLeavesNoRange) {
    EditProject project = withACut();
    project.trimState.cutSegments = {{Uuid::make(), -1, 11}};
    project.keyframes = {keyframe(1, 2)};
    project.cursorEvents = {eventAt(1)};
    const auto timeline = makeOutputTimeline(project, kDuration);
    EXPECT_TRUE(timeline.ranges.empty());
    EXPECT_TRUE(timeline.outputOffsets.empty());
    EXPECT_TRUE(timeline.keyframes.empty());
    EXPECT_TRUE(timeline.cursorEvents.empty());
    EXPECT_EQ(timeline.duration(), 0);
}

TEST(OutputTimeline, aVideoWithoutLengthHasNoRange) {
    EXPECT_TRUE(makeOutputTimeline({}, 0).ranges.empty());
    EXPECT_TRUE(makeOutputTimeline(withACut(), 0).ranges.empty());
    EXPECT_TRUE(makeOutputTimeline({}, std::numeric_limits<double>::quiet_NaN()).ranges.empty());
}

TEST(OutputTimeline, aKeyframeNeedsBothEndsInKeptRanges) {
    EditProject project = withACut();
    project.keyframes = {
        keyframe(1, 3),    // before the cut
        keyframe(3, 4),    // ends at the end of a kept range
        keyframe(3, 5),    // ends in the cut
        keyframe(4, 7),    // begins with the cut
        keyframe(5, 7),    // begins in the cut
        keyframe(3, 6),    // spans the cut up to the following range's start
        keyframe(3, 7),    // spans the cut
        keyframe(6, 9),    // begins with the following range
        keyframe(7, 10),   // ends at the very end
        keyframe(-0.5, 3), // begins before the video
        keyframe(1, -1),   // has no end
    };
    std::vector<std::pair<double, double>> kept;
    for (const auto& k : makeOutputTimeline(project, kDuration).keyframes) {
        kept.emplace_back(k.timestamp, k.endTime);
    }
    const std::vector<std::pair<double, double>> expected{{1, 3}, {3, 4}, {3, 5}, {4, 7}};
    EXPECT_EQ(kept, expected);
}

TEST(OutputTimeline, waypointsAndCurvePointsInACutAreDroppedAlone) {
    EditProject project = withACut();
    ZoomKeyframe k = keyframe(3, 8);
    k.rect = {1, 2, 3, 4};
    k.transitionDuration = 0.25;
    k.easingType = EasingType::spring;
    k.waypoints = {{3.5, 10, 11}, {4, 20, 21}, {5, 30, 31}, {6, 40, 41}, {7, 50, 51}};
    k.zoomCurve = {{Uuid::make(), 7.5, 3}, {Uuid::make(), 5.9, 2}, {Uuid::make(), 3, 4}};
    project.keyframes = {k};
    const auto timeline = makeOutputTimeline(project, kDuration);
    ASSERT_EQ(timeline.keyframes.size(), 1u);
    ZoomKeyframe expected = k;
    expected.endTime = 6;
    expected.waypoints = {{3.5, 10, 11}, {4, 40, 41}, {5, 50, 51}};
    expected.zoomCurve = {{k.zoomCurve[0].id, 5.5, 3}, {k.zoomCurve[2].id, 3, 4}};
    EXPECT_EQ(timeline.keyframes[0], expected);
}

TEST(OutputTimeline, eventsInACutAreDroppedAndTheRestKeepsAllButItsTime) {
    EditProject project = withACut();
    project.cursorEvents = {eventAt(3.9), eventAt(4), eventAt(5.9), eventAt(6), eventAt(9)};
    const auto timeline = makeOutputTimeline(project, kDuration);
    std::vector<CursorEvent> expected{eventAt(3.9), eventAt(6), eventAt(9)};
    expected[1].timestamp = 4;
    expected[2].timestamp = 7;
    EXPECT_EQ(timeline.cursorEvents, expected);
}

TEST(OutputTimeline, theLogKeepsItsOrder) {
    EditProject project = withACut();
    project.cursorEvents = {eventAt(9), eventAt(1), eventAt(7), eventAt(7)};
    const auto timeline = makeOutputTimeline(project, kDuration);
    ASSERT_EQ(timeline.cursorEvents.size(), 4u);
    EXPECT_EQ(timeline.cursorEvents[0].timestamp, 7);
    EXPECT_EQ(timeline.cursorEvents[1].timestamp, 1);
}

EditProject randomProject(test::RandomValues& random) {
    EditProject project;
    project.trimState.inPoint = random.chance(0.5) ? 0 : random.between(-1, 5);
    if (random.chance(0.5)) {
        project.trimState.outPoint = random.between(-1, 15);
    }
    for (std::size_t n = random.index(6); n > 0; --n) {
        const double start = random.between(-2, 12);
        project.trimState.cutSegments.push_back(
            {Uuid::make(), start, start + random.between(-0.5, 3)});
    }
    project.cursorEvents = test::randomLog(random, test::randomWeather(random));
    for (std::size_t n = random.index(5); n > 0; --n) {
        ZoomKeyframe k = keyframe(random.between(0, 10), random.between(0, 10));
        for (std::size_t w = random.index(4); w > 0; --w) {
            k.waypoints.push_back({random.between(0, 10), 1, 2});
            k.zoomCurve.push_back({Uuid::make(), random.between(0, 10), 2});
        }
        project.keyframes.push_back(k);
    }
    return project;
}

TEST(OutputTimelineProperty, everyTimeIsTheOutputTimeOfItsMoment) {
    for (std::uint64_t seed = 0; seed < test::seedCount(); ++seed) {
        test::RandomValues random(seed);
        const EditProject project = randomProject(random);
        if (project.trimState.isUntrimmed()) {
            continue;
        }
        const auto timeline = makeOutputTimeline(project, kDuration);
        std::vector<CursorEvent> expected;
        for (CursorEvent event : project.cursorEvents) {
            if (const auto t = outputTime(project.trimState, event.timestamp, kDuration)) {
                event.timestamp = *t;
                expected.push_back(event);
            }
        }
        ASSERT_EQ(timeline.cursorEvents, expected) << "seed " << seed;
        std::size_t kept = 0;
        for (const ZoomKeyframe& k : project.keyframes) {
            const auto start = outputTime(project.trimState, k.timestamp, kDuration);
            const auto end = outputTime(project.trimState, k.endTime, kDuration);
            if (start && end) {
                ASSERT_LT(kept, timeline.keyframes.size()) << "seed " << seed;
                ASSERT_EQ(timeline.keyframes[kept].timestamp, *start) << "seed " << seed;
                ASSERT_EQ(timeline.keyframes[kept].endTime, *end) << "seed " << seed;
                ++kept;
            }
        }
        ASSERT_EQ(timeline.keyframes.size(), kept) << "seed " << seed;
    }
}

TEST(OutputTimelineProperty, nothingLiesOutsideTheOutput) {
    for (std::uint64_t seed = 0; seed < test::seedCount(); ++seed) {
        test::RandomValues random(seed);
        const EditProject project = randomProject(random);
        if (project.trimState.isUntrimmed()) {
            continue;
        }
        const auto timeline = makeOutputTimeline(project, kDuration);
        ASSERT_EQ(timeline.ranges.size(), timeline.outputOffsets.size()) << "seed " << seed;
        const double end = timeline.duration() + 1e-12;
        for (const CursorEvent& event : timeline.cursorEvents) {
            ASSERT_TRUE(event.timestamp >= 0 && event.timestamp <= end) << "seed " << seed;
        }
        for (const ZoomKeyframe& k : timeline.keyframes) {
            for (const ZoomWaypoint& w : k.waypoints) {
                ASSERT_TRUE(w.time >= 0 && w.time <= end) << "seed " << seed;
            }
            for (const ZoomCurvePoint& p : k.zoomCurve) {
                ASSERT_TRUE(p.time >= 0 && p.time <= end) << "seed " << seed;
            }
        }
    }
}

} // namespace
} // namespace tavi
