#pragma once

#include "base/Geometry.h"
#include "render/ImageView.h"

#include <cstdint>
#include <span>
#include <vector>

namespace tavi {

/// How much of each pixel a rounded rectangle covers, 0..255, by area.
///
/// Kept as rows of spans: a run of partly covered pixels, a run of whole ones,
/// and another partly covered one, so that drawing pays for the edges alone.
/// Thread: as a plain value.
class CoverageMask {
public:
    /// One row: pixels [begin, end) are touched, [solidBegin, solidEnd) wholly.
    struct Row {
        int begin = 0;
        int solidBegin = 0;
        int solidEnd = 0;
        int end = 0;
        std::span<const std::uint8_t> left;  ///< Coverage of [begin, solidBegin).
        std::span<const std::uint8_t> right; ///< Coverage of [solidEnd, end).
    };

    /// Makes the mask of `shape`, its corners rounded by `radius`, as far as it
    /// lies inside `clip` and `bounds`. Rows count from the top. A radius that
    /// isn't positive leaves the corners; it is limited to half of the shorter
    /// side. A shape without area covers nothing.
    void assign(const Rect& shape, double radius, const Rect& clip, const PixelBounds& bounds);

    /// The pixels outside of which nothing is covered.
    const PixelBounds& bounds() const { return m_bounds; }

    /// Row `y` of bounds().
    Row row(int y) const;

private:
    struct StoredRow {
        int solidBegin = 0;
        int solidEnd = 0;
        std::size_t coverage = 0; ///< Where the row's partly covered pixels begin.
    };

    PixelBounds m_bounds;
    std::vector<StoredRow> m_rows;
    std::vector<std::uint8_t> m_coverage;
};

} // namespace tavi
