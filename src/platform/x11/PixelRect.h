#pragma once

#include <algorithm>

namespace tavi {

/// A rectangle of whole pixels, rows downwards; empty when a side isn't positive.
struct PixelRect {
    int x = 0;
    int y = 0;
    int width = 0;
    int height = 0;

    bool operator==(const PixelRect&) const = default;

    bool isEmpty() const { return width <= 0 || height <= 0; }
    long area() const { return isEmpty() ? 0 : static_cast<long>(width) * height; }

    PixelRect movedBy(int dx, int dy) const { return {x + dx, y + dy, width, height}; }

    PixelRect intersected(const PixelRect& other) const {
        const int left = std::max(x, other.x);
        const int top = std::max(y, other.y);
        const int right = std::min(x + width, other.x + other.width);
        const int bottom = std::min(y + height, other.y + other.height);
        return {left, top, std::max(right - left, 0), std::max(bottom - top, 0)};
    }

    /// The smallest rectangle around both.
    PixelRect united(const PixelRect& other) const {
        if (isEmpty()) {
            return other;
        }
        if (other.isEmpty()) {
            return *this;
        }
        const int left = std::min(x, other.x);
        const int top = std::min(y, other.y);
        const int right = std::max(x + width, other.x + other.width);
        const int bottom = std::max(y + height, other.y + other.height);
        return {left, top, right - left, bottom - top};
    }
};

} // namespace tavi
