#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace tavi {

/// Bits of a key line's "m". The numbers are part of the takes' format.
namespace modifier {
inline constexpr std::uint32_t kShift = 0x20000;
inline constexpr std::uint32_t kControl = 0x40000;
inline constexpr std::uint32_t kOption = 0x80000;   ///< Alt.
inline constexpr std::uint32_t kCommand = 0x100000; ///< Super.
} // namespace modifier

/// The line that says "listening", with its line feed.
inline constexpr std::string_view kReadyLine = "{\"ready\":true}\n";

/// One key press as a line of JSON with its line feed. `time` is in
/// milliseconds of the event source's own clock; `text` is valid UTF-8.
std::string keyLine(std::uint32_t time, std::string_view text, std::uint32_t modifiers);

/// What a pointer line tells.
enum class PointerDeed { leftMouseDown, leftMouseUp, rightClick, scroll };

/// A click or a tick of a wheel as a line of JSON with its line feed. `time` is in microseconds
/// of CLOCK_MONOTONIC.
std::string pointerLine(std::uint64_t time, PointerDeed deed);

/// Writes the whole line to standard output in one call, so that a reader never
/// sees a part of it. False when the reader is gone.
bool writeLine(std::string_view line);

} // namespace tavi
