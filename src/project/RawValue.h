#pragma once

#include <array>
#include <cstddef>
#include <optional>
#include <string_view>

namespace tavi {

/// The raw values of a persisted enum, in the order of its cases, which count
/// from 0. Specialised beside each such enum; the spelling is part of the file
/// formats.
template<typename Enum>
struct RawValues;

template<typename Enum>
constexpr std::string_view rawValue(Enum value) {
    return RawValues<Enum>::names[static_cast<std::size_t>(value)];
}

/// The case whose raw value is exactly `text`; absent for anything else.
template<typename Enum>
constexpr std::optional<Enum> fromRawValue(std::string_view text) {
    for (std::size_t i = 0; i < RawValues<Enum>::names.size(); ++i) {
        if (RawValues<Enum>::names[i] == text) {
            return static_cast<Enum>(i);
        }
    }
    return std::nullopt;
}

} // namespace tavi
