#include "autozoom/Events.h"

#include <gtest/gtest.h>

#include <cmath>

namespace tavi::UnifiedAutoZoom {
namespace {

using test::fullHd;

TEST(SimulateCamera, noSegmentsMakeNoRegions) {
    EXPECT_TRUE(simulateCamera({}, fullHd(0.5)).empty());
}

TEST(SimulateCamera, oneSegmentMakesARegionWithOneFocalPoint) {
    const auto regions = simulateCamera(std::vector<ActivitySegment>{{2, 4, 100, 50}}, fullHd(0.5));
    const std::vector<ZoomRegion> expected{{2, 4, {{3, 100, 50}}, 100, 50}};
    EXPECT_EQ(regions, expected);
}

TEST(SimulateCamera, segmentsTwoSecondsApartInOnePlaceMerge) {
    const auto regions = simulateCamera(
        std::vector<ActivitySegment>{{4, 4, 300, 1000}, {6, 6, 300, 1000}}, fullHd(0.5));
    const std::vector<ZoomRegion> expected{{4, 6, {{4, 300, 1000}, {6, 300, 1000}}, 300, 1000}};
    EXPECT_EQ(regions, expected);
}

TEST(SimulateCamera, thePrimaryFocusIsTheMeanOfTheFocalPoints) {
    const auto regions = simulateCamera(
        std::vector<ActivitySegment>{{0, 1, 100, 0}, {3, 4, 200, 60}, {6, 8, 330, 90}}, fullHd(0));
    ASSERT_EQ(regions.size(), 1u);
    EXPECT_EQ(regions[0].startTime, 0);
    EXPECT_EQ(regions[0].endTime, 8);
    EXPECT_EQ(regions[0].primaryFocalX, 210);
    EXPECT_EQ(regions[0].primaryFocalY, 50);
    const std::vector<FocalPoint> points{{0.5, 100, 0}, {3.5, 200, 60}, {7, 330, 90}};
    EXPECT_EQ(regions[0].focalPoints, points);
}

TEST(SimulateCamera, theDistanceIsToThePrimaryFocusNotToTheLastSegment) {
    // A viewport at calm is 1476.9 wide, so the merge distance is 886.2.
    const std::vector<ActivitySegment> walk{{0, 0, 0, 0}, {1, 1, 880, 0}, {2, 2, 1340, 0}};
    const auto regions = simulateCamera(walk, fullHd(0));
    ASSERT_EQ(regions.size(), 2u); // 1340 is 460 from the last and 900 from the mean of 440
    EXPECT_EQ(regions[0].endTime, 1);
}

TEST(SimulateCamera, aPauseOfExactlyTheMergeGapStartsANewRegion) {
    const auto count = [](double pause) {
        return simulateCamera(std::vector<ActivitySegment>{{0, 0, 0, 0}, {pause, pause, 0, 0}},
                              fullHd(0))
            .size();
    };
    EXPECT_EQ(count(3.0), 2u);
    EXPECT_EQ(count(std::nextafter(3.0, 0)), 1u);
}

TEST(SimulateCamera, exactlyTheMergeDistanceStartsANewRegion) {
    const Inputs inputs = fullHd(0.5);
    const double distance = 0.6 * viewportSize(inputs).width;
    const auto count = [&](double x) {
        return simulateCamera(std::vector<ActivitySegment>{{0, 0, 0, 0}, {1, 1, x, 0}}, inputs)
            .size();
    };
    EXPECT_EQ(count(distance), 2u);
    EXPECT_EQ(count(std::nextafter(distance, 0)), 1u);
}

TEST(SimulateCamera, burstsATenthApartButFarFromEachOtherStayTwoRegions) {
    EXPECT_EQ(simulateCamera(std::vector<ActivitySegment>{{0, 1, 100, 100}, {1.1, 2, 1800, 900}},
                             fullHd(0.5))
                  .size(),
              2u);
}

TEST(SimulateCamera, onlyTheLatestRegionIsExtended) {
    const std::vector<ActivitySegment> there{{0, 0, 0, 0}, {1, 1, 1900, 0}, {2, 2, 0, 0}};
    EXPECT_EQ(simulateCamera(there, fullHd(0.5)).size(), 3u);
}

} // namespace
} // namespace tavi::UnifiedAutoZoom
