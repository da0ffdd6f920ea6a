#pragma once

#include "platform/x11/PixelRect.h"

#include <vector>

namespace tavi {

/// An area of a picture as a few rectangles that don't overlap. It may be a little larger
/// than what was put into it: it is meant for what must be fetched again.
class PixelRegion {
public:
    PixelRegion() = default;
    explicit PixelRegion(const PixelRect& rect) { add(rect); }

    void add(const PixelRect& rect);
    void add(const PixelRegion& other);
    void clear() { m_pieces.clear(); }

    bool isEmpty() const { return m_pieces.empty(); }
    const std::vector<PixelRect>& pieces() const { return m_pieces; }

    /// The smallest rectangle around it.
    PixelRect bounds() const;

    /// What of it lies in `limit`, moved by (dx, dy) afterwards.
    PixelRegion within(const PixelRect& limit, int dx = 0, int dy = 0) const;

private:
    std::vector<PixelRect> m_pieces;
};

} // namespace tavi
