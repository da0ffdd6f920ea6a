#include "base/Uuid.h"

#include <gtest/gtest.h>

#include <set>

namespace tavi {

TEST(Uuid, isReadInEitherCaseAndWrittenInUpperCase) {
    const auto id = Uuid::parse("2aab58ac-5354-2B3C-900b-f5f719b097a2");
    ASSERT_TRUE(id);
    EXPECT_EQ(id->text(), "2AAB58AC-5354-2B3C-900B-F5F719B097A2");
}

TEST(Uuid, anyOtherFormIsAbsent) {
    for (const char* text :
         {"", "2AAB58AC-5354-2B3C-900B-F5F719B097A", "2AAB58AC-5354-2B3C-900B-F5F719B097A22",
          "2AAB58AC_5354-2B3C-900B-F5F719B097A2", "GAAB58AC-5354-2B3C-900B-F5F719B097A2",
          "{AAB58AC-5354-2B3C-900B-F5F719B097A2"}) {
        EXPECT_FALSE(Uuid::parse(text)) << text;
    }
}

TEST(Uuid, freshOnesAreRandomOfVersionFour) {
    std::set<std::string> seen;
    for (int i = 0; i < 1000; ++i) {
        const std::string text = Uuid::make().text();
        EXPECT_EQ(text[14], '4');
        EXPECT_NE(std::string("89AB").find(text[19]), std::string::npos);
        seen.insert(text);
    }
    EXPECT_EQ(seen.size(), 1000u);
}

} // namespace tavi
