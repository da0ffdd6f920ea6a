#include "editor/TimelineGeometry.h"

#include "editor/TimelineMarks.h"

#include <gmock/gmock.h>

namespace tavi {
namespace {

using testing::DoubleNear;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

constexpr TimelineGeometry kMinute{60, 600};

ZoomKeyframe keyframe(double start, double end, double ramp = 0.5) {
    ZoomKeyframe made;
    made.timestamp = start;
    made.endTime = end;
    made.transitionDuration = ramp;
    return made;
}

MATCHER_P2(spans, x, width, "") {
    return std::abs(arg.x - x) < 1e-9 && std::abs(arg.width - width) < 1e-9;
}

TEST(TimelineGeometry, lanesFillWhatTheRulerLeaves) {
    EXPECT_EQ(TimelineGeometry::kRulerHeight + TimelineGeometry::kSeparatorHeight +
                  TimelineGeometry::kUpperLaneHeight + TimelineGeometry::kLowerLaneHeight,
              TimelineGeometry::kTotalHeight);
}

TEST(TimelineGeometry, timesAndPlacesAreLimitedToTheRecording) {
    EXPECT_EQ(kMinute.x(30), 300);
    EXPECT_EQ(kMinute.x(-1), 0);
    EXPECT_EQ(kMinute.x(61), 600);
    EXPECT_EQ(kMinute.time(150), 15);
    EXPECT_EQ(kMinute.time(-4), 0);
    EXPECT_EQ(kMinute.time(700), 60);
}

TEST(TimelineGeometry, withoutALengthEverythingIsAtZero) {
    for (const double duration : {0.0, -1.0}) {
        const TimelineGeometry empty{duration, 600};
        EXPECT_EQ(empty.x(3), 0);
        EXPECT_THAT(rulerTicks(empty), IsEmpty());
    }
    EXPECT_EQ((TimelineGeometry{60, 0}.time(3)), 0);
}

TEST(TimelineGeometry, levelsLieSixInsideTheLane) {
    EXPECT_EQ(TimelineGeometry::curveY(1, 110), 104);
    EXPECT_EQ(TimelineGeometry::curveY(6, 110), 6);
    EXPECT_LT(TimelineGeometry::curveY(7, 110), 6) << "stored levels aren't limited";
    EXPECT_EQ(TimelineGeometry::curveLevel(104, 110), 1);
    EXPECT_EQ(TimelineGeometry::curveLevel(6, 110), 6);
    EXPECT_EQ(TimelineGeometry::curveLevel(-50, 110), 6);
    EXPECT_EQ(TimelineGeometry::curveLevel(200, 110), 1);
    EXPECT_DOUBLE_EQ(TimelineGeometry::curveLevel(TimelineGeometry::curveY(2.3, 110), 110), 2.3);
}

struct RulerCase {
    double pointsPerSecond;
    double major;
    double minor;
};

class Ruler : public testing::TestWithParam<RulerCase> {};

TEST_P(Ruler, leavesItsTicksRoom) {
    const auto [pps, major, minor] = GetParam();
    const double duration = 4 * major;
    const auto ticks = rulerTicks({duration, duration * pps});
    ASSERT_THAT(ticks, SizeIs(21));
    for (std::size_t i = 0; i < ticks.size(); ++i) {
        EXPECT_NEAR(ticks[i].x, static_cast<double>(i) * minor * pps, 1e-9);
        EXPECT_EQ(ticks[i].isMajor, i % 5 == 0);
    }
}

INSTANTIATE_TEST_SUITE_P(Widths, Ruler,
                         testing::Values(RulerCase{101, 1, 0.2}, RulerCase{100, 5, 1},
                                         RulerCase{21, 5, 1}, RulerCase{20, 10, 2},
                                         RulerCase{0.5, 10, 2}));

TEST(Ruler, labelsTellSecondsAndThenMinutes) {
    std::vector<std::string> labels;
    for (const RulerTick& tick : rulerTicks({90, 900})) {
        if (tick.isMajor) {
            labels.push_back(tick.label);
        }
    }
    EXPECT_THAT(labels,
                ElementsAre("0s", "10s", "20s", "30s", "40s", "50s", "1:00", "1:10", "1:20", ""))
        << "the last one has no room";
}

TEST(Ruler, tickAtTheVeryEndIsThere) {
    const auto ticks = rulerTicks({0.6, 600});
    ASSERT_THAT(ticks, SizeIs(4));
    EXPECT_EQ(ticks.back().x, 600);
}

TEST(TimelineMarks, dimmedIsWhatTheTrimLeavesOut) {
    EXPECT_THAT(TimelineMarks::dimAreas(kMinute, {}), IsEmpty());
    EXPECT_THAT(TimelineMarks::dimAreas(kMinute, {6, 48, {}}),
                ElementsAre(TimelineSpan{0, 60}, TimelineSpan{480, 120}));
    EXPECT_THAT(TimelineMarks::dimAreas(kMinute, {0, {}, {{Uuid::make(), 1, 2}}}),
                ElementsAre(TimelineSpan{0, 0}, TimelineSpan{600, 0}));
}

TEST(TimelineMarks, narrowMarksStayVisible) {
    EXPECT_EQ(TimelineMarks::cutSpan(kMinute, {Uuid::make(), 6, 6.01}), (TimelineSpan{60, 1}));
    EXPECT_EQ(TimelineMarks::pendingCut(kMinute, 6, 6).span, (TimelineSpan{60, 1}));
    EXPECT_EQ(TimelineMarks::curveSpan(kMinute, keyframe(6, 6.01)), (TimelineSpan{60, 2}));
}

TEST(TimelineMarks, pendingCutGoesEitherWay) {
    const PendingCut back = TimelineMarks::pendingCut(kMinute, 12, 6);
    EXPECT_EQ(back.span, (TimelineSpan{60, 60}));
    EXPECT_EQ(back.markerX, 120);
}

TEST(TimelineMarks, keyframeIsTwoRampsAndABody) {
    const KeyframeMarks marks = TimelineMarks::keyframeMarks(kMinute, keyframe(6, 12, 1));
    EXPECT_THAT(marks.entry, spans(60, 10));
    EXPECT_THAT(marks.body, spans(70, 40));
    EXPECT_THAT(marks.exit, spans(110, 10));
}

TEST(TimelineMarks, rampsOfAShortKeyframeTouch) {
    const ZoomKeyframe shortOne = keyframe(6, 6.4, 0.5);
    EXPECT_NEAR(TimelineMarks::edge(shortOne), 0.2, 1e-12);
    const KeyframeMarks marks = TimelineMarks::keyframeMarks(kMinute, shortOne);
    EXPECT_NEAR(marks.body.x, 62, 1e-9);
    EXPECT_EQ(marks.body.width, 2);
    EXPECT_NEAR(marks.entry.width, 2, 1e-9);
}

TEST(TimelineMarks, shownLevelComesInFromOneAndGoesBack) {
    ZoomKeyframe zoom = keyframe(10, 20, 2);
    zoom.zoomCurve = {{Uuid::make(), 18, 4}, {Uuid::make(), 12, 3}}; // in any order
    EXPECT_EQ(TimelineMarks::shownLevel(zoom, 10, 1000), 1);
    EXPECT_EQ(TimelineMarks::shownLevel(zoom, 11, 1000), 2);
    EXPECT_EQ(TimelineMarks::shownLevel(zoom, 12, 1000), 3);
    EXPECT_EQ(TimelineMarks::shownLevel(zoom, 15, 1000), 3.5);
    EXPECT_EQ(TimelineMarks::shownLevel(zoom, 19, 1000), 2.5);
    EXPECT_EQ(TimelineMarks::shownLevel(zoom, 20, 1000), 1);
}

TEST(TimelineMarks, withoutRampsTheLevelIsWholeUpToTheEnd) {
    ZoomKeyframe zoom = keyframe(10, 20, 0);
    zoom.rect.width = 250;
    for (const double time :
         {10.0, 20.0, std::nextafter(20.0, 21.0)}) { // sums may end a little late
        EXPECT_EQ(TimelineMarks::shownLevel(zoom, time, 1000), 4) << time;
    }
}

TEST(TimelineMarks, withoutACurveTheRectangleTellsTheLevel) {
    ZoomKeyframe zoom = keyframe(10, 20, 2);
    EXPECT_EQ(TimelineMarks::shownLevel(zoom, 15, 1000), 1) << "no rectangle";
    zoom.rect.width = 250;
    EXPECT_EQ(TimelineMarks::shownLevel(zoom, 15, 1000), 4);
}

TEST(TimelineMarks, curveHasAPointForTwoPointsOfWidth) {
    ZoomKeyframe zoom = keyframe(6, 12, 1);
    zoom.zoomCurve = {{Uuid::make(), 9, 6}};
    const auto line = TimelineMarks::curveLine(kMinute, zoom, 1000, 110);
    ASSERT_THAT(line, SizeIs(31));
    EXPECT_EQ(line.front(), (Point{60, 104}));
    EXPECT_EQ(line[15], (Point{90, 6}));
    EXPECT_THAT(line.back().x, DoubleNear(120, 1e-9));
    EXPECT_THAT(TimelineMarks::curveLine(kMinute, keyframe(6, 6.05), 1000, 110), SizeIs(3));
}

TEST(TimelineMarks, edgeHandleIsAtMostTwentyTall) {
    EXPECT_EQ(TimelineMarks::edgeHandleHeight(109), 20);
    EXPECT_EQ(TimelineMarks::edgeHandleHeight(15), 11);
}

} // namespace
} // namespace tavi
