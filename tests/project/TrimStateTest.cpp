#include "project/TrimState.h"

#include "project/TrimStateJson.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <set>

namespace tavi {
namespace {

using Pairs = std::vector<std::pair<double, double>>;

Pairs kept(const TrimState& trim, double duration) {
    Pairs pairs;
    for (const TimeRange& range : keptRanges(trim, duration)) {
        pairs.emplace_back(range.start, range.end);
    }
    return pairs;
}

TrimState cuts(const Pairs& pairs, double inPoint = 0, std::optional<double> outPoint = {}) {
    TrimState trim{inPoint, outPoint, {}};
    for (const auto& [start, end] : pairs) {
        trim.cutSegments.push_back({Uuid::make(), start, end});
    }
    return trim;
}

TEST(KeptRanges, withoutCutsTheWholeVideoIsKept) {
    EXPECT_EQ(kept({}, 10), (Pairs{{0, 10}}));
    EXPECT_EQ(outputTime(TrimState{}, 10, 10), std::nullopt);
    EXPECT_EQ(outputTime(TrimState{}, 9.999, 10), 9.999);
}

TEST(KeptRanges, overlappingCutsAreMerged) {
    const auto trim = cuts({{2, 4}, {3, 5}});
    EXPECT_EQ(kept(trim, 10), (Pairs{{0, 2}, {5, 10}}));
    EXPECT_EQ(totalLength(keptRanges(trim, 10)), 7);
}

TEST(KeptRanges, aCutInsideAnotherChangesNothing) {
    EXPECT_EQ(kept(cuts({{2, 4}, {1, 6}}), 10), (Pairs{{0, 1}, {6, 10}}));
}

TEST(KeptRanges, cutsOutsideTheTrimChangeNothing) {
    EXPECT_EQ(kept(cuts({{0, 1}, {9, 12}}, 2, 8), 10), (Pairs{{2, 8}}));
}

TEST(KeptRanges, aCutAcrossTheInPointMovesTheStart) {
    EXPECT_EQ(kept(cuts({{1, 3}}, 2), 10), (Pairs{{3, 10}}));
}

TEST(KeptRanges, anEmptyTrimKeepsNothing) {
    for (const double out : {5.0, 4.0}) {
        const auto trim = cuts({}, 5, out);
        EXPECT_TRUE(kept(trim, 10).empty());
        EXPECT_EQ(outputTime(trim, 5, 10), std::nullopt);
        EXPECT_EQ(outputTime(trim, 4.5, 10), std::nullopt);
    }
}

TEST(KeptRanges, emptyAndInvertedCutsAreSkipped) {
    EXPECT_EQ(kept(cuts({{3, 3}, {6, 4}}), 10), (Pairs{{0, 10}}));
}

TEST(KeptRanges, aSliverOfAnyLengthSurvives) {
    EXPECT_EQ(kept(cuts({{0, 5}, {5.0000001, 10}}), 10), (Pairs{{5, 5.0000001}}));
}

TEST(KeptRanges, theOutPointMayLieBeyondTheDuration) {
    EXPECT_EQ(kept(cuts({}, 1, 20), 10), (Pairs{{1, 20}}));
}

TEST(KeptRanges, everyCallGivesNewIds) {
    EXPECT_NE(keptRanges({}, 10)[0].id, keptRanges({}, 10)[0].id);
}

TEST(OutputTime, aTimeInsideACutIsAbsent) {
    const auto trim = cuts({{2, 4}});
    EXPECT_EQ(outputTime(trim, 2, 10), std::nullopt);
    EXPECT_EQ(outputTime(trim, 3.9, 10), std::nullopt);
}

TEST(OutputTime, cutEndMapsToStartOfTheFollowingRange) {
    EXPECT_EQ(outputTime(cuts({{2, 4}}), 4, 10), 2);
}

TEST(OutputTime, theEndOfTheLastRangeIsAbsent) {
    EXPECT_EQ(outputTime(cuts({}, 1, 8), 8, 10), std::nullopt);
    EXPECT_EQ(outputTime(cuts({}, 1, 8), 1, 10), 0);
}

TEST(KeptRanges, areSortedDisjointAndEqualToTheUncutMomentsOfAnyTrim) {
    std::mt19937 random(3);
    std::uniform_real_distribution<double> time(-2, 12);
    for (int round = 0; round < 2000; ++round) {
        TrimState trim = cuts({}, time(random) * 0.3);
        if (round % 2) {
            trim.outPoint = time(random);
        }
        for (unsigned i = random() % 8; i > 0; --i) {
            trim.cutSegments.push_back({Uuid::make(), time(random), time(random)});
        }
        const auto ranges = keptRanges(trim, 10);
        for (std::size_t i = 0; i < ranges.size(); ++i) {
            ASSERT_LT(ranges[i].start, ranges[i].end);
            ASSERT_TRUE(i == 0 || ranges[i - 1].end < ranges[i].start);
        }
        const double t = time(random);
        const bool cut =
            std::any_of(trim.cutSegments.begin(), trim.cutSegments.end(),
                        [t](const TimeRange& range) { return range.start <= t && t < range.end; });
        const bool inside = trim.inPoint <= t && t < trim.outPoint.value_or(10);
        ASSERT_EQ(outputTime(ranges, t).has_value(), inside && !cut);
    }
}

std::string encoded(const TrimState& trim) {
    JsonWriter json;
    write(json, trim);
    return json.finish().value();
}

TEST(TrimStateJson, anAbsentOutPointIsLeftOut) {
    EXPECT_EQ(encoded({}), R"({"inPoint":0,"cutSegments":[]})");
    TrimState trim{1.5, 4.0, {{*Uuid::parse("2AAB58AC-5354-2B3C-900B-F5F719B097A2"), 2, 3}}};
    const std::string json = encoded(trim);
    EXPECT_EQ(json, R"({"inPoint":1.5,"outPoint":4,"cutSegments":[{"id":)"
                    R"("2AAB58AC-5354-2B3C-900B-F5F719B097A2","start":2,"end":3}]})");
    EXPECT_EQ(decodeRecord<TrimState>(json).value(), trim);
}

TEST(TrimStateJson, inPointCutsAndTheirFieldsAreRequired) {
    for (const char* json :
         {R"({"cutSegments":[]})", R"({"inPoint":0})", R"({"inPoint":null,"cutSegments":[]})",
          R"({"inPoint":0,"cutSegments":[{"start":2,"end":3}]})",
          R"({"inPoint":0,"cutSegments":[{"id":"x","start":2,"end":3}]})"}) {
        EXPECT_FALSE(decodeRecord<TrimState>(json)) << json;
    }
    EXPECT_TRUE(decodeRecord<TrimState>(R"({"inPoint":0,"outPoint":null,"cutSegments":[]})"));
}

TEST(TrimStateJson, overlappingCutsStayAsStored) {
    const auto trim = cuts({{3, 5}, {2, 4}, {9, 1}});
    EXPECT_EQ(decodeRecord<TrimState>(encoded(trim)).value(), trim);
}

} // namespace
} // namespace tavi
