#include "base/Utf8.h"

#include <cstddef>
#include <cstdint>

namespace tavi {

namespace {

struct LeadByte {
    std::size_t following;     ///< Continuation bytes that belong to it.
    std::uint8_t lowestSecond; ///< Bounds of the first of them, inclusive.
    std::uint8_t highestSecond;
};

/// The table of RFC 3629, section 4; `following` 4 marks a byte that starts nothing.
LeadByte leadByte(std::uint8_t byte) {
    if (byte < 0x80) {
        return {0, 0, 0};
    }
    if (byte >= 0xC2 && byte <= 0xDF) {
        return {1, 0x80, 0xBF};
    }
    if (byte >= 0xE0 && byte <= 0xEF) {
        const std::uint8_t lowest = byte == 0xE0 ? 0xA0 : 0x80;
        const std::uint8_t highest = byte == 0xED ? 0x9F : 0xBF;
        return {2, lowest, highest};
    }
    if (byte >= 0xF0 && byte <= 0xF4) {
        const std::uint8_t lowest = byte == 0xF0 ? 0x90 : 0x80;
        const std::uint8_t highest = byte == 0xF4 ? 0x8F : 0xBF;
        return {3, lowest, highest};
    }
    return {4, 0, 0};
}

} // namespace

bool isValidUtf8(std::string_view text) {
    for (std::size_t i = 0; i < text.size();) {
        const LeadByte lead = leadByte(static_cast<std::uint8_t>(text[i]));
        if (lead.following == 4 || i + lead.following >= text.size()) {
            return false;
        }
        for (std::size_t k = 1; k <= lead.following; ++k) {
            const auto byte = static_cast<std::uint8_t>(text[i + k]);
            const bool fits = k == 1 ? byte >= lead.lowestSecond && byte <= lead.highestSecond
                                     : (byte & 0xC0) == 0x80;
            if (!fits) {
                return false;
            }
        }
        i += 1 + lead.following;
    }
    return true;
}

} // namespace tavi
