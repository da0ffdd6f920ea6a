#include "cursor/EventIndex.h"

#include "support/RandomLog.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace tavi {
namespace {

std::vector<CursorEvent> eventsAt(std::initializer_list<double> times) {
    std::vector<CursorEvent> events;
    for (const double time : times) {
        events.push_back({time, 0, 0, CursorEventType::rightClick, 0, {}, {}});
    }
    return events;
}

TEST(EventIndex, anEmptyIndexHoldsNothing) {
    EXPECT_TRUE(EventIndex().between(-1e9, 1e9).empty());
    EXPECT_TRUE(EventIndex(eventsAt({})).between(-1e9, 1e9).empty());
}

TEST(EventIndex, bothEndsAreIncluded) {
    const EventIndex index(eventsAt({1, 2, 3, 4}));
    const auto found = index.between(2, 3);
    ASSERT_EQ(found.size(), 2u);
    EXPECT_EQ(found[0].timestamp, 2);
    EXPECT_EQ(found[1].timestamp, 3);
}

TEST(EventIndex, aStretchWithoutEventsIsEmptyInALogInOrder) {
    const EventIndex index(eventsAt({1, 2, 3, 4}));
    EXPECT_TRUE(index.between(2.1, 2.9).empty());
    EXPECT_TRUE(index.between(5, 9).empty());
    EXPECT_TRUE(index.between(-3, 0.9).empty());
    EXPECT_TRUE(index.between(3, 2).empty());
}

TEST(EventIndex, eventsOutOfOrderAreFound) {
    const EventIndex index(eventsAt({5, 1, 9, 2}));
    const auto found = index.between(0, 2);
    ASSERT_EQ(found.size(), 4u);
    EXPECT_EQ(found.back().timestamp, 2);
}

TEST(EventIndexProperty, nothingInsideTheStretchIsMissed) {
    for (std::uint64_t seed = 0; seed < test::seedCount(); ++seed) {
        test::RandomValues random(seed);
        const auto log = test::randomLog(random, test::randomWeather(random));
        const EventIndex index(log);
        const double from = random.between(-2, 30);
        const double to = from + random.between(-1, 5);
        const auto inside = [&](const CursorEvent& event) {
            return event.timestamp >= from && event.timestamp <= to;
        };
        std::vector<CursorEvent> expected;
        std::copy_if(log.begin(), log.end(), std::back_inserter(expected), inside);
        std::vector<CursorEvent> found;
        const auto stretch = index.between(from, to);
        std::copy_if(stretch.begin(), stretch.end(), std::back_inserter(found), inside);
        ASSERT_EQ(found, expected) << "seed " << seed;
    }
}

} // namespace
} // namespace tavi
