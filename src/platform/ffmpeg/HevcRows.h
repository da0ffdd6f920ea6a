#pragma once

#include <cstdint>
#include <span>

namespace tavi {

/// Whether the pictures of an HEVC track can be decoded by several threads a picture: each row of
/// blocks has entropy coding of its own ("wavefronts"). `configuration` is the track's decoder
/// configuration record (ISO/IEC 14496-15, `hvcC`); false where it holds no picture parameter set,
/// ends early, or is of another form.
bool hasParallelRows(std::span<const std::uint8_t> configuration);

} // namespace tavi
