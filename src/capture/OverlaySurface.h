#pragma once

#include "base/Geometry.h"
#include "base/PixelBuffer.h"

#include <functional>
#include <memory>

namespace tavi {

/// A see-through picture over everything on one display, through which clicks go. Main thread. The
/// destructor takes it away.
class OverlaySurface {
public:
    virtual ~OverlaySurface() = default;

    /// Shows a picture of the size last told; premultiplied.
    virtual void show(const PixelBuffer& picture) = 0;
};

/// Makes surfaces on desktops that have a way for them other than windows.
class OverlaySurfaces {
public:
    /// The surface's size in points and how many pixels a point is to have; when it is first
    /// known, and when it changes.
    using Sized = std::function<void(Size points, int scale)>;

    virtual ~OverlaySurfaces() = default;

    /// For the display whose pixels `frame` has, else for one that the desktop chooses. Null where
    /// the desktop has no such way.
    virtual std::unique_ptr<OverlaySurface> makeSurface(const Rect& frame, Sized sized) = 0;
};

} // namespace tavi
