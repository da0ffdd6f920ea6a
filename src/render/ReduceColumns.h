#pragma once

#include <cstdint>
#include <vector>

namespace tavi {

/// Taps a column that reduceColumns() takes; fewer are filled up by zeroes.
constexpr int kReduceTaps = 4;

/// Mixes four neighbouring pixels for each column of a reduced row, by vectors.
///
/// Shapes:  four 8-bit channels; `first` has the first pixel of every column in
///          rising order; `shares` has 4 * kReduceTaps numbers a column, each
///          tap's weight once a channel; `out` 4 numbers a column.
/// Units:   shares are in 1/32768; results are 64 times the channel's value,
///          within 2 of the exact ones.
/// Returns: how many columns were written: those that have four pixels inside of
///          the row, and none where this processor has no vectors.
/// Thread:  any; allocates nothing. `next` is the row that is wanted next, which
///          is fetched from memory meanwhile.
int reduceColumns(const std::uint8_t* in, const std::uint8_t* next, int sourceWidth,
                  const std::vector<int>& first, const std::int16_t* shares, std::uint16_t* out);

} // namespace tavi
