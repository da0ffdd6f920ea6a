#pragma once

#include "base/Geometry.h"

#include <array>
#include <cstdint>
#include <string_view>

namespace tavi {

/// Size and rate of the exported film.
struct OutputSettings {
    Size resolution{1920, 1080};  ///< Pixels.
    std::int64_t fps = 60;        ///< Frames per second.
    bool autoAspectRatio = false; ///< The width follows the video's aspect.

    bool operator==(const OutputSettings&) const = default;
};

/// One row of the aspect choices offered to the user.
struct AspectChoice {
    std::string_view label;
    bool autoAspectRatio = false;
};

inline constexpr std::array<AspectChoice, 2> kAspectChoices{{{"16:9", false}, {"Auto", true}}};

/// The size of the output frame for a video of the given size.
///
/// The height is always that of `resolution`. With `autoAspectRatio` and a video
/// of positive size the width is the video's aspect times that height, rounded
/// to the nearest whole number (halves away from zero) and then up to an even one.
Size resolvedOutputSize(Size resolution, bool autoAspectRatio, Size video);

} // namespace tavi
