#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

namespace tavi {

/// The second pass of a resampling: rows of ResampleColumns mixed into one of
/// 8-bit channels.
///
/// Shapes: `rows` and `weights` have the same length; every row and `out` have
///         `count` numbers.
/// Units:  row values are 64 times those of a channel; weights are in
///         1/AxisTaps::kOne and add up to one. Rounds to nearest.
/// Thread: any; allocates nothing.
///
/// By the fastest means this processor has; within 1 of plainMixRows().
void mixRows(std::span<const std::uint16_t* const> rows, const std::int16_t* weights,
             std::uint8_t* out, std::size_t count);

/// The reference of mixRows().
void plainMixRows(std::span<const std::uint16_t* const> rows, const std::int16_t* weights,
                  std::uint8_t* out, std::size_t count);

} // namespace tavi
