#pragma once

#include "render/AxisTaps.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace tavi {

/// The first pass of a resampling: one source row brought to the target's columns.
///
/// Shapes: pixels have four 8-bit channels; a result has 4 numbers a column.
/// Units:  a result is 64 times the channel's value, 0 .. 255 * 64, which leaves
///         no visible rounding to the second pass.
/// Thread: columns() and plainColumns() any; they allocate nothing.
class ResampleColumns {
public:
    static constexpr int kExtraBits = 6; ///< Of a result beyond the 8 of a channel.

    /// Sets the pass up for these taps and rows of that many pixels.
    void begin(const AxisTaps& taps, int sourceWidth);

    /// Resamples the row `in` by the fastest means this processor has; `taps` are
    /// those of begin(). A result is within 2 of plainColumns(). `next` is the row
    /// that is wanted next, which is fetched from memory meanwhile.
    void columns(const std::uint8_t* in, const std::uint8_t* next, const AxisTaps& taps,
                 std::uint16_t* out) const;

private:
    enum class Means {
        /// Every column is the mix of two pixels and at most one pixel on from the
        /// column before, so that a vector of columns lies in a vector of pixels.
        interpolation,
        reduction, ///< See reduceColumns().
        plain,
    };

    void prepareReduction(const AxisTaps& taps);

    int m_sourceWidth = 0;
    Means m_means = Means::plain;
    /// In 1/32768. Interpolation: per column 4 times the second pixel's weight.
    /// Reduction: per column and tap 4 times the weight.
    std::vector<std::int16_t> m_shares;
};

/// The reference of ResampleColumns::columns(), for any number of taps. Writes the
/// columns from `begin` on; `out` points at the first one all the same.
void plainColumns(const std::uint8_t* in, const AxisTaps& taps, std::uint16_t* out,
                  std::size_t begin = 0);

} // namespace tavi
