#include "base/Uuid.h"

#include "base/HexDigits.h"

#include <random>

namespace tavi {

namespace {

constexpr std::size_t kTextLength = 36;

bool isDashPosition(std::size_t i) {
    return i == 8 || i == 13 || i == 18 || i == 23;
}

/// One generator a thread, seeded with the system's entropy.
std::mt19937_64& generator() {
    thread_local std::mt19937_64 engine = [] {
        std::random_device device;
        std::seed_seq seed{device(), device(), device(), device(),
                           device(), device(), device(), device()};
        return std::mt19937_64(seed);
    }();
    return engine;
}

} // namespace

Uuid Uuid::make() {
    Uuid id;
    for (std::size_t half = 0; half < 2; ++half) {
        std::uint64_t bits = generator()();
        for (std::size_t i = 0; i < 8; ++i, bits >>= 8) {
            id.bytes[half * 8 + i] = static_cast<std::uint8_t>(bits);
        }
    }
    id.bytes[6] = static_cast<std::uint8_t>((id.bytes[6] & 0x0f) | 0x40);
    id.bytes[8] = static_cast<std::uint8_t>((id.bytes[8] & 0x3f) | 0x80);
    return id;
}

std::optional<Uuid> Uuid::parse(std::string_view text) {
    if (text.size() != kTextLength) {
        return std::nullopt;
    }
    Uuid id;
    std::size_t nibble = 0;
    for (std::size_t i = 0; i < kTextLength; ++i) {
        if (isDashPosition(i)) {
            if (text[i] != '-') {
                return std::nullopt;
            }
            continue;
        }
        const int value = hexDigitValue(text[i]);
        if (value < 0) {
            return std::nullopt;
        }
        auto& byte = id.bytes[nibble / 2];
        byte = static_cast<std::uint8_t>((byte << 4) | value);
        ++nibble;
    }
    return id;
}

std::string Uuid::text() const {
    static constexpr char kDigits[] = "0123456789ABCDEF";
    std::string out;
    out.reserve(kTextLength);
    for (const std::uint8_t byte : bytes) {
        if (isDashPosition(out.size())) {
            out += '-';
        }
        out += kDigits[byte >> 4];
        out += kDigits[byte & 0x0f];
    }
    return out;
}

} // namespace tavi
