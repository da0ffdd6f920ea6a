#include "platform/ffmpeg/StraightAlpha.h"

#include <algorithm>

namespace tavi {

namespace {

std::uint8_t times(unsigned colour, unsigned alpha) {
    return static_cast<std::uint8_t>((colour * alpha + 127) / 255);
}

std::uint8_t over(unsigned colour, unsigned alpha) {
    return alpha == 0
               ? std::uint8_t{0}
               : static_cast<std::uint8_t>(std::min((colour * 255 + alpha / 2) / alpha, 255U));
}

} // namespace

void premultiply(const std::uint8_t* rgba, std::size_t stride, PixelBuffer& to) {
    for (int y = 0; y < to.height(); ++y) {
        const std::uint8_t* in = rgba + stride * static_cast<std::size_t>(y);
        std::uint8_t* out = to.row(y);
        for (int x = 0; x < to.width(); ++x, in += 4, out += 4) {
            out[0] = times(in[2], in[3]);
            out[1] = times(in[1], in[3]);
            out[2] = times(in[0], in[3]);
            out[3] = in[3];
        }
    }
}

void unpremultiply(const PixelBuffer& from, std::uint8_t* rgba, std::size_t stride) {
    for (int y = 0; y < from.height(); ++y) {
        const std::uint8_t* in = from.row(y);
        std::uint8_t* out = rgba + stride * static_cast<std::size_t>(y);
        for (int x = 0; x < from.width(); ++x, in += 4, out += 4) {
            out[0] = over(in[2], in[3]);
            out[1] = over(in[1], in[3]);
            out[2] = over(in[0], in[3]);
            out[3] = in[3];
        }
    }
}

} // namespace tavi
