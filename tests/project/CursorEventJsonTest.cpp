#include "project/CursorEventJson.h"

#include <gtest/gtest.h>

namespace tavi {
namespace {

Result<CursorEvent, JsonError> decodeEvent(const std::string& json) {
    return decodeRecord<CursorEvent>(json);
}

std::string encoded(const CursorEvent& event) {
    JsonWriter json;
    write(json, event);
    return json.finish().value();
}

std::string eventWith(const std::string& extra) {
    return R"({"timestamp":1.5,"x":2,"y":3,"eventType":"keyDown","cursorImageId":1)" + extra + "}";
}

TEST(CursorEventJson, aMoveHasNoKeyFieldsInEitherDirection) {
    CursorEvent event;
    event.timestamp = 0.25;
    event.x = 10;
    event.y = 20.5;
    const std::string json = encoded(event);
    EXPECT_EQ(json, R"({"timestamp":0.25,"x":10,"y":20.5,"eventType":"move","cursorImageId":0})");
    const auto back = decodeEvent(json);
    ASSERT_TRUE(back);
    EXPECT_EQ(*back, event);
    EXPECT_FALSE(back->keyCharacter);
    EXPECT_FALSE(back->keyModifiers);
}

TEST(CursorEventJson, aKeyDownKeepsItsCharacterAndModifiers) {
    CursorEvent event;
    event.eventType = CursorEventType::keyDown;
    event.keyCharacter = "é";
    event.keyModifiers = 18446744073709551615ull;
    const auto back = decodeEvent(encoded(event));
    ASSERT_TRUE(back);
    EXPECT_EQ(*back, event);
}

TEST(CursorEventJson, everyTypeHasItsRawValue) {
    for (const char* name :
         {"move", "leftClick", "rightClick", "scroll", "leftMouseDown", "leftMouseUp", "keyDown"}) {
        const auto event = decodeEvent(std::string(R"({"timestamp":0,"x":0,"y":0,"eventType":")") +
                                       name + R"(","cursorImageId":0})");
        ASSERT_TRUE(event) << name;
        EXPECT_EQ(rawValue(event->eventType), name);
    }
}

TEST(CursorEventJson, anUnknownTypeFails) {
    const auto event =
        decodeEvent(R"({"timestamp":0,"x":0,"y":0,"eventType":"Move","cursorImageId":0})");
    ASSERT_FALSE(event);
    EXPECT_EQ(event.error().kind, JsonError::Kind::badValue);
    EXPECT_EQ(event.error().detail, "eventType");
}

TEST(CursorEventJson, eachOfTheFiveFirstKeysIsRequired) {
    for (const char* json : {R"({"x":0,"y":0,"eventType":"move","cursorImageId":0})",
                             R"({"timestamp":0,"y":0,"eventType":"move","cursorImageId":0})",
                             R"({"timestamp":0,"x":0,"eventType":"move","cursorImageId":0})",
                             R"({"timestamp":0,"x":0,"y":0,"cursorImageId":0})",
                             R"({"timestamp":0,"x":0,"y":0,"eventType":"move"})"}) {
        const auto event = decodeEvent(json);
        ASSERT_FALSE(event) << json;
        EXPECT_EQ(event.error().kind, JsonError::Kind::missingKey);
    }
}

struct FieldCase {
    const char* extra;
    bool decodes;
};

class CursorEventField : public testing::TestWithParam<FieldCase> {};

TEST_P(CursorEventField, followsTheRulesOfReading) {
    EXPECT_EQ(decodeEvent(eventWith(GetParam().extra)).has_value(), GetParam().decodes)
        << GetParam().extra;
}

INSTANTIATE_TEST_SUITE_P(
    Rules, CursorEventField,
    testing::Values(
        FieldCase{"", true}, FieldCase{R"(,"keyCharacter":null)", true},
        FieldCase{R"(,"keyCharacter":5)", false}, FieldCase{R"(,"keyModifiers":131072.0)", true},
        FieldCase{R"(,"keyModifiers":1.5)", false}, FieldCase{R"(,"keyModifiers":-1)", false},
        FieldCase{R"(,"keyModifiers":1e20)", false}, FieldCase{R"(,"cursorImageId":-7)", true},
        FieldCase{R"(,"cursorImageId":60.5)", false}, FieldCase{R"(,"cursorImageId":null)", false},
        FieldCase{R"(,"cursorImageId":99999999999999999999)", false},
        FieldCase{R"(,"timestamp":99999999999999999999)", true},
        FieldCase{R"(,"timestamp":1e400)", false}, FieldCase{R"(,"timestamp":"1")", false},
        FieldCase{R"(,"timestamp":true)", false},
        FieldCase{R"(,"unknown":{"deep":[1,2,{"x":null}]})", true}));

TEST(CursorEventJson, ofDuplicateKeysTheLastCounts) {
    const auto event = decodeEvent(eventWith(R"(,"x":7,"x":8)"));
    ASSERT_TRUE(event);
    EXPECT_EQ(event->x, 8);
}

TEST(CursorEventJson, longWholeNumbersAreReadAsDoubles) {
    const auto event = decodeEvent(eventWith(R"(,"x":123456789012345678901234567890,"y":-1e3)"));
    ASSERT_TRUE(event);
    EXPECT_EQ(event->x, 123456789012345678901234567890.0);
    EXPECT_EQ(event->y, -1000);
}

TEST(CursorEventJson, aFieldBeyondManyUnknownOnesIsFound) {
    std::string extra;
    for (int i = 0; i < 100; ++i) {
        extra += ",\"k" + std::to_string(i) + "\":" + std::to_string(i);
    }
    const auto event = decodeEvent(eventWith(extra + R"(,"x":42)"));
    ASSERT_TRUE(event);
    EXPECT_EQ(event->x, 42);
}

} // namespace
} // namespace tavi
