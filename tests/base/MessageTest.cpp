#include "base/Message.h"

#include <gtest/gtest.h>

namespace tavi {
namespace {

TEST(Message, argumentsStandWhereTheyAreNamed) {
    EXPECT_EQ(Message("%2 before %1", {"one", "two"}).english(), "two before one");
}

TEST(Message, argumentsMayHaveArguments) {
    EXPECT_EQ(Message("%1.", {{"%1 (%2)", {"a", "b"}}}).english(), "a (b).");
}

TEST(Message, percentSignsOfArgumentsAreTheirOwn) {
    EXPECT_EQ(Message("%1: %2", {"100 %1", "%2"}).english(), "100 %1: %2");
}

TEST(Message, namesWithoutAnArgumentStay) {
    EXPECT_EQ(Message("50 %, %1 and %3", {"one"}).english(), "50 %, one and %3");
    EXPECT_EQ(Message("%").english(), "%");
    EXPECT_EQ(Message().english(), "");
}

} // namespace
} // namespace tavi
