#include "render/BlurKernels.h"

#include <algorithm>

namespace tavi {

namespace {

constexpr int kSampleBits = 6; ///< Of a sample beyond the 8 of its value.

std::uint16_t binomialSum(unsigned a, unsigned b, unsigned c, unsigned d) {
    return static_cast<std::uint16_t>(a + 3 * (b + c) + d);
}

/// An eighth of the sum in 16 bits: means of two first, rounded up.
std::uint16_t binomialAverage(unsigned a, unsigned b, unsigned c, unsigned d) {
    const unsigned outer = (a + d + 1) / 2;
    const unsigned inner = (b + c + 1) / 2;
    return static_cast<std::uint16_t>((outer + 3 * inner + 1) / 4);
}

int mix(int a, int b, std::int32_t fraction) {
    return a + (((b - a) * fraction + kPlaceOne / 2) >> 15);
}

} // namespace

void plainAddBinomialRows(const FourRows<std::uint8_t>& rows, std::uint16_t* sums,
                          std::size_t count) {
    for (std::size_t i = 0; i < count; ++i) {
        sums[i] = binomialSum(rows.a[i], rows.b[i], rows.c[i], rows.d[i]);
    }
}

void plainAddQuarterRows(const TenRows& rows, std::uint16_t* sums, std::size_t count) {
    const auto pair = [&](std::size_t row, std::size_t i) {
        return unsigned{rows.rows[row][i]} + rows.rows[9 - row][i];
    };
    for (std::size_t i = 0; i < count; ++i) {
        sums[i] = static_cast<std::uint16_t>(pair(0, i) + 3 * pair(1, i) + 6 * pair(2, i) +
                                             10 * pair(3, i) + 12 * pair(4, i));
    }
}

void plainAverageBinomialRows(const FourRows<std::uint16_t>& rows, std::uint16_t* out,
                              std::size_t count) {
    for (std::size_t i = 0; i < count; ++i) {
        out[i] = binomialAverage(rows.a[i], rows.b[i], rows.c[i], rows.d[i]);
    }
}

void plainHalveRow(const std::uint16_t* in, std::uint16_t* out, std::size_t pixels,
                   std::size_t channels, Halving halving) {
    const auto filter = halving == Halving::sum ? binomialSum : binomialAverage;
    for (std::size_t x = 0; x < pixels; ++x, in += 2 * channels) {
        for (std::size_t c = 0; c < channels; ++c) {
            *out++ = filter(in[c], in[channels + c], in[2 * channels + c], in[3 * channels + c]);
        }
    }
}

void plainAddSymmetricRows(const SymmetricRows& rows, const float* weights, float* out,
                           std::size_t count) {
    for (std::size_t i = 0; i < count; ++i) {
        float sum = rows.middle[i] * weights[0];
        for (std::size_t k = 0; k < rows.before.size(); ++k) {
            sum += (rows.before[k][i] + rows.after[k][i]) * weights[k + 1];
        }
        out[i] = sum;
    }
}

void plainMixPixels(const std::uint16_t* samples, const PixelPlace* places, std::size_t count,
                    std::size_t channels, std::uint8_t* out) {
    constexpr int kHalf = 1 << (kSampleBits - 1);
    for (std::size_t x = 0; x < count; ++x) {
        const std::uint16_t* pixel = samples + static_cast<std::size_t>(places[x].first) * channels;
        for (std::size_t c = 0; c < channels; ++c) {
            const int value = mix(pixel[c], pixel[channels + c], places[x].fraction);
            *out++ = static_cast<std::uint8_t>(std::min((value + kHalf) >> kSampleBits, 255));
        }
    }
}

void plainMixSamples(const std::uint16_t* a, const std::uint16_t* b, std::int32_t fraction,
                     std::uint16_t* out, std::size_t count) {
    for (std::size_t i = 0; i < count; ++i) {
        out[i] = static_cast<std::uint16_t>(mix(a[i], b[i], fraction));
    }
}

} // namespace tavi
