#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "render/MixPixels.cpp" // compiled once for each target
#include "render/BlurKernels.h"

#include <algorithm>
#include <hwy/foreach_target.h> // before highway.h
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace tavi {
namespace HWY_NAMESPACE {

#if HWY_TARGET == HWY_SCALAR

/// Without vectors the plain version serves.
bool mixPlaces(const std::uint16_t*, const PixelPlace*, std::size_t, std::uint8_t*) {
    return false;
}

bool mixRowsOfSamples(const std::uint16_t*, const std::uint16_t*, std::int32_t, std::uint16_t*,
                      std::size_t) {
    return false;
}

#else

namespace hn = hwy::HWY_NAMESPACE;

/// For four channels; a pixel is half of the shortest vector.
bool mixPlaces(const std::uint16_t* samples, const PixelPlace* places, std::size_t count,
               std::uint8_t* out) {
    constexpr std::size_t kChannels = 4;
    const hn::FixedTag<std::uint16_t, kChannels> unsignedWords;
    const hn::FixedTag<std::int16_t, kChannels> words;
    const hn::FixedTag<std::uint8_t, kChannels> bytes;
    const auto half = hn::Set(words, 32);
    for (std::size_t x = 0; x < count; ++x) {
        const std::uint16_t* pixel =
            samples + static_cast<std::size_t>(places[x].first) * kChannels;
        const auto a = hn::BitCast(words, hn::LoadU(unsignedWords, pixel));
        const auto b = hn::BitCast(words, hn::LoadU(unsignedWords, pixel + kChannels));
        const auto share = hn::Set(words, static_cast<std::int16_t>(places[x].fraction));
        const auto value = hn::Add(a, hn::MulFixedPoint15(hn::Sub(b, a), share));
        hn::StoreU(hn::DemoteTo(bytes, hn::ShiftRight<6>(hn::Add(value, half))), bytes,
                   out + x * kChannels);
    }
    return true;
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
    if (channels != 4 || !HWY_DYNAMIC_DISPATCH(mixPlaces)(samples, places, count, out)) {
        plainMixPixels(samples, places, count, channels, out);
    }
}

void mixSamples(const std::uint16_t* a, const std::uint16_t* b, std::int32_t fraction,
                std::uint16_t* out, std::size_t count) {
    if (!HWY_DYNAMIC_DISPATCH(mixRowsOfSamples)(a, b, fraction, out, count)) {
        plainMixSamples(a, b, fraction, out, count);
    }
}

} // namespace tavi

#endif
