#include "base/HexDigits.h"

#include <gtest/gtest.h>

namespace tavi {
namespace {

TEST(HexDigits, everyByteComesBack) {
    std::vector<std::uint8_t> bytes;
    for (int i = 0; i < 256; ++i) {
        bytes.push_back(static_cast<std::uint8_t>(i));
    }
    EXPECT_EQ(bytesOfHexDigits(hexDigitsOf(bytes)), bytes);
}

TEST(HexDigits, areOfUpperCaseAndReadInBoth) {
    const std::vector<std::uint8_t> bytes{0x0A, 0xBC};
    EXPECT_EQ(hexDigitsOf(bytes), "0ABC");
    EXPECT_EQ(bytesOfHexDigits("0abC"), bytes);
}

TEST(HexDigits, otherCharactersAndHalfBytesAreNone) {
    for (const char* text : {"0", "0x", "G0", " 0", "0/", "0:", "0@", "0`"}) {
        EXPECT_EQ(bytesOfHexDigits(text), std::nullopt) << text;
    }
    EXPECT_EQ(bytesOfHexDigits(""), std::vector<std::uint8_t>{});
}

} // namespace
} // namespace tavi
