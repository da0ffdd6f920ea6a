#pragma once

#include "capture/CursorMode.h"

#include <cstdint>

namespace tavi {

/// What a desktop's ScreenCast portal says of itself.
struct ScreenCastFacts {
    /// Of AvailableSourceTypes and of the option "types".
    enum SourceType : std::uint32_t { monitor = 1, window = 2 };
    /// Of AvailableCursorModes and of the option "cursor_mode".
    enum CursorModeBit : std::uint32_t { hidden = 1, embedded = 2, metadata = 4 };

    /// From this version on a portal lets a program choose how the pointer comes.
    static constexpr std::uint32_t kCursorModes = 2;
    /// From this version on it remembers what its user agreed to.
    static constexpr std::uint32_t kRestoreTokens = 4;

    std::uint32_t version = 0;
    std::uint32_t sourceTypes = monitor;
    std::uint32_t cursorModes = 0; ///< 0 in portals before the cursor modes.

    bool canShow(SourceType type) const { return (sourceTypes & type) != 0; }
    bool canRestore() const { return version >= kRestoreTokens; }

    /// The best mode there is; a portal without a choice hides the pointer.
    CursorMode cursorMode() const {
        if (version < kCursorModes || cursorModes == 0) {
            return CursorMode::hidden;
        }
        if ((cursorModes & metadata) != 0) {
            return CursorMode::metadata;
        }
        return (cursorModes & hidden) != 0 ? CursorMode::hidden : CursorMode::embedded;
    }

    bool operator==(const ScreenCastFacts&) const = default;
};

/// The portal's word for a mode.
inline std::uint32_t bitOf(CursorMode mode) {
    switch (mode) {
    case CursorMode::metadata:
        return ScreenCastFacts::metadata;
    case CursorMode::hidden:
        return ScreenCastFacts::hidden;
    case CursorMode::embedded:
        return ScreenCastFacts::embedded;
    }
    return ScreenCastFacts::hidden;
}

} // namespace tavi
