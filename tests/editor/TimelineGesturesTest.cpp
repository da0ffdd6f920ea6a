#include "editor/TimelineGestures.h"

#include "fakes/CallLog.h"

#include <fmt/format.h>
#include <gmock/gmock.h>

namespace tavi {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using Kind = TimelineHit::Kind;
using Lane = TimelineLane;

constexpr double kMiddle = 54; ///< A height at which edge handles are.

ZoomKeyframe keyframe(double start, double end, double ramp = 1) {
    ZoomKeyframe made;
    made.timestamp = start;
    made.endTime = end;
    made.transitionDuration = ramp;
    return made;
}

/// A minute on 600 points: ten points a second.
class TimelineGesturesTest : public testing::Test {
protected:
    TimelineGesturesTest() {
        keyframes = {keyframe(10, 20), keyframe(30, 40)};
        keyframes[0].zoomCurve = {{Uuid::make(), 15, 3.5}};
        trim.inPoint = 2;
    }

    TimelineModel model() const { return {{duration, 600}, keyframes, trim, 1000}; }

    std::string name(Uuid id) const {
        return id == keyframes[0].id ? "first" : id == keyframes[1].id ? "second" : "?";
    }

    TimelineGestures::Callbacks callbacks() {
        return {[this](double time) { log.note(fmt::format("seek {:.2f}", time)); },
                [this](std::optional<Uuid> id) { log.note("select " + (id ? name(*id) : "none")); },
                [this](double time) { log.note(fmt::format("in {:.2f}", time)); },
                [this](double time) { log.note(fmt::format("out {:.2f}", time)); },
                [this](const ZoomKeyframe& k) {
                    log.note(fmt::format("{} {:.2f}-{:.2f}", name(k.id), k.timestamp, k.endTime));
                },
                [this](Uuid id, const ZoomCurvePoint& p) {
                    log.note(fmt::format("add {} {:.2f} {:.2f}", name(id), p.time, p.zoomLevel));
                },
                [this](Uuid id, const ZoomCurvePoint& p) {
                    EXPECT_EQ(p.id, keyframes[0].zoomCurve[0].id);
                    log.note(fmt::format("point {} {:.2f} {:.2f}", name(id), p.time, p.zoomLevel));
                }};
    }

    /// The calls that a gesture over these places makes.
    std::vector<std::string> gesture(Lane lane, const std::vector<Point>& places) {
        log = std::make_unique<CallLog>();
        gestures.press(model(), lane, places.front());
        for (std::size_t i = 1; i < places.size(); ++i) {
            gestures.move(model(), places[i]);
        }
        gestures.release(model(), places.back());
        EXPECT_FALSE(gestures.isActive());
        return log->calls();
    }

    TimelineHit hit(Lane lane, Point place) const { return timelineHit(model(), lane, place); }

    double duration = 60;
    std::vector<ZoomKeyframe> keyframes;
    TrimState trim;
    struct Log {
        Log& operator=(std::unique_ptr<CallLog> fresh) {
            calls = std::move(fresh);
            return *this;
        }
        void note(const std::string& call) const { calls->note(call); }
        CallLog* operator->() const { return calls.get(); }
        std::unique_ptr<CallLog> calls = std::make_unique<CallLog>();
    } log;
    TimelineGestures gestures{callbacks()};
};

TEST_F(TimelineGesturesTest, upperLaneScrubsAndDeselects) {
    EXPECT_THAT(gesture(Lane::upper, {{250, 5}, {255, 5}, {-20, 5}}),
                ElementsAre("seek 25.00", "select none", "seek 25.50", "select none", "seek 0.00",
                            "select none"));
}

TEST_F(TimelineGesturesTest, lowerLaneScrubsAndKeepsTheSelection) {
    EXPECT_THAT(gesture(Lane::lower, {{250, 5}, {700, 5}}),
                ElementsAre("seek 25.00", "seek 60.00"));
}

TEST_F(TimelineGesturesTest, clickOnABodyScrubsAndThenSelects) {
    EXPECT_THAT(
        gesture(Lane::upper, {{150, 5}, {151, 5}}),
        ElementsAre("seek 15.00", "select none", "seek 15.10", "select none", "select first"));
}

TEST_F(TimelineGesturesTest, dragOverABodyOnlyScrubs) {
    EXPECT_THAT(gesture(Lane::upper, {{150, 5}, {160, 5}, {150, 5}}),
                ElementsAre("seek 15.00", "select none", "seek 16.00", "select none", "seek 15.00",
                            "select none"));
}

TEST_F(TimelineGesturesTest, clickOnARampSelectsNothing) {
    EXPECT_THAT(gesture(Lane::upper, {{104, 5}}), ElementsAre("seek 10.40", "select none"));
}

TEST_F(TimelineGesturesTest, trimHandlesAreDraggedAndDoNotScrub) {
    EXPECT_THAT(gesture(Lane::upper, {{22, 5}}), IsEmpty()) << "a click is no drag";
    EXPECT_THAT(gesture(Lane::upper, {{22, 5}, {22.5, 5}, {50, 5}}), ElementsAre("in 5.00"));
    EXPECT_THAT(gesture(Lane::upper, {{595, 100}, {500, 5}}), ElementsAre("out 50.00"));
}

TEST_F(TimelineGesturesTest, flagsTellWhatIsDragged) {
    gestures.press(model(), Lane::upper, {20, 5});
    EXPECT_FALSE(gestures.isDraggingTrimIn());
    gestures.move(model(), {25, 5});
    EXPECT_TRUE(gestures.isDraggingTrimIn());
    EXPECT_FALSE(gestures.isDraggingTrimOut());
    EXPECT_FALSE(gestures.draggingEdge());
    gestures.release(model(), {25, 5});
    EXPECT_FALSE(gestures.isDraggingTrimIn());

    gestures.press(model(), Lane::upper, {400, kMiddle});
    gestures.move(model(), {410, kMiddle});
    EXPECT_EQ(gestures.draggingEdge(), (TimelineHit{Kind::rightEdge, keyframes[1].id, {}}));
    gestures.cancel();
    EXPECT_FALSE(gestures.draggingEdge());

    const Point point = TimelineMarks::curvePoint(model().geometry, keyframes[0].zoomCurve[0],
                                                  TimelineGeometry::kLowerLaneHeight);
    gestures.press(model(), Lane::lower, point);
    gestures.move(model(), {point.x + 5, point.y});
    EXPECT_EQ(gestures.draggingCurvePointID(), keyframes[0].zoomCurve[0].id);
    gestures.cancel();
    EXPECT_FALSE(gestures.draggingCurvePointID());
}

TEST_F(TimelineGesturesTest, leftEdgeStopsATenthBeforeTheRight) {
    EXPECT_THAT(gesture(Lane::upper, {{100, kMiddle}, {120, kMiddle}, {300, kMiddle}, {-5, 0}}),
                ElementsAre("first 12.00-20.00", "first 19.90-20.00", "first 0.00-20.00"));
}

TEST_F(TimelineGesturesTest, rightEdgeStopsATenthBehindTheLeft) {
    EXPECT_THAT(gesture(Lane::upper, {{200, kMiddle}, {150, kMiddle}, {50, kMiddle}, {900, 0}}),
                ElementsAre("first 10.00-15.00", "first 10.00-10.10", "first 10.00-60.00"));
}

TEST_F(TimelineGesturesTest, tapOnACurveAddsAPoint) {
    const double y = TimelineGeometry::curveY(2, TimelineGeometry::kLowerLaneHeight);
    EXPECT_THAT(gesture(Lane::lower, {{350, y}}),
                ElementsAre("seek 35.00", "add second 35.00 2.00"));
}

TEST_F(TimelineGesturesTest, tapInARampAddsNothing) {
    EXPECT_THAT(gesture(Lane::lower, {{305, 50}}), ElementsAre("seek 30.50"));
    EXPECT_THAT(gesture(Lane::lower, {{395, 50}}), ElementsAre("seek 39.50"));
    EXPECT_THAT(gesture(Lane::lower, {{310, 104}}),
                ElementsAre("seek 31.00", "add second 31.00 1.00"))
        << "the ramp's end is no ramp";
}

TEST_F(TimelineGesturesTest, shortKeyframeTakesPointsInItsMiddleOnly) {
    keyframes[1] = keyframe(30, 31, 5);
    EXPECT_THAT(gesture(Lane::lower, {{304, 104}}), ElementsAre("seek 30.40"));
    EXPECT_THAT(gesture(Lane::lower, {{305, 104}}),
                ElementsAre("seek 30.50", "add second 30.50 1.00"));
}

TEST_F(TimelineGesturesTest, curvePointIsDraggedBetweenTheRamps) {
    const double y = TimelineGeometry::curveY(3.5, TimelineGeometry::kLowerLaneHeight);
    EXPECT_THAT(
        gesture(Lane::lower, {{150, y}, {151, y}, {160, y}, {0, -90}, {600, 300}}),
        ElementsAre("point first 16.00 3.50", "point first 11.00 6.00", "point first 19.00 1.00"));
    EXPECT_THAT(gesture(Lane::lower, {{150, y}}), IsEmpty()) << "a click on it is nothing";
}

TEST_F(TimelineGesturesTest, recordingWithoutALengthHasNoGestures) {
    duration = 0;
    EXPECT_THAT(gesture(Lane::upper, {{10, 5}, {50, 5}}), IsEmpty());
    EXPECT_THAT(gesture(Lane::lower, {{10, 5}, {50, 5}}), IsEmpty());
}

TEST_F(TimelineGesturesTest, keyframeThatVanishesEndsItsDrag) {
    gestures.press(model(), Lane::upper, {100, kMiddle});
    keyframes.clear();
    gestures.move(model(), {150, kMiddle});
    gestures.release(model(), {150, kMiddle});
    EXPECT_THAT(log->calls(), IsEmpty());
}

TEST_F(TimelineGesturesTest, handlesLieOverEverything) {
    trim = {10, 20, {}};
    EXPECT_EQ(hit(Lane::upper, {101, kMiddle}).kind, Kind::trimIn);
    EXPECT_EQ(hit(Lane::upper, {199, kMiddle}).kind, Kind::trimOut);
    trim = {};
    EXPECT_EQ(hit(Lane::upper, {101, kMiddle}).kind, Kind::leftEdge);
    EXPECT_EQ(hit(Lane::upper, {116, 5}).kind, Kind::body) << "an edge's area is not that tall";
    EXPECT_EQ(hit(Lane::upper, {105, 5}).kind, Kind::none) << "a ramp";
}

TEST_F(TimelineGesturesTest, handlesThatOverlapAreBothInReach) {
    trim = {30, 30.2, {}};
    EXPECT_EQ(hit(Lane::upper, {297, 5}).kind, Kind::trimIn);
    EXPECT_EQ(hit(Lane::upper, {305, 5}).kind, Kind::trimOut);
    trim = {};
    keyframes = {keyframe(30, 30.2)};
    EXPECT_EQ(hit(Lane::upper, {297, kMiddle}).kind, Kind::leftEdge);
    EXPECT_EQ(hit(Lane::upper, {305, kMiddle}).kind, Kind::rightEdge);
}

TEST_F(TimelineGesturesTest, pointerTellsWhatCanBeDragged) {
    EXPECT_EQ(pointerOver(hit(Lane::upper, {20, 5})), TimelinePointer::resizeLeftRight);
    EXPECT_EQ(pointerOver(hit(Lane::upper, {100, kMiddle})), TimelinePointer::resizeLeftRight);
    EXPECT_EQ(pointerOver(hit(Lane::upper, {150, 5})), TimelinePointer::arrow);
    const double y = TimelineGeometry::curveY(3.5, TimelineGeometry::kLowerLaneHeight);
    EXPECT_EQ(pointerOver(hit(Lane::lower, {152, y})), TimelinePointer::openHand);
    EXPECT_EQ(pointerOver(hit(Lane::lower, {160, y})), TimelinePointer::arrow);
}

TEST_F(TimelineGesturesTest, cutIsFoundUnderItsWholeHeight) {
    trim.cutSegments = {{Uuid::make(), 12, 14}};
    EXPECT_EQ(cutAt(model(), 130), trim.cutSegments[0].id);
    EXPECT_FALSE(cutAt(model(), 141));
}

} // namespace
} // namespace tavi
