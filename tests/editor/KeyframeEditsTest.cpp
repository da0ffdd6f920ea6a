#include "editor/KeyframeEdits.h"

#include <gmock/gmock.h>

#include <random>

namespace tavi {
namespace {

using testing::ElementsAre;
using testing::Field;
using testing::IsEmpty;
using testing::SizeIs;

constexpr Size kVideo{1000, 500};

ZoomKeyframe keyframe(double start, double end) {
    ZoomKeyframe made;
    made.timestamp = start;
    made.endTime = end;
    made.rect = {0, 0, 500, 250};
    made.transitionDuration = 0.5;
    return made;
}

MATCHER_P2(runs, start, end, "") {
    return arg.timestamp == start && arg.endTime == end;
}

TEST(KeyframeEdits, newKeyframeShowsTheMiddleForTwoSeconds) {
    std::vector<ZoomKeyframe> keyframes{keyframe(5, 6)};
    ASSERT_TRUE(KeyframeEdits::addKeyframe(keyframes, 1, 60, kVideo));
    ASSERT_THAT(keyframes, ElementsAre(runs(1, 3), runs(5, 6)));
    const ZoomKeyframe& added = keyframes[0];
    EXPECT_DOUBLE_EQ(added.rect.width, 700);
    EXPECT_DOUBLE_EQ(added.rect.height, 350);
    EXPECT_DOUBLE_EQ(added.rect.x, 150);
    EXPECT_DOUBLE_EQ(added.rect.y, 75);
    EXPECT_EQ(added.transitionDuration, 0.5);
    EXPECT_EQ(added.easingType, EasingType::easeInOut);
    EXPECT_THAT(added.zoomCurve, IsEmpty());
    EXPECT_THAT(added.waypoints, IsEmpty());
}

TEST(KeyframeEdits, keyframeIsAddedAtTheEndOfAnotherButNotAtItsStart) {
    std::vector<ZoomKeyframe> keyframes{keyframe(2, 4)};
    EXPECT_FALSE(KeyframeEdits::addKeyframe(keyframes, 2, 60, kVideo));
    EXPECT_FALSE(KeyframeEdits::addKeyframe(keyframes, 3.9, 60, kVideo));
    EXPECT_TRUE(KeyframeEdits::addKeyframe(keyframes, 4, 60, kVideo));
    EXPECT_THAT(keyframes, ElementsAre(runs(2, 4), runs(4, 6)));
}

TEST(KeyframeEdits, keyframeNearTheEndIsShort) {
    std::vector<ZoomKeyframe> keyframes;
    KeyframeEdits::addKeyframe(keyframes, 59, 60, kVideo);
    KeyframeEdits::addKeyframe(keyframes, 60, 60, kVideo);
    EXPECT_THAT(keyframes, ElementsAre(runs(59, 60), runs(60, 60)));
}

TEST(KeyframeEdits, newKeyframeOverlapsTheNextUntilThatIsUpdated) {
    std::vector<ZoomKeyframe> keyframes{keyframe(5, 8)};
    KeyframeEdits::addKeyframe(keyframes, 4, 60, kVideo);
    ASSERT_THAT(keyframes, ElementsAre(runs(4, 6), runs(5, 8)));
    const ZoomKeyframe next = keyframes[1];
    KeyframeEdits::updateKeyframe(keyframes, next);
    EXPECT_THAT(keyframes, ElementsAre(runs(4, 6), runs(6, 8)));
}

TEST(KeyframeEdits, updatedKeyframeKeepsToItsNeighbours) {
    std::vector<ZoomKeyframe> keyframes{keyframe(1, 2), keyframe(4, 5), keyframe(7, 8)};
    ZoomKeyframe moved = keyframes[1];
    moved.timestamp = 1.5;
    moved.endTime = 7.5;
    EXPECT_TRUE(KeyframeEdits::updateKeyframe(keyframes, moved));
    EXPECT_THAT(keyframes, ElementsAre(runs(1, 2), runs(2, 7), runs(7, 8)));
}

TEST(KeyframeEdits, updatedKeyframeMayPassOthers) {
    std::vector<ZoomKeyframe> keyframes{keyframe(1, 2), keyframe(4, 5)};
    ZoomKeyframe moved = keyframes[0];
    moved.timestamp = 6;
    moved.endTime = 7;
    KeyframeEdits::updateKeyframe(keyframes, moved);
    EXPECT_THAT(keyframes, ElementsAre(runs(4, 5), runs(6, 7)));
    EXPECT_EQ(keyframes[1].id, moved.id);
}

TEST(KeyframeEdits, curvePointsOutsideAreGoneForGood) {
    std::vector<ZoomKeyframe> keyframes{keyframe(1, 5)};
    keyframes[0].zoomCurve = {{Uuid::make(), 1, 2}, {Uuid::make(), 3, 2}, {Uuid::make(), 5, 2}};
    ZoomKeyframe shorter = keyframes[0];
    shorter.endTime = 4;
    KeyframeEdits::updateKeyframe(keyframes, shorter);
    EXPECT_THAT(keyframes[0].zoomCurve, SizeIs(2)) << "both ends belong to it";
    shorter.endTime = 5;
    shorter.zoomCurve = keyframes[0].zoomCurve;
    KeyframeEdits::updateKeyframe(keyframes, shorter);
    EXPECT_THAT(keyframes[0].zoomCurve, SizeIs(2));
}

TEST(KeyframeEdits, unknownIdsChangeNothing) {
    std::vector<ZoomKeyframe> keyframes{keyframe(1, 2)};
    const auto before = keyframes;
    EXPECT_FALSE(KeyframeEdits::updateKeyframe(keyframes, keyframe(1, 9)));
    EXPECT_FALSE(KeyframeEdits::addWaypoint(keyframes, Uuid::make(), {1.5, 0, 0}));
    EXPECT_FALSE(KeyframeEdits::addZoomCurvePoint(keyframes, Uuid::make(), {}));
    EXPECT_FALSE(KeyframeEdits::updateZoomCurvePoint(keyframes, keyframes[0].id, {}));
    EXPECT_FALSE(KeyframeEdits::updateZoomCurvePoint(keyframes, Uuid::make(), {}));
    EXPECT_FALSE(KeyframeEdits::deleteZoomCurvePoint(keyframes, Uuid::make(), Uuid::make()));
    EXPECT_EQ(keyframes, before);
}

TEST(KeyframeEdits, waypointsAreTakenOnBothEndsAndSorted) {
    std::vector<ZoomKeyframe> keyframes{keyframe(1, 3)};
    const Uuid id = keyframes[0].id;
    EXPECT_TRUE(KeyframeEdits::addWaypoint(keyframes, id, {3, 1, 1}));
    EXPECT_TRUE(KeyframeEdits::addWaypoint(keyframes, id, {1, 2, 2}));
    EXPECT_FALSE(KeyframeEdits::addWaypoint(keyframes, id, {0.99, 2, 2}));
    EXPECT_FALSE(KeyframeEdits::addWaypoint(keyframes, id, {3.01, 2, 2}));
    EXPECT_THAT(keyframes[0].waypoints,
                ElementsAre(Field(&ZoomWaypoint::time, 1), Field(&ZoomWaypoint::time, 3)));
}

TEST(KeyframeEdits, curvePointsStaySorted) {
    std::vector<ZoomKeyframe> keyframes{keyframe(1, 3)};
    const Uuid id = keyframes[0].id;
    const ZoomCurvePoint first{Uuid::make(), 2, 1.5};
    KeyframeEdits::addZoomCurvePoint(keyframes, id, first);
    KeyframeEdits::addZoomCurvePoint(keyframes, id, {Uuid::make(), 1.5, 2});
    KeyframeEdits::updateZoomCurvePoint(keyframes, id, {first.id, 1.2, 3});
    EXPECT_THAT(keyframes[0].zoomCurve,
                ElementsAre(Field(&ZoomCurvePoint::time, 1.2), Field(&ZoomCurvePoint::time, 1.5)));
    EXPECT_EQ(keyframes[0].zoomCurve[0].zoomLevel, 3);
    EXPECT_TRUE(KeyframeEdits::deleteZoomCurvePoint(keyframes, id, first.id));
    EXPECT_THAT(keyframes[0].zoomCurve, ElementsAre(Field(&ZoomCurvePoint::time, 1.5)));
}

TEST(KeyframeEdits, openEndsCloseAtTheNextStartOrTheEndOfTheVideo) {
    std::vector<ZoomKeyframe> keyframes{keyframe(8, -1), keyframe(1, -1), keyframe(3, 4)};
    EXPECT_TRUE(KeyframeEdits::normalize(keyframes, 10, 400));
    EXPECT_THAT(keyframes, ElementsAre(runs(1, 3), runs(3, 4), runs(8, 10)));
    EXPECT_THAT(keyframes[0].zoomCurve, IsEmpty()) << "as wide as the video";
}

TEST(KeyframeEdits, closedKeyframesKeepTheirOrder) {
    std::vector<ZoomKeyframe> keyframes{keyframe(8, 9), keyframe(1, 2)};
    EXPECT_FALSE(KeyframeEdits::normalize(keyframes, 10, 400));
    EXPECT_THAT(keyframes, ElementsAre(runs(8, 9), runs(1, 2)));
}

TEST(KeyframeEdits, rectangleBecomesACurveOfTwoPoints) {
    std::vector<ZoomKeyframe> keyframes{keyframe(1, 5), keyframe(6, 6.6)};
    EXPECT_TRUE(KeyframeEdits::normalize(keyframes, 10, 1000));
    ASSERT_THAT(keyframes[0].zoomCurve, SizeIs(2));
    EXPECT_EQ(keyframes[0].zoomCurve[0].time, 1.5);
    EXPECT_EQ(keyframes[0].zoomCurve[1].time, 4.5);
    EXPECT_EQ(keyframes[0].zoomCurve[0].zoomLevel, 2);
    EXPECT_EQ(keyframes[0].zoomCurve[1].zoomLevel, 2);
    ASSERT_THAT(keyframes[1].zoomCurve, SizeIs(2));
    EXPECT_DOUBLE_EQ(keyframes[1].zoomCurve[0].time, 6.3) << "the ramps meet in the middle";
    EXPECT_DOUBLE_EQ(keyframes[1].zoomCurve[1].time, 6.3);
}

TEST(KeyframeEdits, rectangleOfNearlyTheWholeWidthGetsNoCurve) {
    std::vector<ZoomKeyframe> keyframes{keyframe(1, 5), keyframe(6, 7), keyframe(8, 9)};
    keyframes[0].rect.width = 990;
    keyframes[1].rect.width = 0;
    keyframes[2].rect.width = -5;
    EXPECT_FALSE(KeyframeEdits::normalize(keyframes, 10, 1000));
    keyframes[0].rect.width = 989;
    EXPECT_TRUE(KeyframeEdits::normalize(keyframes, 10, 1000));
}

/// Random edits, as a user's mouse makes them.
class KeyframeInvariants : public testing::TestWithParam<unsigned> {};

TEST_P(KeyframeInvariants, holdAfterEveryUpdate) {
    std::mt19937 random(GetParam());
    std::uniform_real_distribution<double> moment(0, 60);
    std::vector<ZoomKeyframe> keyframes;
    for (int i = 0; i < 200; ++i) {
        KeyframeEdits::addKeyframe(keyframes, moment(random), 60, kVideo);
        ZoomKeyframe changed = keyframes[random() % keyframes.size()];
        changed.timestamp = moment(random);
        changed.endTime = changed.timestamp + moment(random) / 10;
        KeyframeEdits::addZoomCurvePoint(keyframes, changed.id, {Uuid::make(), moment(random), 2});
        KeyframeEdits::updateKeyframe(keyframes, changed);
        EXPECT_TRUE(std::ranges::is_sorted(keyframes, {}, &ZoomKeyframe::timestamp));
        for (const ZoomKeyframe& stored : keyframes) {
            EXPECT_TRUE(std::ranges::is_sorted(stored.zoomCurve, {}, &ZoomCurvePoint::time));
        }
        const auto stored = std::ranges::find(keyframes, changed.id, &ZoomKeyframe::id);
        for (const ZoomCurvePoint& point : stored->zoomCurve) {
            EXPECT_GE(point.time, stored->timestamp);
            EXPECT_LE(point.time, stored->endTime);
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Seeds, KeyframeInvariants, testing::Range(1U, 9U));

} // namespace
} // namespace tavi
