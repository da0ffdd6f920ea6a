#include "cursor/Keystrokes.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace tavi {
namespace {

constexpr std::uint64_t kControl = 0x40000;
constexpr std::uint64_t kOption = 0x80000;
constexpr std::uint64_t kShift = 0x20000;
constexpr std::uint64_t kCommand = 0x100000;

CursorEvent press(double time, std::optional<std::string> character,
                  std::optional<std::uint64_t> modifiers = {}) {
    return {time, 0, 0, CursorEventType::keyDown, 0, std::move(character), modifiers};
}

std::vector<std::string> labels(const std::vector<CursorEvent>& events, double time,
                                double duration) {
    std::vector<std::string> out;
    for (const auto& keystroke : visibleKeystrokes(events, time, duration)) {
        out.push_back(keystroke.character);
    }
    return out;
}

TEST(KeystrokeLabel, namedKeysHaveSymbols) {
    EXPECT_EQ(keystrokeLabel("Return"), "↩");
    EXPECT_EQ(keystrokeLabel("Tab"), "⇥");
    EXPECT_EQ(keystrokeLabel("Space"), "␣");
    EXPECT_EQ(keystrokeLabel("Delete"), "⌫");
    EXPECT_EQ(keystrokeLabel("ForwardDelete"), "⌦");
    EXPECT_EQ(keystrokeLabel("Escape"), "⎋");
}

TEST(KeystrokeLabel, arrowsStayAsTheyAre) {
    for (const char* arrow : {"←", "→", "↑", "↓"}) {
        EXPECT_EQ(keystrokeLabel(arrow), arrow);
    }
}

TEST(KeystrokeLabel, anythingElseIsInUpperCase) {
    EXPECT_EQ(keystrokeLabel("a"), "A");
    EXPECT_EQ(keystrokeLabel("é"), "É");
    EXPECT_EQ(keystrokeLabel("ß"), "SS");
    EXPECT_EQ(keystrokeLabel("i"), "I");
    EXPECT_EQ(keystrokeLabel("7"), "7");
    EXPECT_EQ(keystrokeLabel("F12"), "F12");
    EXPECT_EQ(keystrokeLabel("return"), "RETURN"); // names are exact
    EXPECT_EQ(keystrokeLabel(""), "");
}

TEST(ModifierSymbols, absentAndZeroGiveTheEmptyText) {
    EXPECT_EQ(modifierSymbols(std::nullopt), "");
    EXPECT_EQ(modifierSymbols(0), "");
    EXPECT_EQ(modifierSymbols(0x10000 | 0x200000 | 1), ""); // other flags
}

TEST(ModifierSymbols, theOrderIsAlwaysTheSame) {
    EXPECT_EQ(modifierSymbols(kControl), "⌃");
    EXPECT_EQ(modifierSymbols(kOption), "⌥");
    EXPECT_EQ(modifierSymbols(kShift), "⇧");
    EXPECT_EQ(modifierSymbols(kCommand), "⌘");
    EXPECT_EQ(modifierSymbols(kCommand | kShift), "⇧⌘");
    EXPECT_EQ(modifierSymbols(kCommand | kShift | kOption | kControl), "⌃⌥⇧⌘");
    EXPECT_EQ(modifierSymbols(~0ull), "⌃⌥⇧⌘");
}

TEST(VisibleKeystrokes, aWithCommandAndShiftShowsShiftBeforeCommandAndAnUpperCaseLabel) {
    const std::vector<CursorEvent> log{press(1, "a", kCommand | kShift)};
    const std::vector<VisibleKeystroke> expected{{"⇧⌘", "A", 1}};
    EXPECT_EQ(visibleKeystrokes(log, 1, 2.5), expected);
}

TEST(VisibleKeystrokes, aKeyWithoutCharacterGivesNoChipEvenWithModifiers) {
    const std::vector<CursorEvent> log{press(1, std::nullopt, kCommand), press(1, "", kCommand)};
    EXPECT_TRUE(visibleKeystrokes(log, 1, 2.5).empty());
}

TEST(VisibleKeystrokes, onlyKeyPressesMakeChips) {
    CursorEvent click = press(1, "a");
    click.eventType = CursorEventType::rightClick;
    EXPECT_TRUE(visibleKeystrokes(std::vector{click}, 1, 2.5).empty());
}

TEST(VisibleKeystrokes, bothEndsOfTheWindowAreIncluded) {
    const std::vector<CursorEvent> log{press(2, "a")};
    EXPECT_EQ(labels(log, 2, 2.5).size(), 1u);
    EXPECT_EQ(labels(log, std::nextafter(2.0, 0), 2.5).size(), 0u);
    EXPECT_EQ(labels(log, 4.5, 2.5).size(), 1u);
    EXPECT_EQ(labels(log, std::nextafter(4.5, 9), 2.5).size(), 0u);
}

TEST(VisibleKeystrokes, aKeyExactlyItsDurationOldIsShownAtOpacityZero) {
    const std::vector<CursorEvent> log{press(0, "a")};
    EXPECT_EQ(labels(log, 2.5, 2.5), std::vector<std::string>{"A"});
    EXPECT_EQ(keystrokeOpacity(2.5, 2.5), 0);
}

TEST(VisibleKeystrokes, of25PressesTheLast20AreShown) {
    std::vector<CursorEvent> log;
    std::vector<std::string> expected;
    for (int i = 0; i < 25; ++i) {
        log.push_back(press(i * 0.01, std::string(1, static_cast<char>('a' + i))));
        if (i >= 5) {
            expected.emplace_back(1, static_cast<char>('A' + i));
        }
    }
    EXPECT_EQ(labels(log, 0.3, 2.5), expected);
}

TEST(VisibleKeystrokes, chipsStandInLogOrderWhateverTheirTimes) {
    const std::vector<CursorEvent> log{press(1.2, "a"), press(1.1, "b"), press(1.3, "c")};
    EXPECT_EQ(labels(log, 2, 2.5), (std::vector<std::string>{"A", "B", "C"}));
}

TEST(VisibleKeystrokes, aDurationOfZeroShowsTheMomentOnly) {
    const std::vector<CursorEvent> log{press(1, "a"), press(1.1, "b")};
    EXPECT_EQ(labels(log, 1, 0), std::vector<std::string>{"A"});
    EXPECT_TRUE(labels(log, 1, -1).empty());
}

TEST(KeystrokeOpacity, isFullForThreeQuartersAndThenFallsWithTheSquare) {
    EXPECT_EQ(keystrokeOpacity(0, 2), 1);
    EXPECT_EQ(keystrokeOpacity(1.499, 2), 1);
    EXPECT_EQ(keystrokeOpacity(1.5, 2), 1);
    EXPECT_EQ(keystrokeOpacity(1.75, 2), 0.75);
    EXPECT_EQ(keystrokeOpacity(2, 2), 0);
    EXPECT_EQ(keystrokeOpacity(3, 2), 0);
}

TEST(KeystrokeOpacity, isNeverNotANumber) {
    EXPECT_EQ(keystrokeOpacity(0, 0), 0);
    EXPECT_EQ(keystrokeOpacity(1, 0), 0);
    constexpr double kMost = std::numeric_limits<double>::max();
    EXPECT_EQ(keystrokeOpacity(1, kMost), 1);
    EXPECT_EQ(keystrokeOpacity(kMost, 1), 0);
}

TEST(KeystrokeMetrics, followTheOutputWidthAndTheSize) {
    EXPECT_EQ(keystrokeSizeFactor(KeystrokeSize::small), 0.825);
    EXPECT_EQ(keystrokeSizeFactor(KeystrokeSize::medium), 1.1);
    EXPECT_EQ(keystrokeSizeFactor(KeystrokeSize::large), 1.485);
    const KeystrokeMetrics m(3840, KeystrokeSize::medium);
    EXPECT_DOUBLE_EQ(m.scale, 2.2);
    EXPECT_DOUBLE_EQ(m.labelFontSize, 14 * 2.2);
    EXPECT_DOUBLE_EQ(m.modifierFontSize, 0.85 * 14 * 2.2);
    EXPECT_DOUBLE_EQ(m.chipHeight, 14 * 2.2 + 8 * 2.2);
    EXPECT_DOUBLE_EQ(m.pillHeight, m.chipHeight + 12 * 2.2);
    EXPECT_DOUBLE_EQ(m.chipSpacing, 4 * 2.2);
    EXPECT_DOUBLE_EQ(m.pillPaddingX, 10 * 2.2);
    EXPECT_DOUBLE_EQ(m.pillPaddingY, 6 * 2.2);
    EXPECT_DOUBLE_EQ(m.textInsetX, 8 * 2.2);
    EXPECT_DOUBLE_EQ(m.textInsetY, 4 * 2.2);
    EXPECT_DOUBLE_EQ(m.modifierSpacing, 2 * 2.2);
}

TEST(KeystrokeMetrics, aVeryNarrowOutputStillHasAMainFontSizeOf9) {
    const KeystrokeMetrics m(100, KeystrokeSize::small);
    EXPECT_EQ(m.labelFontSize, 9);
    EXPECT_EQ(m.modifierFontSize, 0.85 * 9);
    EXPECT_DOUBLE_EQ(m.chipHeight, 9 + 8 * (100.0 / 1920 * 0.825));
    EXPECT_EQ(KeystrokeMetrics(0, KeystrokeSize::large).labelFontSize, 9);
}

/// Ten pixels a byte for labels, five for modifiers; the height is the font's.
Size measureByBytes(std::string_view text, KeystrokeFont font, double fontSize) {
    return {static_cast<double>(text.size()) * (font == KeystrokeFont::label ? 10 : 5), fontSize};
}

CursorSettings showing() {
    CursorSettings settings;
    settings.showKeystrokes = true;
    return settings;
}

TEST(KeystrokeLayout, isAbsentWithChipsOffWithoutLookingAtTheLog) {
    const auto neverCalled = [](std::string_view, KeystrokeFont, double) -> Size {
        ADD_FAILURE();
        return {};
    };
    EXPECT_FALSE(layoutKeystrokes(std::vector{press(0, "a")}, 0, {1920, 1080}, {}, neverCalled));
}

TEST(KeystrokeLayout, isAbsentWithoutAVisibleChip) {
    EXPECT_FALSE(layoutKeystrokes({}, 0, {1920, 1080}, showing(), measureByBytes));
    EXPECT_FALSE(
        layoutKeystrokes(std::vector{press(9, "a")}, 0, {1920, 1080}, showing(), measureByBytes));
}

TEST(KeystrokeLayout, centresThePillAndLinesTheChipsUp) {
    const std::vector<CursorEvent> log{press(1, "ab", kCommand), press(2, "c")};
    const auto layout = layoutKeystrokes(log, 3, {1920, 1080}, showing(), measureByBytes);
    ASSERT_TRUE(layout);
    const double s = 1.1;
    const double first = 2 * (8 * s) + 20 + 15 + 2 * s; // "⌘" is three bytes
    const double second = 2 * (8 * s) + 10;
    const double chipHeight = 14 * s + 8 * s;
    const double pillWidth = 20 * s + 4 * s + first + second;
    EXPECT_DOUBLE_EQ(layout->pill.width, pillWidth);
    EXPECT_DOUBLE_EQ(layout->pill.height, chipHeight + 12 * s);
    EXPECT_DOUBLE_EQ(layout->pill.x, (1920 - pillWidth) / 2);
    EXPECT_DOUBLE_EQ(layout->pill.y, 1080 * 0.04);
    ASSERT_EQ(layout->chipRects.size(), 2u);
    const Rect a = layout->chipRects[0];
    const Rect b = layout->chipRects[1];
    EXPECT_DOUBLE_EQ(a.x, layout->pill.x + 10 * s);
    EXPECT_DOUBLE_EQ(a.y, layout->pill.y + 6 * s);
    EXPECT_DOUBLE_EQ(a.width, first);
    EXPECT_DOUBLE_EQ(a.height, chipHeight);
    EXPECT_DOUBLE_EQ(b.x, a.maxX() + 4 * s);
    EXPECT_DOUBLE_EQ(b.maxX(), layout->pill.maxX() - 10 * s);
    EXPECT_EQ(layout->bitmapWidth, 1920);
    EXPECT_EQ(layout->bitmapHeight, std::ceil(8 * s + 1080 * 0.04 + chipHeight + 12 * s));
}

TEST(KeystrokeLayout, carriesTextsSizesAndFadeOfEachChip) {
    const std::vector<CursorEvent> log{press(0, "ab", kOption), press(2, "Return")};
    const auto layout = layoutKeystrokes(log, 2.5, {1920, 1080}, showing(), measureByBytes);
    ASSERT_TRUE(layout);
    ASSERT_EQ(layout->chips.size(), 2u);
    EXPECT_EQ(layout->chips[0].modSymbols, "⌥");
    EXPECT_EQ(layout->chips[0].charLabel, "AB");
    EXPECT_EQ(layout->chips[0].opacity, 0);
    EXPECT_DOUBLE_EQ(layout->chips[0].modSize.height, 0.85 * 14 * 1.1);
    EXPECT_DOUBLE_EQ(layout->chips[0].charSize.height, 14 * 1.1);
    EXPECT_EQ(layout->chips[1].charLabel, "↩");
    EXPECT_EQ(layout->chips[1].modSize, (Size{0, 0}));
    EXPECT_EQ(layout->chips[1].opacity, 1);
}

TEST(KeystrokeLayout, theBitmapIsCutToWholePixels) {
    const auto layout =
        layoutKeystrokes(std::vector{press(0, "a")}, 0, {1279.9, 719.5}, showing(), measureByBytes);
    ASSERT_TRUE(layout);
    EXPECT_EQ(layout->bitmapWidth, 1279);
}

TEST(KeystrokeLayout, anAbsurdOutputSizeIsHeldInRange) {
    const std::vector<CursorEvent> log{press(0, "a")};
    const auto huge = layoutKeystrokes(log, 0, {1e15, 1e15}, showing(), measureByBytes);
    ASSERT_TRUE(huge);
    EXPECT_EQ(huge->bitmapWidth, std::numeric_limits<int>::max());
    const auto negative = layoutKeystrokes(log, 0, {-5, -1e6}, showing(), measureByBytes);
    ASSERT_TRUE(negative);
    EXPECT_EQ(negative->bitmapWidth, 0);
    EXPECT_EQ(negative->bitmapHeight, 0);
}

} // namespace
} // namespace tavi
