#pragma once

#include "project/CodableColor.h"
#include "project/RawValue.h"

#include <cstdint>

namespace tavi {

enum class BackgroundStyle { solidBlack, solidWhite, solidCustom, gradient, blur, wallpaper };

template<>
struct RawValues<BackgroundStyle> {
    static constexpr std::array<std::string_view, 6> names{
        "solidBlack", "solidWhite", "solidCustom", "gradient", "blur", "wallpaper"};
};

enum class WallpaperPreset { aurora, sunset, ocean, lavender, ember, forest };

template<>
struct RawValues<WallpaperPreset> {
    static constexpr std::array<std::string_view, 6> names{"aurora",   "sunset", "ocean",
                                                           "lavender", "ember",  "forest"};
};

/// What surrounds the video in the output frame.
struct AppearanceSettings {
    BackgroundStyle backgroundStyle = BackgroundStyle::blur;
    CodableColor solidColor;
    std::int64_t gradientPresetIndex = 0; ///< Clamped to the gradient table when used.
    double blurRadius = 40.0;             ///< Output pixels.
    WallpaperPreset wallpaperPreset = WallpaperPreset::aurora;
    bool animateBackground = false;
    double padding = 0.03;      ///< Fraction of the output, on each side, each axis by its own.
    double cornerRadius = 13.0; ///< Output pixels.
    bool shadowEnabled = false;
    double shadowRadius = 20.0; ///< Output pixels.
    double shadowOpacity = 0.5; ///< 0 to 1.

    bool operator==(const AppearanceSettings&) const = default;
};

} // namespace tavi
