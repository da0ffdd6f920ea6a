#pragma once

#include "base/Geometry.h"
#include "render/ImageView.h"

#include <algorithm>
#include <cmath>

namespace tavi {

/// True for a rectangle that holds an area: finite numbers, positive sides.
inline bool hasArea(const Rect& r) {
    return std::isfinite(r.x) && std::isfinite(r.y) && r.width > 0 && r.height > 0 &&
           std::isfinite(r.width) && std::isfinite(r.height);
}

/// What two rectangles share; without area where they share none.
inline Rect intersection(const Rect& a, const Rect& b) {
    const double x = std::max(a.x, b.x);
    const double y = std::max(a.y, b.y);
    return {x, y, std::min(a.maxX(), b.maxX()) - x, std::min(a.maxY(), b.maxY()) - y};
}

/// The same rectangle counted from the other horizontal edge of a space of that
/// height: bottom-left origin to top-left origin and back.
inline Rect flipped(const Rect& r, double height) {
    return {r.x, height - r.maxY(), r.width, r.height};
}

/// The whole pixels that a top-left-origin rectangle touches, limited to `bounds`.
inline PixelBounds touchedPixels(const Rect& r, const PixelBounds& bounds) {
    if (!hasArea(r)) {
        return {};
    }
    const auto limit = [](double v, int low, int high) {
        return static_cast<int>(std::clamp(v, static_cast<double>(low), static_cast<double>(high)));
    };
    return {limit(std::floor(r.x), bounds.left, bounds.right),
            limit(std::floor(r.y), bounds.top, bounds.bottom),
            limit(std::ceil(r.maxX()), bounds.left, bounds.right),
            limit(std::ceil(r.maxY()), bounds.top, bounds.bottom)};
}

} // namespace tavi
