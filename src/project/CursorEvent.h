#pragma once

#include "project/RawValue.h"

#include <cstdint>
#include <optional>
#include <string>

namespace tavi {

enum class CursorEventType {
    move,
    leftClick, ///< Never produced by this recorder; older logs hold it.
    rightClick,
    scroll,
    leftMouseDown,
    leftMouseUp,
    keyDown,
};

template<>
struct RawValues<CursorEventType> {
    static constexpr std::array<std::string_view, 7> names{
        "move", "leftClick", "rightClick", "scroll", "leftMouseDown", "leftMouseUp", "keyDown"};
};

/// One thing that the pointer or the keyboard did.
struct CursorEvent {
    double timestamp = 0; ///< Seconds since the first video frame of the take.
    double x = 0;         ///< Points from the left edge of the capture frame.
    double y = 0;         ///< Points from the top edge of the capture frame, downwards.
    CursorEventType eventType = CursorEventType::move;
    std::int64_t cursorImageId = 0;            ///< Index into the image table; may lie outside it.
    std::optional<std::string> keyCharacter;   ///< On keyDown: what the key types.
    std::optional<std::uint64_t> keyModifiers; ///< On keyDown: modifier flags.

    bool operator==(const CursorEvent&) const = default;
};

/// One row of a take's cursor image table; the pixels lie in cursor_<n>.png.
struct CursorImageInfo {
    double hotspotX = 0; ///< Points from the image's left edge.
    double hotspotY = 0; ///< Points from the image's top edge, downwards.
    double width = 0;    ///< Points.
    double height = 0;   ///< Points.

    bool operator==(const CursorImageInfo&) const = default;
};

} // namespace tavi
