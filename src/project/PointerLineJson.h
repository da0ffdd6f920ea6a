#pragma once

#include "base/MediaTime.h"
#include "project/CursorEvent.h"

#include <optional>
#include <string_view>

namespace tavi {

/// A click or a tick of a wheel as the key helper reports it. It doesn't know where.
struct PointerLine {
    CursorEventType type = CursorEventType::leftMouseDown; ///< Never a move or a key.
    MediaTime hostTime; ///< CLOCK_MONOTONIC, of the device's own report.

    bool operator==(const PointerLine&) const = default;
};

/// Reads one line of the key helper: a JSON object with "t", a whole number of microseconds of
/// CLOCK_MONOTONIC, and "p", "leftMouseDown", "leftMouseUp", "rightClick" or "scroll"; other keys
/// are ignored. Absent for anything else. Any thread.
std::optional<PointerLine> parsePointerLine(std::string_view line);

} // namespace tavi
