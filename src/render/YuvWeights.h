#pragma once

#include "media/ColorConversion.h"

#include <cstdint>

namespace tavi {

/// The way from samples to colours as whole numbers. A sample in 1/256, times a
/// weight, without the lowest 16 bits of the product, is a share of a channel in
/// 1/kUnit. The offsets take away what black and no colour add, and hold the half
/// of a step that makes the final shift round.
struct ToBgraWeights {
    static constexpr int kUnitBits = 6;
    static constexpr int kUnit = 1 << kUnitBits;

    std::uint16_t luma = 0;
    std::uint16_t blueFromU = 0;
    std::uint16_t greenFromU = 0; ///< Taken away.
    std::uint16_t greenFromV = 0; ///< Taken away.
    std::uint16_t redFromV = 0;
    std::uint16_t blueOffset = 0;  ///< Taken away.
    std::uint16_t greenOffset = 0; ///< Added.
    std::uint16_t redOffset = 0;   ///< Taken away.
};

/// The way from colours to samples as whole numbers. A channel in 1/256, times a
/// weight, without the lowest 16 bits of the product, is a share of a sample in 1/256.
struct FromBgraWeights {
    struct Luma {
        std::uint16_t blue = 0;
        std::uint16_t green = 0;
        std::uint16_t red = 0;
        std::uint16_t offset = 0; ///< Black, and half a step.
    };
    /// One of the colour samples: its own channel's share (blue for Cb, red for Cr)
    /// less those of the others. The three add up to nothing for every grey.
    struct Chroma {
        std::uint16_t own = 0;
        std::uint16_t green = 0;
        std::uint16_t other = 0;
    };
    /// No colour, and half a step.
    static constexpr std::uint16_t kChromaOffset = 128 * 256 + 128;

    Luma luma;
    Chroma u;
    Chroma v;
};

/// Both follow from the definitions in ITU-R BT.601 and BT.709. Within 1/16 of a
/// channel's step of the exact result before it is rounded, and exact on greys.
ToBgraWeights toBgraWeights(YuvMatrix matrix, YuvRange range);
FromBgraWeights fromBgraWeights(YuvMatrix matrix, YuvRange range);

} // namespace tavi
