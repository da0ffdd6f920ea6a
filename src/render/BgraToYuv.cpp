// Vectors are members of structs here, which those without a fixed size can't be.
#define HWY_DISABLED_TARGETS (HWY_SVE | HWY_SVE2 | HWY_SVE_256 | HWY_SVE2_128 | HWY_RVV)
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "render/BgraToYuv.cpp" // compiled once for each target
#include "render/YuvKernels.h"

#include <algorithm>
#include <hwy/foreach_target.h> // before highway.h
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace tavi {
namespace HWY_NAMESPACE {

#if HWY_TARGET == HWY_SCALAR

/// Without vectors the plain versions serve.
bool rowToLumaVectors(const std::uint8_t*, const FromBgraWeights::Luma&, std::uint8_t*,
                      std::size_t) {
    return false;
}

bool rowsToChromaVectors(const PixelRows&, const ToChroma&, const ChromaTarget&, std::size_t) {
    return false;
}

#else

namespace hn = hwy::HWY_NAMESPACE;

using Words = hn::ScalableTag<std::uint16_t>;
using Pixels = hn::Repartition<std::uint32_t, Words>;
using Bytes = hn::Repartition<std::uint8_t, Words>;
using Word = hn::Vec<Words>;

/// Pixels with their channels in 1/256, two words a pixel.
struct Channels {
    Word blueRed;
    Word greenAlpha;
};

HWY_INLINE Channels loadPixels(const std::uint8_t* bgra) {
    const Words words;
    const Word pixels = hn::BitCast(words, hn::LoadU(Bytes(), bgra));
    return {hn::ShiftLeft<8>(pixels), hn::And(pixels, hn::Set(words, 0xFF00))};
}

HWY_INLINE Channels mean(const Channels& a, const Channels& b) {
    return {hn::AverageRound(a.blueRed, b.blueRed), hn::AverageRound(a.greenAlpha, b.greenAlpha)};
}

/// Two words that take turns, the one for the low half of a pixel first.
HWY_INLINE Word alternating(std::uint16_t low, std::uint16_t high) {
    const auto pair = static_cast<std::uint32_t>(low) | static_cast<std::uint32_t>(high) << 16;
    return hn::BitCast(Words(), hn::Set(Pixels(), pair));
}

struct LumaVectors {
    Word blueRed;
    Word green;
    Word offset;
};

/// Brightness in 1/256 of as many pixels as there are words.
HWY_INLINE Word lumaOf(const std::uint8_t* bgra, const LumaVectors& by) {
    const Words words;
    const auto shares = [&by](const std::uint8_t* from) HWY_ATTR {
        const Channels pixels = loadPixels(from);
        return hn::Add(hn::MulHigh(pixels.blueRed, by.blueRed),
                       hn::MulHigh(pixels.greenAlpha, by.green));
    };
    const Word first = shares(bgra);
    const Word second = shares(bgra + hn::Lanes(Bytes()));
    return hn::Add(
        hn::Add(hn::ConcatEven(words, second, first), hn::ConcatOdd(words, second, first)),
        by.offset);
}

/// Returns false, having done nothing, where there is less than a vector.
bool rowToLumaVectors(const std::uint8_t* bgra, const FromBgraWeights::Luma& weights,
                      std::uint8_t* luma, std::size_t width) {
    const Bytes bytes;
    const std::size_t step = hn::Lanes(bytes);
    if (width < step) {
        return false;
    }
    const LumaVectors by{alternating(weights.blue, weights.red), alternating(weights.green, 0),
                         hn::Set(Words(), weights.offset)};
    for (std::size_t x = 0; x < width; x += step) {
        x = std::min(x, width - step); // the last vector overlaps the one before
        const Word first = lumaOf(bgra + 4 * x, by);
        const Word second = lumaOf(bgra + 4 * x + 2 * step, by);
        const auto whole =
            hn::ConcatOdd(bytes, hn::BitCast(bytes, second), hn::BitCast(bytes, first));
        hn::StoreU(whole, bytes, luma + x);
    }
    return true;
}

/// The mean of the rows, in 1/256, of a vector of pixels from a byte on.
template<ChromaSiting kSiting>
HWY_INLINE Channels rowsAt(const PixelRows& rows, std::size_t byte) {
    const Channels own = loadPixels(rows.own + byte);
    const Channels below = loadPixels(rows.below + byte);
    if constexpr (kSiting == ChromaSiting::topLeft) {
        return mean(own, mean(loadPixels(rows.above + byte), below));
    } else {
        return mean(own, below);
    }
}

/// The same of pixels that already are means of themselves and their left neighbours.
template<ChromaSiting kSiting>
HWY_INLINE Channels smoothedAt(const PixelRows& rows, std::size_t byte) {
    if constexpr (kSiting == ChromaSiting::centre) {
        return rowsAt<kSiting>(rows, byte);
    } else {
        return mean(rowsAt<kSiting>(rows, byte), rowsAt<kSiting>(rows, byte - 4));
    }
}

/// The means of neighbours: of half as many pixels as lie in the two vectors.
HWY_INLINE Word halved(Word first, Word second) {
    const Pixels pixels;
    const auto a = hn::BitCast(pixels, first);
    const auto b = hn::BitCast(pixels, second);
    return hn::AverageRound(hn::BitCast(Words(), hn::ConcatEven(pixels, b, a)),
                            hn::BitCast(Words(), hn::ConcatOdd(pixels, b, a)));
}

struct ChromaVectors {
    Word own;   ///< For blue and red.
    Word green; ///< For green twice.
    Word other; ///< For red and blue.
};

/// Pairs of Cb and Cr in 1/256 for a vector of pixels.
HWY_INLINE Word chromaOf(const Channels& colours, const ChromaVectors& by) {
    const Words words;
    const Pixels pixels;
    const auto blueRed = hn::BitCast(pixels, colours.blueRed);
    const Word redBlue = hn::BitCast(words, hn::RotateRight<16>(blueRed));
    const auto green = hn::And(hn::BitCast(pixels, colours.greenAlpha), hn::Set(pixels, 0xFFFF));
    const Word greens = hn::BitCast(words, hn::Or(green, hn::ShiftLeft<16>(green)));
    const Word more = hn::SaturatedAdd(hn::MulHigh(colours.blueRed, by.own),
                                       hn::Set(words, FromBgraWeights::kChromaOffset));
    const Word less = hn::Add(hn::MulHigh(greens, by.green), hn::MulHigh(redBlue, by.other));
    return hn::SaturatedSub(more, less);
}

/// Stores as many pairs as there are words in a vector.
HWY_INLINE void storeChroma(Word first, Word second, const ChromaTarget& out, std::size_t place) {
    const Words words;
    const Bytes bytes;
    if (out.isInterleaved) {
        const auto pairs =
            hn::ConcatOdd(bytes, hn::BitCast(bytes, second), hn::BitCast(bytes, first));
        hn::StoreU(pairs, bytes, out.u + 2 * place);
        return;
    }
    const auto store = [](Word samples, std::uint8_t* to) HWY_ATTR {
        const hn::RebindToSigned<Words> numbers;
        const hn::Rebind<std::uint8_t, Words> half;
        const auto whole = hn::BitCast(numbers, hn::ShiftRight<8>(samples));
        hn::StoreU(hn::DemoteTo(half, whole), half, to);
    };
    store(hn::ConcatEven(words, second, first), out.u + place);
    store(hn::ConcatOdd(words, second, first), out.v + place);
}

template<ChromaSiting kSiting>
void convertRows(const PixelRows& rows, const ChromaVectors& by, const ChromaTarget& out,
                 std::size_t end) {
    const std::size_t step = hn::Lanes(Words());
    const std::size_t size = hn::Lanes(Bytes());
    const auto convert = [&](std::size_t byte) HWY_ATTR {
        const Channels first = smoothedAt<kSiting>(rows, byte);
        const Channels second = smoothedAt<kSiting>(rows, byte + size);
        return chromaOf(
            {halved(first.blueRed, second.blueRed), halved(first.greenAlpha, second.greenAlpha)},
            by);
    };
    for (std::size_t j = 1; j < end; j += step) {
        j = std::min(j, end - step); // the last vector overlaps the one before
        storeChroma(convert(8 * j), convert(8 * j + 2 * size), out, j);
    }
}

/// Converts all but the first sample and the last one of an odd width. Returns
/// false, having done nothing, where that is less than a vector.
bool rowsToChromaVectors(const PixelRows& rows, const ToChroma& by, const ChromaTarget& out,
                         std::size_t width) {
    const std::size_t end = width / 2;
    if (end < hn::Lanes(Words()) + 1) {
        return false;
    }
    const auto& [luma, u, v] = by.weights;
    const ChromaVectors vectors{alternating(u.own, v.own), alternating(u.green, v.green),
                                alternating(u.other, v.other)};
    switch (by.siting) {
    case ChromaSiting::left:
        convertRows<ChromaSiting::left>(rows, vectors, out, end);
        break;
    case ChromaSiting::centre:
        convertRows<ChromaSiting::centre>(rows, vectors, out, end);
        break;
    case ChromaSiting::topLeft:
        convertRows<ChromaSiting::topLeft>(rows, vectors, out, end);
        break;
    }
    return true;
}

#endif

} // namespace HWY_NAMESPACE
} // namespace tavi
HWY_AFTER_NAMESPACE();

#if HWY_ONCE

namespace tavi {

HWY_EXPORT(rowToLumaVectors);
HWY_EXPORT(rowsToChromaVectors);

namespace {

constexpr std::size_t kPixel = 4; // bytes

unsigned share(unsigned value, unsigned weight) {
    return value * weight >> 16;
}

/// The mean of a channel over the rows, in 1/256; exact.
unsigned columnMean(const PixelRows& rows, ChromaSiting siting, std::size_t byte) {
    const unsigned own = rows.own[byte];
    const unsigned below = rows.below[byte];
    return siting == ChromaSiting::topLeft ? (rows.above[byte] + 2 * own + below) * 64
                                           : (own + below) * 128;
}

/// The mean of a channel around a colour sample, in 1/256. Exact: there are at most
/// 16 shares.
unsigned meanAround(const PixelRows& rows, ChromaSiting siting, std::size_t sample,
                    std::size_t width, std::size_t channel) {
    const auto at = [&](std::size_t x) { return columnMean(rows, siting, x * kPixel + channel); };
    const std::size_t x = 2 * sample;
    const std::size_t right = std::min(x + 1, width - 1);
    if (siting == ChromaSiting::centre) {
        return (at(x) + at(right)) / 2;
    }
    return (at(std::max<std::size_t>(x, 1) - 1) + 2 * at(x) + at(right)) / 4;
}

std::uint8_t chromaSample(unsigned own, unsigned green, unsigned other,
                          const FromBgraWeights::Chroma& by) {
    const unsigned more = std::min(share(own, by.own) + FromBgraWeights::kChromaOffset, 0xFFFFU);
    return static_cast<std::uint8_t>((more - share(green, by.green) - share(other, by.other)) >> 8);
}

void convertSample(const PixelRows& rows, const ToChroma& by, const ChromaTarget& out,
                   std::size_t width, std::size_t sample) {
    const unsigned blue = meanAround(rows, by.siting, sample, width, 0);
    const unsigned green = meanAround(rows, by.siting, sample, width, 1);
    const unsigned red = meanAround(rows, by.siting, sample, width, 2);
    std::uint8_t* u = out.isInterleaved ? out.u + 2 * sample : out.u + sample;
    std::uint8_t* v = out.isInterleaved ? u + 1 : out.v + sample;
    *u = chromaSample(blue, green, red, by.weights.u);
    *v = chromaSample(red, green, blue, by.weights.v);
}

} // namespace

void rowToLuma(const std::uint8_t* bgra, const FromBgraWeights::Luma& weights, std::uint8_t* luma,
               std::size_t width) {
    if (!HWY_DYNAMIC_DISPATCH(rowToLumaVectors)(bgra, weights, luma, width)) {
        plainRowToLuma(bgra, weights, luma, width);
    }
}

void plainRowToLuma(const std::uint8_t* bgra, const FromBgraWeights::Luma& weights,
                    std::uint8_t* luma, std::size_t width) {
    for (std::size_t x = 0; x < width; ++x) {
        const std::uint8_t* pixel = bgra + x * kPixel;
        const unsigned sum = share(pixel[0] * 256U, weights.blue) +
                             share(pixel[1] * 256U, weights.green) +
                             share(pixel[2] * 256U, weights.red) + weights.offset;
        luma[x] = static_cast<std::uint8_t>(sum >> 8);
    }
}

void rowsToChroma(PixelRows rows, const ToChroma& by, ChromaTarget out, std::size_t width) {
    if (!HWY_DYNAMIC_DISPATCH(rowsToChromaVectors)(rows, by, out, width)) {
        plainRowsToChroma(rows, by, out, width);
        return;
    }
    convertSample(rows, by, out, width, 0);
    if (width % 2 == 1) {
        convertSample(rows, by, out, width, width / 2);
    }
}

void plainRowsToChroma(PixelRows rows, const ToChroma& by, ChromaTarget out, std::size_t width) {
    for (std::size_t sample = 0; sample < (width + 1) / 2; ++sample) {
        convertSample(rows, by, out, width, sample);
    }
}

} // namespace tavi

#endif
