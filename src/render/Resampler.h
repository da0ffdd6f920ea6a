#pragma once

#include "base/Geometry.h"
#include "render/AxisTaps.h"
#include "render/ImageView.h"
#include "render/ResampleColumns.h"

#include <cstdint>
#include <optional>
#include <vector>

namespace tavi {

/// Moves and scales one picture into another, row by row of the target.
///
/// A stretch of the source lands on a stretch of the target, both at any
/// position between pixels: enlarged content is interpolated linearly, reduced
/// content averaged over its area (see AxisTaps). Work runs along x first, on
/// each source row once, then along y; between the two, values have 6 more bits.
///
/// Shapes:  the source is at least 1 x 1 pixel and outlives the drawing.
/// Errors:  none; a stretch without area is a caller's bug (assert).
/// Threads: one at a time. Memory is kept from picture to picture.
class Resampler {
public:
    /// Sets the picture up. Both rectangles count rows from the top; the source
    /// may reach beyond the picture, whose edge is then repeated. Rows and columns
    /// inside `pixels` can be asked for afterwards.
    void begin(ConstImageView source, const Rect& sourceRect, const Rect& targetRect,
               const PixelBounds& pixels);

    /// Writes row `y`, columns [left, right), to `out`, which receives column
    /// `left` first. Fastest when the rows are asked for from top to bottom.
    /// Returns true when the pixels written are known to be opaque, having been
    /// made of opaque ones only.
    bool writeRow(int y, int left, int right, std::uint8_t* out);

private:
    /// One place of the ring.
    struct RingRow {
        int sourceY = -1; ///< The source row that it holds; -1 none.
        bool isOpaque = false;
    };

    /// The place of the ring that has a source row, resampled along x.
    std::size_t horizontalRow(int sourceY);

    ConstImageView m_source;
    PixelBounds m_pixels;
    AxisTaps m_columns;
    AxisTaps m_rows;
    std::optional<int> m_copyColumn;   ///< Where the columns are a plain copy.
    std::vector<std::uint16_t> m_ring; ///< The last source rows; row y at y modulo their number.
    std::vector<RingRow> m_ringRows;
    std::size_t m_ringStride = 0; ///< Numbers from one place to the next.
    ResampleColumns m_columnPass;
    std::vector<const std::uint16_t*> m_mixedRows; ///< What makes up one target row.
    std::vector<std::int16_t> m_mixedWeights;
};

} // namespace tavi
