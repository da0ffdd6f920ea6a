#include "cursor/Keystrokes.h"

#include "cursor/Uppercase.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <utility>

namespace tavi {

namespace {

constexpr std::size_t kMostChips = 20;
constexpr double kFadeStart = 0.75; ///< Of a chip's life.

constexpr double kReferenceWidth = 1920; ///< Output width at which the scale is 1.
constexpr double kLabelFontSize = 14;
constexpr double kSmallestFontSize = 9;
constexpr double kModifierFontRatio = 0.85;
constexpr double kBottomMargin = 0.04; ///< Of the output's height.
constexpr double kShadowMargin = 8;    ///< Above the pill, times the scale.

using Named = std::pair<std::string_view, std::string_view>;
constexpr std::array<Named, 6> kNamedKeys{{{"Return", "↩"},
                                           {"Tab", "⇥"},
                                           {"Space", "␣"},
                                           {"Delete", "⌫"},
                                           {"ForwardDelete", "⌦"},
                                           {"Escape", "⎋"}}};

struct ModifierSymbol {
    std::uint64_t flag;
    std::string_view symbol;
};
constexpr std::array<ModifierSymbol, 4> kModifiers{
    {{0x40000, "⌃"}, {0x80000, "⌥"}, {0x20000, "⇧"}, {0x100000, "⌘"}}};

bool isVisible(const CursorEvent& event, double time, double displayDuration) {
    return event.eventType == CursorEventType::keyDown &&
           event.timestamp >= time - displayDuration && event.timestamp <= time &&
           event.keyCharacter && !event.keyCharacter->empty();
}

ChipInfo measuredChip(const VisibleKeystroke& keystroke, const KeystrokeMetrics& metrics,
                      const MeasureText& measure) {
    ChipInfo chip;
    chip.modSymbols = keystroke.modifierSymbols;
    chip.charLabel = keystroke.character;
    chip.charSize = measure(chip.charLabel, KeystrokeFont::label, metrics.labelFontSize);
    if (!chip.modSymbols.empty()) {
        chip.modSize = measure(chip.modSymbols, KeystrokeFont::modifiers, metrics.modifierFontSize);
    }
    return chip;
}

/// A bitmap's extent as a whole number; what no bitmap can have becomes the
/// nearest number an int holds.
int wholePixels(double extent) {
    constexpr double kMost = std::numeric_limits<int>::max();
    return extent > 0 ? static_cast<int>(std::min(extent, kMost)) : 0;
}

double chipWidth(const ChipInfo& chip, const KeystrokeMetrics& metrics) {
    return 2 * metrics.textInsetX + chip.charSize.width + chip.modSize.width +
           (chip.modSymbols.empty() ? 0 : metrics.modifierSpacing);
}

} // namespace

std::string keystrokeLabel(std::string_view keyCharacter) {
    for (const auto& [name, symbol] : kNamedKeys) {
        if (keyCharacter == name) {
            return std::string(symbol);
        }
    }
    return uppercase(keyCharacter);
}

std::string modifierSymbols(std::optional<std::uint64_t> keyModifiers) {
    std::string symbols;
    for (const auto& [flag, symbol] : kModifiers) {
        if (keyModifiers.value_or(0) & flag) {
            symbols += symbol;
        }
    }
    return symbols;
}

std::vector<VisibleKeystroke> visibleKeystrokes(std::span<const CursorEvent> events, double time,
                                                double displayDuration) {
    std::vector<const CursorEvent*> live;
    for (const CursorEvent& event : events) {
        if (isVisible(event, time, displayDuration)) {
            live.push_back(&event);
        }
    }
    const std::size_t first = live.size() > kMostChips ? live.size() - kMostChips : 0;
    std::vector<VisibleKeystroke> visible;
    for (std::size_t i = first; i < live.size(); ++i) {
        visible.push_back({modifierSymbols(live[i]->keyModifiers),
                           keystrokeLabel(*live[i]->keyCharacter), live[i]->timestamp});
    }
    return visible;
}

double keystrokeOpacity(double age, double displayDuration) {
    if (age < kFadeStart * displayDuration) {
        return 1;
    }
    const double u = (age - kFadeStart * displayDuration) / ((1 - kFadeStart) * displayDuration);
    const double opacity = 1 - u * u;
    return opacity > 0 ? opacity : 0;
}

double keystrokeSizeFactor(KeystrokeSize size) {
    constexpr std::array<double, 3> kFactors{0.825, 1.1, 1.485};
    return kFactors[static_cast<std::size_t>(size)];
}

KeystrokeMetrics::KeystrokeMetrics(double outputWidth, KeystrokeSize size)
    : scale((outputWidth / kReferenceWidth) * keystrokeSizeFactor(size)),
      labelFontSize(std::max(kLabelFontSize * scale, kSmallestFontSize)),
      modifierFontSize(kModifierFontRatio * labelFontSize),
      chipHeight(labelFontSize + 2 * (4 * scale)),
      pillHeight(chipHeight + 2 * (6 * scale)),
      chipSpacing(4 * scale),
      pillPaddingX(10 * scale),
      pillPaddingY(6 * scale),
      textInsetX(8 * scale),
      textInsetY(4 * scale),
      modifierSpacing(2 * scale) {}

std::optional<KeystrokeLayout> layoutKeystrokes(std::span<const CursorEvent> events, double time,
                                                Size output, const CursorSettings& settings,
                                                const MeasureText& measure) {
    if (!settings.showKeystrokes) {
        return std::nullopt;
    }
    const double lifetime = settings.keystrokeDisplayDuration;
    const auto visible = visibleKeystrokes(events, time, lifetime);
    if (visible.empty()) {
        return std::nullopt;
    }
    const KeystrokeMetrics metrics(output.width, settings.keystrokeSize);
    KeystrokeLayout layout;
    double pillWidth =
        2 * metrics.pillPaddingX + metrics.chipSpacing * static_cast<double>(visible.size() - 1);
    for (const VisibleKeystroke& keystroke : visible) {
        ChipInfo& chip = layout.chips.emplace_back(measuredChip(keystroke, metrics, measure));
        chip.opacity = keystrokeOpacity(time - keystroke.timestamp, lifetime);
        pillWidth += chipWidth(chip, metrics);
    }
    layout.pill = {(output.width - pillWidth) * 0.5, output.height * kBottomMargin, pillWidth,
                   metrics.pillHeight};
    double x = layout.pill.x + metrics.pillPaddingX;
    for (const ChipInfo& chip : layout.chips) {
        const double width = chipWidth(chip, metrics);
        layout.chipRects.push_back(
            {x, layout.pill.y + metrics.pillPaddingY, width, metrics.chipHeight});
        x += width + metrics.chipSpacing;
    }
    layout.bitmapWidth = wholePixels(output.width);
    layout.bitmapHeight = wholePixels(std::ceil(
        kShadowMargin * metrics.scale + output.height * kBottomMargin + metrics.pillHeight));
    return layout;
}

} // namespace tavi
