#include "project/JsonWriter.h"

#include <gtest/gtest.h>

#include <charconv>
#include <cmath>
#include <limits>
#include <random>

namespace tavi {
namespace {

std::string numberText(double number) {
    std::string text;
    appendNumber(text, number);
    return text;
}

struct NumberCase {
    double number;
    const char* text;
};

class JsonNumber : public testing::TestWithParam<NumberCase> {};

TEST_P(JsonNumber, hasItsShortestForm) {
    EXPECT_EQ(numberText(GetParam().number), GetParam().text);
}

INSTANTIATE_TEST_SUITE_P(
    Forms, JsonNumber,
    testing::Values(NumberCase{60, "60"}, NumberCase{0, "0"}, NumberCase{-3, "-3"},
                    NumberCase{0.1, "0.1"}, NumberCase{1.0 / 3, "0.3333333333333333"},
                    NumberCase{1e-5, "0.00001"}, NumberCase{1.5e-5, "0.000015"},
                    NumberCase{9007199254740993.0, "9007199254740992"},
                    NumberCase{9999999999999998.0, "9999999999999998"}, NumberCase{1e16, "1e+16"},
                    NumberCase{9.9e-6, "9.9e-06"}, NumberCase{789003250.25, "789003250.25"}));

TEST(JsonNumber, everyDoubleReadsBackToItself) {
    std::mt19937_64 random(1);
    for (int i = 0; i < 200'000; ++i) {
        const double number = std::bit_cast<double>(random());
        if (!std::isfinite(number)) {
            continue;
        }
        const std::string text = numberText(number);
        double back = 0;
        std::from_chars(text.data(), text.data() + text.size(), back);
        ASSERT_EQ(back, number) << text;
        const double magnitude = std::fabs(number);
        if (magnitude >= 1e-5 && magnitude < 1e16) {
            ASSERT_EQ(text.find('e'), std::string::npos) << text;
        }
    }
}

TEST(JsonWriter, escapesTextAsTheFilesDo) {
    JsonWriter json;
    json.value("a/b\"c\\d\b\f\n\r\t\x01\x1f é ⌘");
    EXPECT_EQ(json.finish().value(), R"("a\/b\"c\\d\b\f\n\r\t\u0001\u001f é ⌘")");
}

TEST(JsonWriter, isCompactAndKeepsTheOrderOfKeys) {
    JsonWriter json;
    json.beginObject();
    json.field("z", true);
    json.key("a");
    json.beginArray();
    json.value(1);
    json.null();
    json.beginObject();
    json.endObject();
    json.endArray();
    json.field("m", std::string("x"));
    json.endObject();
    EXPECT_EQ(json.finish().value(), R"({"z":true,"a":[1,null,{}],"m":"x"})");
}

TEST(JsonWriter, aNumberThatIsNotFiniteFailsTheTextAndNamesItsKey) {
    for (const double number : {double(NAN), double(INFINITY), -double(INFINITY)}) {
        JsonWriter json;
        json.beginObject();
        json.field("duration", number);
        json.endObject();
        const auto text = json.finish();
        ASSERT_FALSE(text);
        EXPECT_EQ(text.error().kind, JsonError::Kind::notFinite);
        EXPECT_EQ(text.error().detail, "duration");
    }
}

} // namespace
} // namespace tavi
