#include "cursor/Uppercase.h"

#include <algorithm>
#include <array>
#include <cstdint>

namespace tavi {

namespace {

/// Code points first, first + stride, ... last whose upper case lies `delta` further.
struct CaseRange {
    std::uint32_t first;
    std::uint32_t last;
    std::int32_t delta;
    std::uint32_t stride;
};

/// A code point whose upper case is several.
struct CaseExpansion {
    std::uint32_t codePoint;
    std::string_view upper;
};

#include "cursor/UppercaseTable.inc"

void appendUtf8(std::string& out, std::uint32_t c) {
    const auto trail = [](std::uint32_t bits) { return static_cast<char>(0x80 | (bits & 0x3f)); };
    if (c < 0x80) {
        out += static_cast<char>(c);
    } else if (c < 0x800) {
        out += {static_cast<char>(0xc0 | (c >> 6)), trail(c)};
    } else if (c < 0x10000) {
        out += {static_cast<char>(0xe0 | (c >> 12)), trail(c >> 6), trail(c)};
    } else {
        out += {static_cast<char>(0xf0 | (c >> 18)), trail(c >> 12), trail(c >> 6), trail(c)};
    }
}

/// The length of the sequence that a lead byte announces; 0 for no lead byte.
std::size_t sequenceLength(unsigned char lead) {
    if (lead < 0x80) {
        return 1;
    }
    if (lead >= 0xc2 && lead < 0xe0) {
        return 2;
    }
    if (lead >= 0xe0 && lead < 0xf0) {
        return 3;
    }
    return lead >= 0xf0 && lead < 0xf5 ? 4 : 0;
}

/// Reads the sequence at the front of `text`; length 0 when it is broken.
struct Decoded {
    std::uint32_t codePoint = 0;
    std::size_t length = 0;
};

Decoded decodeFirst(std::string_view text) {
    const auto lead = static_cast<unsigned char>(text[0]);
    const std::size_t length = sequenceLength(lead);
    if (length == 0 || length > text.size()) {
        return {};
    }
    constexpr std::array<std::uint32_t, 5> kSmallest{0, 0, 0x80, 0x800, 0x10000};
    std::uint32_t c = length == 1 ? lead : lead & (0x7fu >> length);
    for (std::size_t i = 1; i < length; ++i) {
        const auto byte = static_cast<unsigned char>(text[i]);
        if ((byte & 0xc0) != 0x80) {
            return {};
        }
        c = (c << 6) | (byte & 0x3fu);
    }
    if (c < kSmallest[length]) {
        return {}; // overlong
    }
    return {c, length};
}

void appendUpper(std::string& out, std::uint32_t c) {
    const auto expansion =
        std::lower_bound(kExpansions.begin(), kExpansions.end(), c,
                         [](const CaseExpansion& e, std::uint32_t v) { return e.codePoint < v; });
    if (expansion != kExpansions.end() && expansion->codePoint == c) {
        out += expansion->upper;
        return;
    }
    const auto range =
        std::lower_bound(kRanges.begin(), kRanges.end(), c,
                         [](const CaseRange& r, std::uint32_t v) { return r.last < v; });
    const bool mapped =
        range != kRanges.end() && range->first <= c && (c - range->first) % range->stride == 0;
    appendUtf8(out, mapped ? static_cast<std::uint32_t>(static_cast<std::int32_t>(c) + range->delta)
                           : c);
}

} // namespace

std::string uppercase(std::string_view text) {
    std::string out;
    out.reserve(text.size());
    while (!text.empty()) {
        const unsigned char lead = static_cast<unsigned char>(text[0]);
        if (lead >= 'a' && lead <= 'z') {
            out += static_cast<char>(lead - 'a' + 'A');
            text.remove_prefix(1);
            continue;
        }
        const Decoded first = decodeFirst(text);
        if (lead < 0x80 || first.length == 0) {
            out += text[0];
            text.remove_prefix(1);
            continue;
        }
        appendUpper(out, first.codePoint);
        text.remove_prefix(first.length);
    }
    return out;
}

} // namespace tavi
