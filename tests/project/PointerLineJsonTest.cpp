#include "project/PointerLineJson.h"

#include <gtest/gtest.h>

namespace tavi {
namespace {

struct PointerLineCase {
    std::string_view line;
    std::optional<PointerLine> expected;
};

PointerLine at(std::int64_t microseconds, CursorEventType type) {
    return {type, MediaTime::fromNanoseconds(microseconds * 1000)};
}

class PointerLines : public testing::TestWithParam<PointerLineCase> {};

TEST_P(PointerLines, areReadOrDropped) {
    EXPECT_EQ(parsePointerLine(GetParam().line), GetParam().expected);
}

using Type = CursorEventType;
INSTANTIATE_TEST_SUITE_P(
    Wire, PointerLines,
    testing::Values(
        PointerLineCase{R"({"t":7,"p":"leftMouseDown"})", at(7, Type::leftMouseDown)},
        PointerLineCase{R"({"t":7,"p":"leftMouseUp"})", at(7, Type::leftMouseUp)},
        PointerLineCase{R"({"t":7,"p":"rightClick","x":[1]})", at(7, Type::rightClick)},
        PointerLineCase{R"({"t":0,"p":"scroll"})", at(0, Type::scroll)},
        PointerLineCase{R"({"t":7,"p":"move"})", {}},      // the screen's pictures tell of moves
        PointerLineCase{R"({"t":7,"p":"keyDown"})", {}},   //
        PointerLineCase{R"({"t":7,"p":"leftClick"})", {}}, // of older logs
        PointerLineCase{R"({"t":7,"c":"a"})", {}},         // a key
        PointerLineCase{R"({"p":"scroll"})", {}},          // no time
        PointerLineCase{R"({"t":-1,"p":"scroll"})", {}},   //
        PointerLineCase{R"({"t":18446744073709551615,"p":"scroll"})", {}}, // no such moment
        PointerLineCase{R"({"t":"7","p":"scroll"})", {}},                  //
        PointerLineCase{R"(["t","p"])", {}},                               //
        PointerLineCase{"scroll", {}}));

} // namespace
} // namespace tavi
