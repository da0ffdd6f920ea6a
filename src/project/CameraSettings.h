#pragma once

#include "project/CodableColor.h"
#include "project/RawValue.h"

namespace tavi {

enum class CameraPosition { bottomRight, bottomLeft, topRight, topLeft };

template<>
struct RawValues<CameraPosition> {
    static constexpr std::array<std::string_view, 4> names{"Bottom Right", "Bottom Left",
                                                           "Top Right", "Top Left"};
};

/// The camera bubble.
struct CameraSettings {
    bool enabled = false;
    CameraPosition position = CameraPosition::bottomRight;
    double sizeFraction = 0.2;    ///< Of the output's width.
    double marginFraction = 0.03; ///< Of the output's width.
    double borderWidth = 3.0;     ///< Output pixels.
    CodableColor borderColor{1, 1, 1, 0.9};
    bool shadowEnabled = true;
    double cornerRadius = 1000.0; ///< Output pixels; limited to half the bubble.

    bool operator==(const CameraSettings&) const = default;
};

} // namespace tavi
