#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace tavi {

/// One key press as the key helper reports it.
struct KeyLine {
    std::string character;                  ///< "c": the text for the key.
    std::optional<std::uint64_t> modifiers; ///< "m": the modifier flags.

    bool operator==(const KeyLine&) const = default;
};

/// Reads one line of the key helper: a JSON object with "t" (any value) and a
/// string "c". An "m" that isn't an unsigned integer counts as absent; other
/// keys are ignored. Absent for anything else. Any thread.
std::optional<KeyLine> parseKeyLine(std::string_view line);

} // namespace tavi
