#include "autozoom/Events.h"

#include <gtest/gtest.h>

namespace tavi::UnifiedAutoZoom {
namespace {

EditProject projectOf(double videoHeight, Size resolution, bool autoAspectRatio = false) {
    EditProject project;
    project.videoHeight = videoHeight;
    project.outputSettings.resolution = resolution;
    project.outputSettings.autoAspectRatio = autoAspectRatio;
    return project;
}

TEST(PrepareInputs, theScaleIsVideoPixelsPerLogUnit) {
    EXPECT_EQ(prepareInputs(projectOf(540, {1920, 1080}), {1920, 1080}, 5, 0.5).scale, 2);
    EXPECT_EQ(prepareInputs(projectOf(1080, {1920, 1080}), {1920, 1080}, 5, 0.5).scale, 1);
}

TEST(PrepareInputs, withoutALogHeightTheVideosOwnCounts) {
    EXPECT_EQ(prepareInputs(projectOf(0, {1920, 1080}), {1920, 1080}, 5, 0.5).scale, 1);
    EXPECT_EQ(prepareInputs(projectOf(-7, {1920, 1080}), {1920, 1080}, 5, 0.5).scale, 1);
    EXPECT_EQ(prepareInputs(projectOf(0, {1920, 1080}), {0, 0}, 5, 0.5).scale, 1);
}

TEST(PrepareInputs, anOutputOfTheVideosAspectShowsAllOfIt) {
    const auto inputs = prepareInputs(projectOf(1080, {1280, 720}), {1920, 1080}, 5, 0.5);
    EXPECT_EQ(inputs.base, (Size{1920, 1080}));
}

TEST(PrepareInputs, aNarrowerOutputCutsTheSidesOff) {
    const auto inputs = prepareInputs(projectOf(1080, {1000, 1000}), {1920, 1080}, 5, 0.5);
    EXPECT_EQ(inputs.base, (Size{1080, 1080}));
}

TEST(PrepareInputs, aWiderOutputCutsTopAndBottomOff) {
    const auto inputs = prepareInputs(projectOf(1080, {2000, 500}), {1920, 1080}, 5, 0.5);
    EXPECT_EQ(inputs.base, (Size{1920, 480}));
}

TEST(PrepareInputs, withAutomaticAspectTheResolvedWidthCounts) {
    // 1080 * 1512 / 982 is 1662.9: rounded to 1663 and made even.
    const auto inputs = prepareInputs(projectOf(982, {1920, 1080}, true), {1512, 982}, 5, 0.5);
    EXPECT_EQ(inputs.base, (Size{1512, 1512 / (1664.0 / 1080)}));
}

TEST(PrepareInputs, anOutputWithoutHeightShowsTheWholeVideo) {
    const auto inputs = prepareInputs(projectOf(1080, {1920, 0}), {1920, 1080}, 5, 0.5);
    EXPECT_EQ(inputs.base, (Size{1920, 1080}));
}

TEST(PrepareInputs, durationAndAggressivenessAreHandedOn) {
    const auto inputs = prepareInputs(projectOf(1080, {1920, 1080}), {1920, 1080}, 7.5, 1.25);
    EXPECT_EQ(inputs.duration, 7.5);
    EXPECT_EQ(inputs.aggressiveness, 1.25);
    EXPECT_EQ(inputs.video, (Size{1920, 1080}));
}

TEST(ViewportSize, atFullAggressivenessIsAThirdOfTheBase) {
    const auto inputs = prepareInputs(projectOf(1080, {1920, 1080}), {1920, 1080}, 5, 1);
    EXPECT_EQ(viewportSize(inputs), (Size{640, 360}));
}

TEST(SortedByTime, equalTimesKeepTheirOrder) {
    using enum CursorEventType;
    const std::vector<CursorEvent> log{test::eventAt(2, 1, 0, move), test::eventAt(1, 2, 0, move),
                                       test::eventAt(2, 3, 0, move), test::eventAt(1, 4, 0, move)};
    const auto sorted = sortedByTime(log);
    ASSERT_EQ(sorted.size(), 4u);
    EXPECT_EQ(sorted[0].x, 2);
    EXPECT_EQ(sorted[1].x, 4);
    EXPECT_EQ(sorted[2].x, 1);
    EXPECT_EQ(sorted[3].x, 3);
}

} // namespace
} // namespace tavi::UnifiedAutoZoom
