#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace tavi {

/// The value of a hexadecimal digit of either case; -1 for any other character.
constexpr int hexDigitValue(char c) {
    if (c >= '0' && c <= '9') {
        return c - '0';
    }
    if (c >= 'a' && c <= 'f') {
        return c - 'a' + 10;
    }
    return c >= 'A' && c <= 'F' ? c - 'A' + 10 : -1;
}

/// Two digits a byte, in upper case.
std::string hexDigitsOf(std::span<const std::uint8_t> bytes);

/// The bytes that such digits stand for; absent where there are other characters or half a byte.
std::optional<std::vector<std::uint8_t>> bytesOfHexDigits(std::string_view digits);

} // namespace tavi
