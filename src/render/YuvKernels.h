#pragma once

#include "media/ColorConversion.h"
#include "render/YuvWeights.h"

#include <cstddef>
#include <cstdint>

namespace tavi {

// The rows of a YuvConverter. Each has a plain version that is its reference; the
// other one goes by the fastest means this processor has and gives the same bytes.
// Any thread; nothing is allocated.

/// A row of colour samples as it lies in a picture.
struct ChromaSamples {
    const std::uint8_t* u = nullptr; ///< With `isInterleaved` pairs of Cb and Cr.
    const std::uint8_t* v = nullptr; ///< Not looked at with `isInterleaved`.
    bool isInterleaved = false;
};

/// A row of colour samples in 1/256, with a repeated sample at either end: u[-1] and
/// v[-1], and one after the last.
struct ChromaRow {
    std::uint16_t* u = nullptr;
    std::uint16_t* v = nullptr;
};

/// Where the two rows made of `upper` and `lower` lie between them.
enum class ChromaMix {
    quarters, ///< At one quarter and three quarters of the way down.
    halves,   ///< At the upper one, and half way down.
};

/// Makes the colour of two rows of pixels: `count` samples each, without the ends.
void mixChroma(ChromaSamples upper, ChromaSamples lower, ChromaMix mix, ChromaRow first,
               ChromaRow second, std::size_t count);
void plainMixChroma(ChromaSamples upper, ChromaSamples lower, ChromaMix mix, ChromaRow first,
                    ChromaRow second, std::size_t count);

/// What turns rows of samples into pixels.
struct ToBgra {
    ToBgraWeights weights;
    bool isCentred = false; ///< Colour lies between two columns, not on the even ones.
};

/// Makes one row of opaque pixels of `width` brightness samples and half as many of colour.
void rowToBgra(const std::uint8_t* luma, ChromaRow chroma, const ToBgra& by, std::uint8_t* bgra,
               std::size_t width);
void plainRowToBgra(const std::uint8_t* luma, ChromaRow chroma, const ToBgra& by,
                    std::uint8_t* bgra, std::size_t width, std::size_t begin = 0);

/// Makes one row of brightness samples of `width` pixels.
void rowToLuma(const std::uint8_t* bgra, const FromBgraWeights::Luma& weights, std::uint8_t* luma,
               std::size_t width);
void plainRowToLuma(const std::uint8_t* bgra, const FromBgraWeights::Luma& weights,
                    std::uint8_t* luma, std::size_t width);

/// The rows of pixels that one row of colour samples comes from; each has one or more pixels.
struct PixelRows {
    const std::uint8_t* above = nullptr; ///< Looked at for ChromaSiting::topLeft only.
    const std::uint8_t* own = nullptr;
    const std::uint8_t* below = nullptr;
};

/// Where a row of colour samples goes.
struct ChromaTarget {
    std::uint8_t* u = nullptr; ///< With `isInterleaved` pairs of Cb and Cr.
    std::uint8_t* v = nullptr; ///< Not written to with `isInterleaved`.
    bool isInterleaved = false;
};

/// What turns rows of pixels into colour samples.
struct ToChroma {
    FromBgraWeights weights;
    ChromaSiting siting = ChromaSiting::left;
};

/// Makes the (width + 1) / 2 colour samples of `width` pixels a row.
void rowsToChroma(PixelRows rows, const ToChroma& by, ChromaTarget out, std::size_t width);
void plainRowsToChroma(PixelRows rows, const ToChroma& by, ChromaTarget out, std::size_t width);

} // namespace tavi
