// Vectors are members of structs here, which those without a fixed size can't be.
#define HWY_DISABLED_TARGETS (HWY_SVE | HWY_SVE2 | HWY_SVE_256 | HWY_SVE2_128 | HWY_RVV)
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "render/YuvToBgra.cpp" // compiled once for each target
#include "render/YuvKernels.h"

#include <algorithm>
#include <hwy/foreach_target.h> // before highway.h
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace tavi {
namespace HWY_NAMESPACE {

#if HWY_TARGET == HWY_SCALAR

/// Without vectors the plain versions serve.
bool mixChromaVectors(const ChromaSamples&, const ChromaSamples&, ChromaMix, const ChromaRow&,
                      const ChromaRow&, std::size_t) {
    return false;
}

std::size_t rowToBgraVectors(const std::uint8_t*, const ChromaRow&, const ToBgra&, std::uint8_t*,
                             std::size_t) {
    return 0;
}

#else

namespace hn = hwy::HWY_NAMESPACE;

using Words = hn::ScalableTag<std::uint16_t>;
using Word = hn::Vec<Words>;

HWY_INLINE void storeMixes(Word upper, Word lower, ChromaMix mix, std::uint16_t* first,
                           std::uint16_t* second) {
    const Words words;
    const Word middle = hn::AverageRound(upper, lower);
    const bool isQuarters = mix == ChromaMix::quarters;
    hn::StoreU(isQuarters ? hn::AverageRound(upper, middle) : upper, words, first);
    hn::StoreU(isQuarters ? hn::AverageRound(lower, middle) : middle, words, second);
}

/// Samples in 1/256.
HWY_INLINE Word loadPlane(const std::uint8_t* samples) {
    const Words words;
    const hn::Rebind<std::uint8_t, Words> bytes;
    return hn::ShiftLeft<8>(hn::PromoteTo(words, hn::LoadU(bytes, samples)));
}

/// Pairs of samples.
HWY_INLINE Word loadPairs(const std::uint8_t* samples) {
    const Words words;
    return hn::BitCast(words, hn::LoadU(hn::Repartition<std::uint8_t, Words>(), samples));
}

/// Returns false, having done nothing, where there is less than a vector.
bool mixChromaVectors(const ChromaSamples& upper, const ChromaSamples& lower, ChromaMix mix,
                      const ChromaRow& first, const ChromaRow& second, std::size_t count) {
    const Words words;
    const std::size_t step = hn::Lanes(words);
    if (count < step) {
        return false;
    }
    const auto high = hn::Set(words, 0xFF00);
    for (std::size_t i = 0; i < count; i += step) {
        i = std::min(i, count - step); // the last vector overlaps the one before
        if (upper.isInterleaved) {
            const Word above = loadPairs(upper.u + 2 * i);
            const Word below = loadPairs(lower.u + 2 * i);
            storeMixes(hn::ShiftLeft<8>(above), hn::ShiftLeft<8>(below), mix, first.u + i,
                       second.u + i);
            storeMixes(hn::And(above, high), hn::And(below, high), mix, first.v + i, second.v + i);
        } else {
            storeMixes(loadPlane(upper.u + i), loadPlane(lower.u + i), mix, first.u + i,
                       second.u + i);
            storeMixes(loadPlane(upper.v + i), loadPlane(lower.v + i), mix, first.v + i,
                       second.v + i);
        }
    }
    return true;
}

/// Two neighbouring pixels a lane, the left one in the low byte of each word.
struct Channels {
    Word blue;
    Word green;
    Word red;
};

/// The samples of pixels of one parity, in 1/256.
struct Samples {
    Word luma;
    Word u;
    Word v;
};

/// The weights, one a vector.
struct WeightVectors {
    Word luma, blueFromU, greenFromU, greenFromV, redFromV;
    Word blueOffset, greenOffset, redOffset;
};

HWY_INLINE WeightVectors weightVectors(const ToBgraWeights& from) {
    const Words words;
    return {hn::Set(words, from.luma),        hn::Set(words, from.blueFromU),
            hn::Set(words, from.greenFromU),  hn::Set(words, from.greenFromV),
            hn::Set(words, from.redFromV),    hn::Set(words, from.blueOffset),
            hn::Set(words, from.greenOffset), hn::Set(words, from.redOffset)};
}

/// A channel in 1/kUnit brought to a byte. Too little has become 0 before.
HWY_INLINE Word channel(Word value) {
    return hn::Min(hn::ShiftRight<ToBgraWeights::kUnitBits>(value), hn::Set(Words(), 255));
}

HWY_INLINE Channels convert(const Samples& in, const WeightVectors& by) {
    const Word luma = hn::MulHigh(in.luma, by.luma);
    const Word blue = hn::Add(luma, hn::MulHigh(in.u, by.blueFromU));
    const Word red = hn::Add(luma, hn::MulHigh(in.v, by.redFromV));
    const Word less = hn::Add(hn::MulHigh(in.u, by.greenFromU), hn::MulHigh(in.v, by.greenFromV));
    return {channel(hn::SaturatedSub(blue, by.blueOffset)),
            channel(hn::SaturatedSub(hn::Add(luma, by.greenOffset), less)),
            channel(hn::SaturatedSub(red, by.redOffset))};
}

HWY_INLINE auto joined(Word even, Word odd) {
    const hn::Repartition<std::uint8_t, Words> bytes;
    return hn::BitCast(bytes, hn::Or(even, hn::ShiftLeft<8>(odd)));
}

/// Interleaving works inside blocks of 16 bytes, so that the blocks of the four
/// vectors of pixels come out transposed. The order in which pairs of words are to
/// be taken before makes up for it.
class BlockOrder {
public:
    BlockOrder() {
        constexpr std::size_t kMost = hn::MaxLanes(Pairs());
        const std::size_t blocks = hn::Lanes(Pairs()) / 4;
        HWY_ALIGN std::int32_t order[kMost];
        for (std::size_t i = 0; i < hn::Lanes(Pairs()); ++i) {
            order[i] = static_cast<std::int32_t>(i % 4 * blocks + i / 4);
        }
        m_order = hn::SetTableIndices(Pairs(), order);
    }

    HWY_INLINE Word of(Word words) const {
        if constexpr (hn::MaxLanes(Pairs()) <= 4) {
            return words;
        } else {
            const auto pairs = hn::TableLookupLanes(hn::BitCast(Pairs(), words), m_order);
            return hn::BitCast(Words(), pairs);
        }
    }

private:
    using Pairs = hn::Repartition<std::uint32_t, Words>;
    using Order = decltype(hn::SetTableIndices(Pairs(), static_cast<std::int32_t*>(nullptr)));
    Order m_order;
};

/// Stores the pixels of words that were put in BlockOrder.
HWY_INLINE void storePixels(const Channels& even, const Channels& odd, std::uint8_t* out) {
    const Words words;
    const hn::Repartition<std::uint8_t, Words> bytes;
    const auto blue = joined(even.blue, odd.blue);
    const auto green = joined(even.green, odd.green);
    const auto red = joined(even.red, odd.red);
    const auto alpha = hn::Set(bytes, 255);
    const auto bgLow = hn::BitCast(words, hn::InterleaveLower(bytes, blue, green));
    const auto bgHigh = hn::BitCast(words, hn::InterleaveUpper(bytes, blue, green));
    const auto raLow = hn::BitCast(words, hn::InterleaveLower(bytes, red, alpha));
    const auto raHigh = hn::BitCast(words, hn::InterleaveUpper(bytes, red, alpha));
    const std::size_t size = hn::Lanes(bytes);
    const auto store = [&](Word pixels, std::size_t number) HWY_ATTR {
        hn::StoreU(hn::BitCast(bytes, pixels), bytes, out + number * size);
    };
    store(hn::InterleaveLower(words, bgLow, raLow), 0);
    store(hn::InterleaveUpper(words, bgLow, raLow), 1);
    store(hn::InterleaveLower(words, bgHigh, raHigh), 2);
    store(hn::InterleaveUpper(words, bgHigh, raHigh), 3);
}

/// The colour of the even and the odd pixels over a vector of samples.
struct Parities {
    Word even;
    Word odd;
};

template<bool kIsCentred>
HWY_INLINE Parities interpolate(const std::uint16_t* samples, const BlockOrder& order) {
    const Words words;
    const Word own = hn::LoadU(words, samples);
    const Word right = hn::AverageRound(own, hn::LoadU(words, samples + 1));
    if constexpr (kIsCentred) {
        const Word left = hn::AverageRound(own, hn::LoadU(words, samples - 1));
        return {order.of(hn::AverageRound(own, left)), order.of(hn::AverageRound(own, right))};
    } else {
        return {order.of(own), order.of(right)};
    }
}

template<bool kIsCentred>
void convertRow(const std::uint8_t* luma, const ChromaRow& chroma, const ToBgraWeights& weights,
                std::uint8_t* bgra, std::size_t width) {
    const Words words;
    const BlockOrder order;
    const WeightVectors by = weightVectors(weights);
    const auto high = hn::Set(words, 0xFF00);
    const std::size_t step = 2 * hn::Lanes(words);
    for (std::size_t x = 0; x < width; x += step) {
        x = std::min(x, width - step); // the last vector overlaps the one before
        const Parities u = interpolate<kIsCentred>(chroma.u + x / 2, order);
        const Parities v = interpolate<kIsCentred>(chroma.v + x / 2, order);
        const Word both = order.of(loadPairs(luma + x));
        storePixels(convert({hn::ShiftLeft<8>(both), u.even, v.even}, by),
                    convert({hn::And(both, high), u.odd, v.odd}, by), bgra + 4 * x);
    }
}

/// Converts what consists of pairs of pixels, if that is a vector or more; returns
/// the number of pixels done.
std::size_t rowToBgraVectors(const std::uint8_t* luma, const ChromaRow& chroma, const ToBgra& by,
                             std::uint8_t* bgra, std::size_t width) {
    const std::size_t even = width / 2 * 2;
    if (even < 2 * hn::Lanes(Words())) {
        return 0;
    }
    if (by.isCentred) {
        convertRow<true>(luma, chroma, by.weights, bgra, even);
    } else {
        convertRow<false>(luma, chroma, by.weights, bgra, even);
    }
    return even;
}

#endif

} // namespace HWY_NAMESPACE
} // namespace tavi
HWY_AFTER_NAMESPACE();

#if HWY_ONCE

namespace tavi {

HWY_EXPORT(mixChromaVectors);
HWY_EXPORT(rowToBgraVectors);

namespace {

/// The mean of two numbers; half a unit counts as a whole one.
std::uint16_t mean(unsigned a, unsigned b) {
    return static_cast<std::uint16_t>((a + b + 1) / 2);
}

unsigned share(unsigned sample, unsigned weight) {
    return sample * weight >> 16;
}

std::uint8_t channel(int value) {
    return static_cast<std::uint8_t>(std::clamp(value >> ToBgraWeights::kUnitBits, 0, 255));
}

void convertPixel(unsigned luma, unsigned u, unsigned v, const ToBgraWeights& by,
                  std::uint8_t* bgra) {
    const int light = static_cast<int>(share(luma * 256, by.luma));
    const int less = static_cast<int>(share(u, by.greenFromU) + share(v, by.greenFromV));
    bgra[0] = channel(light + static_cast<int>(share(u, by.blueFromU)) - by.blueOffset);
    bgra[1] = channel(light + by.greenOffset - less);
    bgra[2] = channel(light + static_cast<int>(share(v, by.redFromV)) - by.redOffset);
    bgra[3] = 255;
}

/// The colour of column x between samples, of which `samples` is the first.
std::uint16_t interpolated(const std::uint16_t* samples, std::size_t x, bool isCentred) {
    const std::uint16_t* own = samples + x / 2;
    const bool isOdd = x % 2 == 1;
    if (isCentred) {
        return mean(*own, mean(*own, isOdd ? own[1] : own[-1]));
    }
    return isOdd ? mean(*own, own[1]) : *own;
}

} // namespace

void mixChroma(ChromaSamples upper, ChromaSamples lower, ChromaMix mix, ChromaRow first,
               ChromaRow second, std::size_t count) {
    if (!HWY_DYNAMIC_DISPATCH(mixChromaVectors)(upper, lower, mix, first, second, count)) {
        plainMixChroma(upper, lower, mix, first, second, count);
    }
}

void plainMixChroma(ChromaSamples upper, ChromaSamples lower, ChromaMix mix, ChromaRow first,
                    ChromaRow second, std::size_t count) {
    const auto mixOne = [mix](unsigned a, unsigned b, std::uint16_t& one, std::uint16_t& other) {
        const std::uint16_t middle = mean(a * 256, b * 256);
        const bool isQuarters = mix == ChromaMix::quarters;
        one = isQuarters ? mean(a * 256, middle) : static_cast<std::uint16_t>(a * 256);
        other = isQuarters ? mean(b * 256, middle) : middle;
    };
    for (std::size_t i = 0; i < count; ++i) {
        if (upper.isInterleaved) {
            mixOne(upper.u[2 * i], lower.u[2 * i], first.u[i], second.u[i]);
            mixOne(upper.u[2 * i + 1], lower.u[2 * i + 1], first.v[i], second.v[i]);
        } else {
            mixOne(upper.u[i], lower.u[i], first.u[i], second.u[i]);
            mixOne(upper.v[i], lower.v[i], first.v[i], second.v[i]);
        }
    }
}

void rowToBgra(const std::uint8_t* luma, ChromaRow chroma, const ToBgra& by, std::uint8_t* bgra,
               std::size_t width) {
    const std::size_t done = HWY_DYNAMIC_DISPATCH(rowToBgraVectors)(luma, chroma, by, bgra, width);
    plainRowToBgra(luma, chroma, by, bgra, width, done);
}

void plainRowToBgra(const std::uint8_t* luma, ChromaRow chroma, const ToBgra& by,
                    std::uint8_t* bgra, std::size_t width, std::size_t begin) {
    for (std::size_t x = begin; x < width; ++x) {
        convertPixel(luma[x], interpolated(chroma.u, x, by.isCentred),
                     interpolated(chroma.v, x, by.isCentred), by.weights, bgra + 4 * x);
    }
}

} // namespace tavi

#endif
