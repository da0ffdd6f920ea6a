#pragma once

#include "render/AxisTaps.h"
#include "render/ColumnGroups.h"

#include <cstddef>
#include <cstdint>

namespace tavi {

/// The first pass of a resampling: one source row brought to the target's columns.
///
/// Shapes: pixels have four 8-bit channels; a result has 4 numbers a column.
/// Units:  a result is 64 times the channel's value, 0 .. 255 * 64 + 2, which
///         leaves no visible rounding to the second pass.
/// Thread: columns() and plainColumns() any; they allocate nothing.
class ResampleColumns {
public:
    static constexpr int kExtraBits = 6; ///< Of a result beyond the 8 of a channel.

    /// Sets the pass up for these taps and rows of that many pixels.
    void begin(const AxisTaps& taps, int sourceWidth);

    /// Numbers that columns() writes: 4 a column, and some more, whose values mean
    /// nothing, that fill up a vector.
    std::size_t rowSize() const;

    /// Resamples the row `in` by the fastest means this processor has; `taps` are
    /// those of begin(). A result is within 2 of plainColumns(). `next` is a row
    /// that is wanted soon, which is fetched from memory meanwhile. Returns true
    /// when the pixels that the columns are made of are known to be opaque.
    bool columns(const std::uint8_t* in, const std::uint8_t* next, const AxisTaps& taps,
                 std::uint16_t* out) const;

private:
    enum class Means { interpolation, reduction, plain };

    Means m_means = Means::plain;
    ColumnGroups m_groups; ///< Unless the means are plain.
    std::size_t m_columns = 0;
};

/// The reference of ResampleColumns::columns(), for any number of taps.
void plainColumns(const std::uint8_t* in, const AxisTaps& taps, std::uint16_t* out);

} // namespace tavi
