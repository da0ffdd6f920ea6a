#pragma once

#include "base/Geometry.h"
#include "project/CursorEvent.h"
#include "project/CursorSettings.h"

#include <functional>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace tavi {

/// What is shown of the keys pressed, shared by export and preview. Times are
/// seconds in the time base of the events. Any thread; all functions are pure.

/// The label of a key: a symbol for the named keys, else the text in upper case
/// (the full Unicode mapping, the same in every locale).
std::string keystrokeLabel(std::string_view keyCharacter);

/// The symbols of the modifier flags, always in the order ⌃⌥⇧⌘; empty for none.
std::string modifierSymbols(std::optional<std::uint64_t> keyModifiers);

/// One key press that is on screen.
struct VisibleKeystroke {
    std::string modifierSymbols;
    std::string character; ///< The key's label.
    double timestamp = 0;

    bool operator==(const VisibleKeystroke&) const = default;
};

/// The key presses not older than `displayDuration` at `time` (both ends
/// included), in log order, the last 20 of them.
std::vector<VisibleKeystroke> visibleKeystrokes(std::span<const CursorEvent> events, double time,
                                                double displayDuration);

/// How opaque a chip of that age is: 1 for three quarters of its life, then a
/// slow start and a quick end. In 0..1; never NaN.
double keystrokeOpacity(double age, double displayDuration);

/// The factor of a chip size.
double keystrokeSizeFactor(KeystrokeSize size);

/// The sizes of the chips of one output width, in output pixels.
struct KeystrokeMetrics {
    KeystrokeMetrics(double outputWidth, KeystrokeSize size);

    double scale;            ///< Output width over 1920, times the factor of the size.
    double labelFontSize;    ///< Of the key's label; at least 9.
    double modifierFontSize; ///< Of the modifier symbols.
    double chipHeight;
    double pillHeight;
    double chipSpacing;
    double pillPaddingX;
    double pillPaddingY;
    double textInsetX;
    double textInsetY;
    double modifierSpacing; ///< Between the symbols and the label.
};

enum class KeystrokeFont { label, modifiers };

/// The size of one line of text in pixels.
using MeasureText = std::function<Size(std::string_view text, KeystrokeFont font, double fontSize)>;

/// One chip, measured.
struct ChipInfo {
    std::string modSymbols;
    std::string charLabel;
    Size modSize; ///< Zero without symbols.
    Size charSize;
    double opacity = 1;
};

/// Where everything of the overlay goes: output pixels, origin at the bottom left.
struct KeystrokeLayout {
    std::vector<ChipInfo> chips;
    std::vector<Rect> chipRects; ///< One per chip.
    Rect pill;
    int bitmapWidth = 0;
    int bitmapHeight = 0;
};

/// Lays the visible chips out; absent when there is none.
std::optional<KeystrokeLayout> layoutKeystrokes(std::span<const CursorEvent> events, double time,
                                                Size output, const CursorSettings& settings,
                                                const MeasureText& measure);

} // namespace tavi
