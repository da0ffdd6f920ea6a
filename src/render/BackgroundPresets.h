#pragma once

#include "project/AppearanceSettings.h"
#include "project/CodableColor.h"

#include <array>
#include <span>
#include <string_view>

namespace tavi {

/// A straight colour ramp; only its first and last colours are drawn.
struct GradientPreset {
    std::string_view id;
    std::array<CodableColor, 2> colors;
    double angle = 0; ///< Degrees, anticlockwise from the x axis.
};

/// A soft round patch of a wallpaper.
struct WallpaperBlob {
    double cx = 0;             ///< Fraction of the output's width.
    double cy = 0;             ///< Fraction of the output's height, from the bottom.
    double radiusFraction = 0; ///< Of the longer side of the output.
    CodableColor color;        ///< At the centre; fades to nothing at the radius.
};

struct Wallpaper {
    CodableColor baseColor;
    std::array<WallpaperBlob, 3> blobs;
};

/// The gradients in the order of their indices.
std::span<const GradientPreset> gradientPresets();

/// The preset of an index; the nearest one for an index outside of the table.
const GradientPreset& gradientPreset(std::int64_t index);

const Wallpaper& wallpaper(WallpaperPreset preset);

} // namespace tavi
