#include "editor/CustomOutput.h"

#include "editor/EditorText.h"

#include <gtest/gtest.h>

#include <limits>

namespace tavi {
namespace {

constexpr Size kSource{1920, 1080};

TEST(CustomOutput, widthIsEvenedAndTheHeightFollows) {
    EXPECT_EQ(customSizeForWidth("1921", kSource), (Size{1922, 1082}));
    EXPECT_EQ(customSizeForWidth("1280", kSource), (Size{1280, 720}));
    EXPECT_EQ(customSizeForWidth("1000", {1000, 1000}), (Size{1000, 1000}));
}

TEST(CustomOutput, heightIsEvenedAndTheWidthFollows) {
    EXPECT_EQ(customSizeForHeight("719", kSource), (Size{1280, 720}));
    EXPECT_EQ(customSizeForHeight("9999", kSource), (Size{7680, 4320}));
}

TEST(CustomOutput, widthIsLimitedBeforeItIsEvened) {
    EXPECT_EQ(customSizeForWidth("9000", kSource), (Size{7680, 4320}));
    EXPECT_EQ(customSizeForWidth("7679", kSource), (Size{7680, 4320}));
    EXPECT_EQ(customSizeForWidth("99999999999999999999999999", kSource), (Size{7680, 4320}));
}

TEST(CustomOutput, otherSideHasNoLimitOfItsOwn) {
    EXPECT_EQ(customSizeForWidth("7680", {100, 1000}), (Size{7680, 76800}));
}

TEST(CustomOutput, sourceWithoutHeightCountsAsSixteenToNine) {
    EXPECT_EQ(customSizeForWidth("1600", {0, 0}), (Size{1600, 900}));
}

TEST(CustomOutput, nothingButDigitsCounts) {
    for (const char* text : {"", "0", "000", "-5", "+5", " 5", "5 ", "12.5", "abc", "１２"}) {
        EXPECT_FALSE(customSizeForWidth(text, kSource)) << text;
        EXPECT_FALSE(customSizeForHeight(text, kSource)) << text;
        EXPECT_FALSE(customFrameRate(text)) << text;
    }
}

TEST(CustomOutput, frameRateIsAtMostAHundredAndTwenty) {
    EXPECT_EQ(customFrameRate("24"), 24);
    EXPECT_EQ(customFrameRate("120"), 120);
    EXPECT_EQ(customFrameRate("500"), 120);
}

TEST(EditorText, timeIsMinutesSecondsAndThirtieths) {
    EXPECT_EQ(timeText(0), "00:00:00");
    EXPECT_EQ(timeText(65.5), "01:05:15");
    EXPECT_EQ(timeText(59.999), "00:59:29");
    EXPECT_EQ(timeText(3725), "62:05:00");
    EXPECT_EQ(timeText(-1), "00:00:00");
    EXPECT_EQ(timeText(std::numeric_limits<double>::quiet_NaN()), "00:00:00");
}

TEST(EditorText, remainingTimeIsWholeSeconds) {
    EXPECT_EQ(wholeMinutes(5.9), (WholeMinutes{0, 5}));
    EXPECT_EQ(wholeMinutes(65), (WholeMinutes{1, 5}));
    EXPECT_EQ(wholeMinutes(60), (WholeMinutes{1, 0}));
    EXPECT_EQ(wholeMinutes(3700), (WholeMinutes{61, 40}));
}

} // namespace
} // namespace tavi
