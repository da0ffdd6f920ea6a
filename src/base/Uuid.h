#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace tavi {

/// A 128-bit identity. Written in upper case, read in either case.
struct Uuid {
    std::array<std::uint8_t, 16> bytes{};

    /// A fresh random identity (RFC 4122 version 4). Any thread.
    static Uuid make();

    /// Reads the 36-character form "8-4-4-4-12"; absent for anything else.
    static std::optional<Uuid> parse(std::string_view text);

    /// The 36-character form in upper case.
    std::string text() const;

    bool operator==(const Uuid&) const = default;
    auto operator<=>(const Uuid&) const = default;
};

} // namespace tavi
