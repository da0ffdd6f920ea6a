#pragma once

#include "project/RawValue.h"

namespace tavi {

enum class CursorStyle { pointer, circle, system };

template<>
struct RawValues<CursorStyle> {
    static constexpr std::array<std::string_view, 3> names{"Pointer", "Circle", "System"};
};

enum class CursorSmoothingPreset { none, slow, medium, fast, rapid };

template<>
struct RawValues<CursorSmoothingPreset> {
    static constexpr std::array<std::string_view, 5> names{"None", "Slow", "Medium", "Fast",
                                                           "Rapid"};
};

enum class KeystrokeSize { small, medium, large };

template<>
struct RawValues<KeystrokeSize> {
    static constexpr std::array<std::string_view, 3> names{"S", "M", "L"};
};

/// How pointer, clicks and key presses are drawn.
struct CursorSettings {
    bool showCursor = true;
    double cursorSize = 24.0; ///< Height of the drawn cursor in output pixels at zoom 1.
    CursorStyle cursorStyle = CursorStyle::pointer;
    bool showClickEffect = false;
    CursorSmoothingPreset smoothingPreset = CursorSmoothingPreset::medium;
    bool showKeystrokes = false;
    double keystrokeDisplayDuration = 2.5; ///< Seconds.
    KeystrokeSize keystrokeSize = KeystrokeSize::medium;

    bool operator==(const CursorSettings&) const = default;
};

} // namespace tavi
