#include "project/ZoomKeyframeJson.h"

#include <gtest/gtest.h>

namespace tavi {
namespace {

const std::string kId = "2AAB58AC-5354-2B3C-900B-F5F719B097A2";
const std::string kRequired = R"({"id":")" + kId +
                              R"(","timestamp":1,"rect":[[1,2],[3,4]],)"
                              R"("transitionDuration":0.5,"easingType":"Ease In-Out")";

template<typename T>
std::string encoded(const T& value) {
    JsonWriter json;
    write(json, value);
    return json.finish().value();
}

TEST(ZoomKeyframeJson, isWrittenWithAllKeysInFieldOrder) {
    ZoomKeyframe k;
    k.id = *Uuid::parse(kId);
    k.timestamp = 1;
    k.endTime = 4.5;
    k.rect = {1, 2, 3, 4};
    k.waypoints = {{2, 5, 6}};
    k.zoomCurve = {{*Uuid::parse(kId), 3, 2.5}};
    k.transitionDuration = 0.5;
    k.easingType = EasingType::spring;
    const std::string json = encoded(k);
    EXPECT_EQ(json, R"({"id":")" + kId +
                        R"(","timestamp":1,"endTime":4.5,"rect":[[1,2],[3,4]],)"
                        R"("waypoints":[{"time":2,"centerX":5,"centerY":6}],"zoomCurve":[{"id":")" +
                        kId +
                        R"(","time":3,"zoomLevel":2.5}],"transitionDuration":0.5,)"
                        R"("easingType":"Spring"})");
    EXPECT_EQ(decodeRecord<ZoomKeyframe>(json).value(), k);
}

TEST(ZoomKeyframeJson, aKeyframeWithoutAnEndDecodesAsMarked) {
    const auto k = decodeRecord<ZoomKeyframe>(kRequired + "}");
    ASSERT_TRUE(k);
    EXPECT_EQ(k->endTime, -1.0);
    EXPECT_TRUE(k->waypoints.empty());
    EXPECT_TRUE(k->zoomCurve.empty());
}

TEST(ZoomKeyframeJson, anIdIsReadInLowerCaseAndWrittenInUpperCase) {
    std::string json = kRequired + "}";
    json.replace(json.find("2AAB"), 4, "2aab");
    EXPECT_NE(encoded(decodeRecord<ZoomKeyframe>(json).value()).find(kId), std::string::npos);
}

TEST(ZoomKeyframeJson, eachEasingHasItsRawValueAndOthersFail) {
    for (const char* name : {"Linear", "Ease In", "Ease Out", "Ease In-Out", "Spring"}) {
        std::string json = kRequired + R"(,"easingType":")" + name + "\"}";
        EXPECT_EQ(rawValue(decodeRecord<ZoomKeyframe>(json).value().easingType), name);
    }
    EXPECT_FALSE(decodeRecord<ZoomKeyframe>(kRequired + R"(,"easingType":"linear"})"));
}

TEST(ZoomKeyframeJson, eachRequiredKeyIsRequired) {
    for (const char* key : {"id", "timestamp", "rect", "transitionDuration", "easingType"}) {
        std::string json = kRequired + "}";
        json.replace(json.find(std::string("\"") + key + "\"") + 1, 1, "X");
        const auto k = decodeRecord<ZoomKeyframe>(json);
        ASSERT_FALSE(k) << key;
        EXPECT_EQ(k.error().detail, key);
    }
}

TEST(ZoomKeyframeJson, aRectNeedsTwoPairsAndIgnoresMore) {
    const auto withRect = [](const std::string& rect) {
        return decodeRecord<ZoomKeyframe>(kRequired + R"(,"rect":)" + rect + "}");
    };
    EXPECT_EQ(withRect("[[1,2,9],[3,4,9],9]").value().rect, (Rect{1, 2, 3, 4}));
    for (const char* rect : {"[]", "[[1,2]]", "[[1],[3,4]]", "[[1,2],[3]]", "[1,2,3,4]",
                             "[[1,2],[3,null]]", "null", "{}"}) {
        EXPECT_FALSE(withRect(rect)) << rect;
    }
}

TEST(ZoomWaypointJson, aLegacyRectIsReadAsItsMiddleAndNotWrittenBack) {
    const auto waypoint = decodeRecord<ZoomWaypoint>(R"({"time":1,"rect":[[10,20],[100,50]]})");
    ASSERT_TRUE(waypoint);
    EXPECT_EQ(*waypoint, (ZoomWaypoint{1, 60, 45}));
    EXPECT_EQ(encoded(*waypoint), R"({"time":1,"centerX":60,"centerY":45})");
}

TEST(ZoomWaypointJson, aFullCentreWinsOverALegacyRect) {
    const auto waypoint = decodeRecord<ZoomWaypoint>(
        R"({"time":1,"centerX":7,"centerY":8,"rect":[[10,20],[100,50]]})");
    EXPECT_EQ(waypoint.value(), (ZoomWaypoint{1, 7, 8}));
}

TEST(ZoomWaypointJson, halfACentreFallsBackToTheRect) {
    EXPECT_EQ(decodeRecord<ZoomWaypoint>(
                  R"({"time":1,"centerX":7,"centerY":null,"rect":[[10,20],[100,50]]})")
                  .value(),
              (ZoomWaypoint{1, 60, 45}));
    EXPECT_FALSE(decodeRecord<ZoomWaypoint>(R"({"time":1,"centerX":7})"));
    EXPECT_FALSE(decodeRecord<ZoomWaypoint>(R"({"time":1})"));
    EXPECT_FALSE(decodeRecord<ZoomWaypoint>(R"({"time":1,"centerX":"7","centerY":8})"));
}

} // namespace
} // namespace tavi
