#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "render/MixPixels.cpp" // compiled once for each target
#include "render/BlurKernels.h"

#include <algorithm>
#include <cstddef>
#include <hwy/foreach_target.h> // before highway.h
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace tavi {
namespace HWY_NAMESPACE {

#if HWY_TARGET == HWY_SCALAR

/// Without vectors the plain version serves.
std::size_t mixPlaces(const std::uint16_t*, const PixelPlace*, std::size_t, std::uint8_t*) {
    return 0;
}

bool mixRowsOfSamples(const std::uint16_t*, const std::uint16_t*, std::int32_t, std::uint16_t*,
                      std::size_t) {
    return false;
}

#else

namespace hn = hwy::HWY_NAMESPACE;

constexpr std::size_t kChannels = 4;

/// Multiplied by this, samples lose the 6 bits beyond their value's, rounded.
constexpr std::int16_t kValueScale = 1 << (15 - 6);

/// Two pixels of four channels. A place and the next pixel's are loaded at once.
HWY_INLINE auto mixPair(const std::uint16_t* samples, const PixelPlace* places) {
    const hn::FixedTag<std::uint64_t, 2> whole; // a pixel a lane
    const hn::FixedTag<std::uint16_t, 8> unsignedWords;
    const hn::FixedTag<std::int16_t, 8> words;
    const hn::FixedTag<std::uint8_t, 16> bytes;
    const auto load = [&](const PixelPlace& place) HWY_ATTR {
        const auto first = static_cast<std::size_t>(place.first) * kChannels;
        return hn::BitCast(whole, hn::LoadU(unsignedWords, samples + first));
    };
    static_assert(sizeof(PixelPlace) == 8 && offsetof(PixelPlace, fraction) == 4);
    alignas(16) static constexpr std::uint8_t kFractions[16] = {4,  5,  4,  5,  4,  5,  4,  5,
                                                                12, 13, 12, 13, 12, 13, 12, 13};
    const auto both = hn::LoadU(bytes, reinterpret_cast<const std::uint8_t*>(places));
    const auto share = hn::BitCast(words, hn::TableLookupBytes(both, hn::Load(bytes, kFractions)));
    const auto left = load(places[0]);
    const auto right = load(places[1]);
    const auto a = hn::BitCast(words, hn::InterleaveLower(whole, left, right));
    const auto b = hn::BitCast(words, hn::InterleaveUpper(whole, left, right));
    const auto value = hn::Add(a, hn::MulFixedPoint15(hn::Sub(b, a), share));
    const hn::FixedTag<std::uint8_t, 8> result;
    return hn::DemoteTo(result, hn::MulFixedPoint15(value, hn::Set(words, kValueScale)));
}

/// For four channels. Returns how many pixels were written, whole vectors of them:
/// what is read back next would have to wait for single pixels to arrive.
std::size_t mixPlaces(const std::uint16_t* samples, const PixelPlace* places, std::size_t count,
                      std::uint8_t* out) {
    const hn::FixedTag<std::uint8_t, 16> bytes;
    std::size_t x = 0;
    for (; x + 4 <= count; x += 4) {
        const auto pixels =
            hn::Combine(bytes, mixPair(samples, places + x + 2), mixPair(samples, places + x));
        hn::StoreU(pixels, bytes, out + x * kChannels);
    }
    return x;
}

/// Returns false, having done nothing, where there is less than a vector.
bool mixRowsOfSamples(const std::uint16_t* a, const std::uint16_t* b, std::int32_t fraction,
                      std::uint16_t* out, std::size_t count) {
    const hn::ScalableTag<std::uint16_t> samples;
    const hn::ScalableTag<std::int16_t> words;
    const std::size_t step = hn::Lanes(words);
    if (count < step) {
        return false;
    }
    const auto share = hn::Set(words, static_cast<std::int16_t>(fraction));
    for (std::size_t i = 0; i < count; i += step) {
        i = std::min(i, count - step); // the last vector overlaps the one before
        const auto above = hn::BitCast(words, hn::LoadU(samples, a + i));
        const auto below = hn::BitCast(words, hn::LoadU(samples, b + i));
        const auto part = hn::MulFixedPoint15(hn::Sub(below, above), share);
        hn::StoreU(hn::BitCast(samples, hn::Add(above, part)), samples, out + i);
    }
    return true;
}

#endif

} // namespace HWY_NAMESPACE
} // namespace tavi
HWY_AFTER_NAMESPACE();

#if HWY_ONCE

namespace tavi {

HWY_EXPORT(mixPlaces);
HWY_EXPORT(mixRowsOfSamples);

void mixPixels(const std::uint16_t* samples, const PixelPlace* places, std::size_t count,
               std::size_t channels, std::uint8_t* out) {
    const std::size_t done =
        channels == 4 ? HWY_DYNAMIC_DISPATCH(mixPlaces)(samples, places, count, out) : 0;
    plainMixPixels(samples, places + done, count - done, channels, out + done * channels);
}

void mixSamples(const std::uint16_t* a, const std::uint16_t* b, std::int32_t fraction,
                std::uint16_t* out, std::size_t count) {
    if (!HWY_DYNAMIC_DISPATCH(mixRowsOfSamples)(a, b, fraction, out, count)) {
        plainMixSamples(a, b, fraction, out, count);
    }
}

} // namespace tavi

#endif
