#include "cursor/Uppercase.h"

#include <gtest/gtest.h>

namespace tavi {
namespace {

TEST(Uppercase, lettersOfAsciiAndNothingElseOfIt) {
    std::string ascii;
    std::string expected;
    for (int c = 0; c < 128; ++c) {
        ascii += static_cast<char>(c);
        expected += static_cast<char>(c >= 'a' && c <= 'z' ? c - 32 : c);
    }
    EXPECT_EQ(uppercase(ascii), expected);
}

struct UpperCase {
    std::string_view text;
    std::string_view expected;
};

class UppercaseOf : public testing::TestWithParam<UpperCase> {};

TEST_P(UppercaseOf, isTheFullMapping) {
    EXPECT_EQ(uppercase(GetParam().text), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(
    Scripts, UppercaseOf,
    testing::Values(UpperCase{"", ""}, UpperCase{"éàüñ", "ÉÀÜÑ"}, UpperCase{"÷×", "÷×"},
                    UpperCase{"ÿ", "Ÿ"}, UpperCase{"µ", "Μ"}, UpperCase{"ı", "I"},
                    UpperCase{"ſ", "S"}, UpperCase{"ж", "Ж"}, UpperCase{"ћ", "Ћ"},
                    UpperCase{"σς", "ΣΣ"}, UpperCase{"ά", "Ά"}, UpperCase{"ა", "Ა"},
                    UpperCase{"ꭰ", "Ꭰ"}, UpperCase{"ա", "Ա"}, UpperCase{"𐐨", "𐐀"},
                    UpperCase{"ⓐ", "Ⓐ"}, UpperCase{"ａ", "Ａ"}, UpperCase{"ǆ", "Ǆ"},
                    UpperCase{"ǅ", "Ǆ"}, UpperCase{"ẞ", "ẞ"},
                    UpperCase{"漢あ🙂", "漢あ🙂"}));

INSTANTIATE_TEST_SUITE_P(Expansions, UppercaseOf,
                         testing::Values(UpperCase{"ß", "SS"}, UpperCase{"ﬃ", "FFI"},
                                         UpperCase{"ŉ", "ʼN"}, UpperCase{"ǰ", "J̌"},
                                         UpperCase{"ΐ", "\xCE\x99\xCC\x88\xCC\x81"},
                                         UpperCase{"և", "ԵՒ"}, UpperCase{"ᾳ", "ΑΙ"},
                                         UpperCase{"ᾼ", "ΑΙ"}, UpperCase{"ﬗ", "ՄԽ"}));

INSTANTIATE_TEST_SUITE_P(NoUtf8, UppercaseOf,
                         testing::Values(UpperCase{"a\xff"
                                                   "b",
                                                   "A\xff"
                                                   "B"},
                                         UpperCase{"\xc3", "\xc3"},         // cut short
                                         UpperCase{"\xc3(", "\xc3("},       // no trail byte
                                         UpperCase{"\xc1\xa1", "\xc1\xa1"}, // overlong 'a'
                                         UpperCase{"\xe0\x81\xa1", "\xe0\x81\xa1"},
                                         UpperCase{"\xe0\x83\xa9", "\xe0\x83\xa9"}, // overlong é
                                         UpperCase{"\xf0\x80\x83\xa9", "\xf0\x80\x83\xa9"},
                                         UpperCase{"\xed\xa0\x80", "\xed\xa0\x80"}, // surrogate
                                         UpperCase{"\xf4\x90\x80\x80", "\xf4\x90\x80\x80"},
                                         UpperCase{"\x80z", "\x80Z"}));

TEST(Uppercase, twiceIsAsOnceForEveryCodePoint) {
    for (std::uint32_t c = 0x80; c < 0x110000; ++c) {
        if (c >= 0xd800 && c < 0xe000) {
            continue;
        }
        std::string text;
        if (c < 0x800) {
            text = {static_cast<char>(0xc0 | c >> 6), static_cast<char>(0x80 | (c & 0x3f))};
        } else if (c < 0x10000) {
            text = {static_cast<char>(0xe0 | c >> 12), static_cast<char>(0x80 | (c >> 6 & 0x3f)),
                    static_cast<char>(0x80 | (c & 0x3f))};
        } else {
            text = {static_cast<char>(0xf0 | c >> 18), static_cast<char>(0x80 | (c >> 12 & 0x3f)),
                    static_cast<char>(0x80 | (c >> 6 & 0x3f)),
                    static_cast<char>(0x80 | (c & 0x3f))};
        }
        const std::string once = uppercase(text);
        ASSERT_EQ(uppercase(once), once) << std::hex << c;
        ASSERT_FALSE(once.empty()) << std::hex << c;
    }
}

} // namespace
} // namespace tavi
