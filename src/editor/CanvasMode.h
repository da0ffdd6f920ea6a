#pragma once

#include "project/RawValue.h"

namespace tavi {

/// What the canvas shows: the recorded video alone, or the composed output.
enum class CanvasMode { raw, preview };

template<>
struct RawValues<CanvasMode> {
    static constexpr std::array<std::string_view, 2> names{"raw", "preview"};
};

} // namespace tavi
