#pragma once

#include "platform/pipewire/FakeCamera.h"

#include <cstdint>
#include <vector>

namespace tavi::test {

/// Bytes of a row of the (first) plane; 0 for a compressed format.
int rowBytes(const FakeMode& mode);

/// A picture of two halves, each 0xRRGGBB, in a mode's format: rows without padding, BT.601 with
/// limited range. The width is a multiple of four, the height even.
std::vector<std::uint8_t> fakePicture(const FakeMode& mode, std::uint32_t left,
                                      std::uint32_t right);

} // namespace tavi::test
