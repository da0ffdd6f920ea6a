#pragma once

#include "base/PixelBuffer.h"
#include "editor/InspectorControls.h"

#include <cstddef>

namespace tavi {

/// The small picture of a background to choose; null for a choice that is told in words or by a
/// symbol alone. Pictures are made once for each look. Thread: main.
PixelBufferPtr choicePicture(const InspectorControl& control, std::size_t choice,
                             const AppearanceSettings& settings);

} // namespace tavi
