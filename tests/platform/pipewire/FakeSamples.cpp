#include "platform/pipewire/FakeSamples.h"

#include <cmath>
#include <cstring>
#include <spa/param/audio/raw.h>

namespace tavi::test {

std::uint32_t bitsOfSample(std::uint32_t format) {
    switch (format) {
    case SPA_AUDIO_FORMAT_U8:
        return 8;
    case SPA_AUDIO_FORMAT_S16:
        return 16;
    case SPA_AUDIO_FORMAT_S24:
    case SPA_AUDIO_FORMAT_S24_32:
        return 24;
    case SPA_AUDIO_FORMAT_F64:
        return 64;
    default:
        return 32;
    }
}

std::uint32_t bytesOfSample(std::uint32_t format) {
    return format == SPA_AUDIO_FORMAT_S24_32 ? 4 : bitsOfSample(format) / 8;
}

void writeSample(std::uint32_t format, double value, std::uint8_t* to) {
    if (format == SPA_AUDIO_FORMAT_F32) {
        const auto sample = static_cast<float>(value);
        std::memcpy(to, &sample, sizeof sample);
        return;
    }
    if (format == SPA_AUDIO_FORMAT_F64) {
        std::memcpy(to, &value, sizeof value);
        return;
    }
    const double scale = std::ldexp(1.0, static_cast<int>(bitsOfSample(format)) - 1) - 1;
    auto sample = static_cast<std::int32_t>(std::lround(value * scale));
    if (format == SPA_AUDIO_FORMAT_U8) {
        sample += 128;
    }
    std::memcpy(to, &sample, bytesOfSample(format)); // little endian
}

} // namespace tavi::test
