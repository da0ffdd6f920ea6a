#pragma once

#include "base/Geometry.h"

#include <array>
#include <string_view>

namespace tavi {

/// The output sizes that are offered to the user.
enum class ResolutionOption { fhd, qhd, uhd };

inline constexpr std::array kResolutionOptions{ResolutionOption::fhd, ResolutionOption::qhd,
                                               ResolutionOption::uhd};

/// The raw value, which is also the label: "1080p", "1440p", "4K".
std::string_view rawValue(ResolutionOption option);

/// The size that the option sets, in pixels.
Size sizeOf(ResolutionOption option);

/// The option that a project with outputs of that width shows as chosen.
ResolutionOption resolutionOptionFor(double width);

} // namespace tavi
