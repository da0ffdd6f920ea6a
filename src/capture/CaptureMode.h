#pragma once

#include "project/RawValue.h"

namespace tavi {

/// What a take shows.
enum class CaptureMode { display, window };

template<>
struct RawValues<CaptureMode> {
    static constexpr std::array<std::string_view, 2> names{"Display", "Window"};
};

} // namespace tavi
