#include "base/HexDigits.h"

namespace tavi {

std::string hexDigitsOf(std::span<const std::uint8_t> bytes) {
    static constexpr char kDigits[] = "0123456789ABCDEF";
    std::string digits;
    digits.reserve(bytes.size() * 2);
    for (const std::uint8_t byte : bytes) {
        digits += kDigits[byte >> 4];
        digits += kDigits[byte & 0x0f];
    }
    return digits;
}

std::optional<std::vector<std::uint8_t>> bytesOfHexDigits(std::string_view digits) {
    if (digits.size() % 2 != 0) {
        return std::nullopt;
    }
    std::vector<std::uint8_t> bytes;
    bytes.reserve(digits.size() / 2);
    for (std::size_t i = 0; i < digits.size(); i += 2) {
        const int high = hexDigitValue(digits[i]);
        const int low = hexDigitValue(digits[i + 1]);
        if (high < 0 || low < 0) {
            return std::nullopt;
        }
        bytes.push_back(static_cast<std::uint8_t>(high << 4 | low));
    }
    return bytes;
}

} // namespace tavi
