#pragma once

#include "base/Geometry.h"

#include <cstdint>
#include <optional>

namespace tavi {

/// Where the sources of a take are now. One thread.
class SourceFrames {
public:
    virtual ~SourceFrames() = default;

    /// A display's area in the global bottom-left-origin space, in points; absent when it is
    /// not connected any more.
    virtual std::optional<Rect> displayFrame(std::uint32_t displayId) = 0;

    /// A window's area without its decoration, likewise; absent when it was closed or can't be
    /// asked. Quick enough for every frame of an animation.
    virtual std::optional<Rect> windowFrame(std::uint32_t windowId) = 0;
};

} // namespace tavi
