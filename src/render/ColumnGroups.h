#pragma once

#include "render/AxisTaps.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace tavi {

/// The columns of a resampled row, laid out for vectors: each group of neighbours
/// takes its pixels out of as few vectors of the source row as possible.
///
/// Shapes: every group has `size` columns; the last one is filled up by repeating
///         the last column. A group's entries in the three lists follow each other
///         as the group's kernel reads them.
/// Units:  shares are in 1/AxisTaps::kOne.
struct ColumnGroups {
    int size = 0;                    ///< Columns a group.
    std::vector<std::int32_t> bases; ///< The pixels that vectors are loaded from.
    std::vector<std::uint8_t> lanes; ///< Which lanes of a loaded vector to take.
    /// A vector a group: for each of its blocks two shares of the first loaded or
    /// lower pixels, two of those that they are added to, and the same for the
    /// other half of the result. Short, since it is read once a source row.
    std::vector<std::uint16_t> shares;

    /// For columns that mix two pixels each and are at most one pixel on from the
    /// column before, so that a vector of columns lies in a vector of pixels and
    /// one more. Returns false where there are no vectors, the row of
    /// `sourceWidth` pixels is shorter than one, or the columns are others.
    bool makeInterpolation(const AxisTaps& taps, int sourceWidth);

    /// For columns of up to four pixels. Returns false where there are no vectors,
    /// the row is shorter than one, or a column has more pixels.
    bool makeReduction(const AxisTaps& taps, int sourceWidth);

private:
    /// Makes room for groups of `loads` vectors.
    void resize(int columns, int loads);
};

/// Mixes the columns of all groups out of the pixels `in`, 4 numbers a column of 64
/// times the channel's value, within 2 of plainColumns(). `next` is a row that is
/// wanted soon, which is fetched from memory meanwhile. Returns true when all pixels
/// that were looked at, some neighbours of those that count among them, are opaque.
/// Thread: any; allocates nothing.
bool interpolateGroups(const ColumnGroups& groups, const std::uint8_t* in, const std::uint8_t* next,
                       std::uint16_t* out);
bool reduceGroups(const ColumnGroups& groups, const std::uint8_t* in, const std::uint8_t* next,
                  std::uint16_t* out);

/// Pixels in a vector of this processor; 0 where it has none.
int pixelsInAVector();

} // namespace tavi
