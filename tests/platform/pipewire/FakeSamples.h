#pragma once

#include <cstdint>

namespace tavi::test {

/// Bits of the number itself of one sample of a format of SPA (SPA_AUDIO_FORMAT_*).
std::uint32_t bitsOfSample(std::uint32_t format);

/// Bytes of one sample of a format of SPA (SPA_AUDIO_FORMAT_*).
std::uint32_t bytesOfSample(std::uint32_t format);

/// Writes -1 ... 1 in a format.
void writeSample(std::uint32_t format, double value, std::uint8_t* to);

} // namespace tavi::test
