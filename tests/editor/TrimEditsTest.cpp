#include "editor/TrimEdits.h"

#include <gmock/gmock.h>

namespace tavi {
namespace {

using testing::IsEmpty;
using testing::SizeIs;

TEST(TrimEdits, inPointIsAtLeastZero) {
    TrimState trim;
    TrimEdits::setTrimIn(trim, -3);
    EXPECT_EQ(trim.inPoint, 0);
}

TEST(TrimEdits, inPointAtOrPastTheOutPointRemovesIt) {
    for (const double time : {5.0, 7.0}) {
        TrimState trim{1, 5, {}};
        TrimEdits::setTrimIn(trim, time);
        EXPECT_EQ(trim.inPoint, time);
        EXPECT_FALSE(trim.outPoint);
    }
}

TEST(TrimEdits, inPointHasNoUpperLimit) {
    TrimState trim;
    TrimEdits::setTrimIn(trim, 1e9);
    EXPECT_EQ(trim.inPoint, 1e9);
}

TEST(TrimEdits, outPointIsAtMostTheDuration) {
    TrimState trim;
    EXPECT_TRUE(TrimEdits::setTrimOut(trim, 99, 10));
    EXPECT_EQ(trim.outPoint, 10);
}

TEST(TrimEdits, outPointAtOrBeforeTheInPointIsRefused) {
    TrimState trim{4, 6, {}};
    EXPECT_FALSE(TrimEdits::setTrimOut(trim, 4, 10));
    EXPECT_FALSE(TrimEdits::setTrimOut(trim, 3, 10));
    EXPECT_EQ(trim.outPoint, 6);
}

TEST(TrimEdits, cutMayBeMarkedBackwards) {
    TrimState trim;
    ASSERT_TRUE(TrimEdits::addCut(trim, 5, 3));
    ASSERT_THAT(trim.cutSegments, SizeIs(1));
    EXPECT_EQ(trim.cutSegments[0].start, 3);
    EXPECT_EQ(trim.cutSegments[0].end, 5);
}

TEST(TrimEdits, cutOfAThirtiethIsDropped) {
    TrimState trim;
    EXPECT_FALSE(TrimEdits::addCut(trim, 0, 1.0 / 30));
    EXPECT_THAT(trim.cutSegments, IsEmpty());
    EXPECT_TRUE(TrimEdits::addCut(trim, 0, 0.034));
}

TEST(TrimEdits, cutsThatTouchBecomeOneWithTheIdOfTheEarlier) {
    TrimState trim;
    TrimEdits::addCut(trim, 3, 4);
    const Uuid first = trim.cutSegments[0].id;
    TrimEdits::addCut(trim, 4, 6);
    ASSERT_THAT(trim.cutSegments, SizeIs(1));
    EXPECT_EQ(trim.cutSegments[0], (TimeRange{first, 3, 6}));
}

TEST(TrimEdits, cutBeforeAnotherGivesItsIdToBoth) {
    TrimState trim;
    TrimEdits::addCut(trim, 3, 4);
    const Uuid later = trim.cutSegments[0].id;
    TrimEdits::addCut(trim, 2, 3.5);
    ASSERT_THAT(trim.cutSegments, SizeIs(1));
    EXPECT_NE(trim.cutSegments[0].id, later);
    EXPECT_EQ(trim.cutSegments[0].start, 2);
    EXPECT_EQ(trim.cutSegments[0].end, 4);
}

TEST(TrimEdits, wholeListIsMergedWithEachCut) {
    TrimState trim{0, {}, {{Uuid::make(), 8, 9}, {Uuid::make(), 1, 3}, {Uuid::make(), 2, 2.5}}};
    TrimEdits::addCut(trim, 5, 6);
    ASSERT_THAT(trim.cutSegments, SizeIs(3));
    EXPECT_EQ(trim.cutSegments[0].end, 3);
    EXPECT_EQ(trim.cutSegments[1].start, 5);
    EXPECT_EQ(trim.cutSegments[2].start, 8);
}

TEST(TrimEdits, cutHoldsItsStartAndNotItsEnd) {
    const TrimState trim{0, {}, {{Uuid::make(), 4, 6}, {Uuid::make(), 1, 2}}};
    EXPECT_EQ(TrimEdits::endOfCutAt(trim, 1), 2);
    EXPECT_EQ(TrimEdits::endOfCutAt(trim, 5), 6);
    EXPECT_FALSE(TrimEdits::endOfCutAt(trim, 2));
    EXPECT_FALSE(TrimEdits::endOfCutAt(trim, 0.5));
}

} // namespace
} // namespace tavi
