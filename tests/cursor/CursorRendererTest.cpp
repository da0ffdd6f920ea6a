#include "cursor/CursorRenderer.h"

#include "cursor/Keystrokes.h"
#include "support/RandomLog.h"

#include <gtest/gtest.h>

#include <cmath>

namespace tavi {
namespace {

using enum CursorEventType;
constexpr double kHeight = 1000;

CursorEvent at(double time, double x, double y, CursorEventType type = move, int image = 0) {
    return {time, x, y, type, image, {}, {}};
}

CursorRenderer renderer(std::vector<CursorEvent> events,
                        CursorSmoothingPreset preset = CursorSmoothingPreset::none) {
    CursorSettings settings;
    settings.smoothingPreset = preset;
    settings.showClickEffect = true;
    return CursorRenderer::make(std::move(events), kHeight, settings);
}

/// A renderer whose path is the given samples, not smoothed from the log.
CursorRenderer onPath(std::vector<SmoothedCursorSample> samples) {
    CursorRenderer r = renderer({}, CursorSmoothingPreset::medium);
    r.smoothedSamples = std::move(samples);
    return r;
}

TEST(CursorRenderer, anEmptyLogHasNoPositionForEveryPreset) {
    for (int preset = 0; preset < 5; ++preset) {
        const auto empty = renderer({}, static_cast<CursorSmoothingPreset>(preset));
        EXPECT_FALSE(empty.position(0));
        EXPECT_EQ(empty.cursorImageId(0), 0);
        EXPECT_TRUE(empty.clickEffects(0).empty());
        EXPECT_TRUE(empty.recentKeyPresses(0).empty());
    }
}

TEST(CursorRenderer, beforeTheFirstAndAfterTheLastEventThePointerStandsStill) {
    const auto r = renderer({at(1, 10, 20), at(2, 30, 40)});
    EXPECT_EQ(r.position(-5), (Point{10, 980}));
    EXPECT_EQ(r.position(1), (Point{10, 980}));
    EXPECT_EQ(r.position(2), (Point{30, 960}));
    EXPECT_EQ(r.position(99), (Point{30, 960}));
}

TEST(CursorRenderer, thePositionIsInterpolatedAndFlipped) {
    const auto r = renderer({at(1, 10, 20), at(2, 30, 40), at(4, 50, 0)});
    EXPECT_EQ(r.position(1.25), (Point{15, 975}));
    EXPECT_EQ(r.position(2), (Point{30, 960}));
    EXPECT_EQ(r.position(3), (Point{40, 980}));
}

TEST(CursorRenderer, theSmoothedPathIsNotFlippedAgain) {
    const auto r = onPath({{0, 10, 20}, {1, 30, 60}});
    EXPECT_EQ(r.position(-1), (Point{10, 20}));
    EXPECT_EQ(r.position(0.5), (Point{20, 40}));
    EXPECT_EQ(r.position(1), (Point{30, 60}));
}

TEST(CursorRenderer, withThePresetNoneTheSamplesAreNotRead) {
    CursorRenderer r = renderer({at(0, 1, 2), at(1, 3, 4)});
    r.smoothedSamples = {{0, 500, 500}};
    EXPECT_EQ(r.position(0), (Point{1, 998}));
}

TEST(CursorRenderer, withoutSamplesTheLogIsRead) {
    CursorRenderer r = renderer({at(0, 1, 2), at(1, 3, 4)}, CursorSmoothingPreset::medium);
    r.smoothedSamples.clear();
    EXPECT_EQ(r.position(0.5), (Point{2, 997}));
}

TEST(CursorRenderer, atTwoSamplesOfOneTimeTheSearchEndsOnTheLater) {
    const auto r = onPath({{0, 0, 0}, {1, 10, 10}, {1, 20, 20}, {2, 30, 30}});
    EXPECT_EQ(r.position(1), (Point{20, 20}));
    EXPECT_EQ(r.position(std::nextafter(1.0, 0))->x, 10 * std::nextafter(1.0, 0));
}

TEST(CursorRenderer, neighboursOfOneTimeGiveTheEarlierWithoutDividing) {
    // No moment lies between them; only the search for no number ends there.
    const auto r = onPath({{1, 10, 10}, {1, 20, 20}, {2, 30, 30}});
    EXPECT_EQ(r.position(std::numeric_limits<double>::quiet_NaN()), (Point{10, 10}));
}

TEST(CursorRenderer, aPathOutOfOrderIsSearchedAsItStands) {
    const auto r = onPath({{0, 1, 1}, {5, 10, 10}, {3, 20, 20}});
    EXPECT_EQ(r.position(3), (Point{20, 20})); // at or after the last
    EXPECT_EQ(r.position(2.5), (Point{1 + 9 * 0.5, 1 + 9 * 0.5}));
    // The search for 1.5 goes by the middle, at 0.9, to the upper half.
    const auto s = onPath({{0, 1, 1}, {1, 10, 10}, {0.9, 20, 20}, {0.8, 25, 25}, {2, 37, 37}});
    EXPECT_DOUBLE_EQ(s.position(1.4)->x, 25 + 12 * 0.5);
}

TEST(CursorRenderer, theImageChangesAtTheEvent) {
    const auto r = renderer({at(1, 0, 0, move, 4), at(2, 0, 0, move, 5), at(3, 0, 0, move, 6)});
    EXPECT_EQ(r.cursorImageId(0), 4);
    EXPECT_EQ(r.cursorImageId(1), 4);
    EXPECT_EQ(r.cursorImageId(std::nextafter(2.0, 0)), 4);
    EXPECT_EQ(r.cursorImageId(2), 5);
    EXPECT_EQ(r.cursorImageId(2.999), 5);
    EXPECT_EQ(r.cursorImageId(3), 6);
    EXPECT_EQ(r.cursorImageId(9), 6);
}

TEST(CursorRenderer, anImageIdOutsideTheTableIsHandedOn) {
    EXPECT_EQ(renderer({at(0, 0, 0, move, 77)}).cursorImageId(0), 77);
    EXPECT_EQ(renderer({at(0, 0, 0, move, -1)}).cursorImageId(0), -1);
}

TEST(CursorRenderer, aClickOfThisMomentHasProgressZero) {
    const auto effects = renderer({at(2, 30, 40, rightClick)}).clickEffects(2);
    ASSERT_EQ(effects.size(), 1u);
    EXPECT_EQ(effects[0].progress, 0);
    EXPECT_EQ(effects[0].position, (Point{30, 40})); // as logged, not flipped
}

TEST(CursorRenderer, aClickIsGoneAfterExactlyItsLife) {
    const auto r = renderer({at(0, 0, 0, leftClick)});
    EXPECT_TRUE(r.clickEffects(0.35).empty());
    const auto last = r.clickEffects(std::nextafter(0.35, 0));
    ASSERT_EQ(last.size(), 1u);
    EXPECT_LT(last[0].progress, 1);
    EXPECT_TRUE(r.clickEffects(-1e-9).empty());
}

TEST(CursorRenderer, onlyClicksMakeRipples) {
    for (const auto type : {move, scroll, leftMouseDown, leftMouseUp, keyDown}) {
        EXPECT_TRUE(renderer({at(0, 0, 0, type)}).clickEffects(0.1).empty());
    }
    EXPECT_EQ(renderer({at(0, 0, 0, leftClick)}).clickEffects(0.1).size(), 1u);
    EXPECT_EQ(renderer({at(0, 0, 0, rightClick)}).clickEffects(0.1).size(), 1u);
}

TEST(CursorRenderer, everyLiveClickIsListedInLogOrder) {
    const auto effects = renderer({at(0.3, 1, 0, leftClick), at(0.2, 2, 0, rightClick),
                                   at(0.25, 3, 0, leftClick), at(0.9, 4, 0, leftClick)})
                             .clickEffects(0.35);
    ASSERT_EQ(effects.size(), 3u);
    EXPECT_EQ(effects[0].position.x, 1);
    EXPECT_EQ(effects[1].position.x, 2);
    EXPECT_EQ(effects[2].position.x, 3);
    EXPECT_EQ(effects[1].progress, (0.35 - 0.2) / 0.35);
}

TEST(CursorRenderer, withTheEffectOffThereAreNoRipples) {
    auto r = renderer({at(0, 0, 0, leftClick)});
    r.settings.showClickEffect = false;
    EXPECT_TRUE(r.clickEffects(0.1).empty());
}

TEST(CursorRenderer, theLargestDoublesAreInterpolatedWithoutOverflow) {
    constexpr double kMost = std::numeric_limits<double>::max();
    const auto r = renderer({at(-kMost, -kMost, 0), at(kMost, kMost, 0)});
    EXPECT_EQ(r.position(0), (Point{0, kHeight}));
    EXPECT_DOUBLE_EQ(r.position(kMost * 0.5)->x, kMost * 0.5);
}

} // namespace
} // namespace tavi
