#include "capture/AreaScaling.h"

#include <algorithm>
#include <cmath>
#include <vector>

namespace tavi {

namespace {

/// The part of one source pixel in one pixel of the result.
struct Share {
    int source = 0;
    float weight = 0; ///< Those of one result add up to 1.
};

/// The shares of each of `to` pixels that cover `from` pixels, along one axis.
std::vector<std::vector<Share>> sharesAlong(int from, int to) {
    std::vector<std::vector<Share>> all(static_cast<std::size_t>(to));
    const double scale = static_cast<double>(from) / to;
    for (int i = 0; i < to; ++i) {
        const double begin = i * scale;
        const double end = std::min((i + 1) * scale, static_cast<double>(from));
        for (int s = static_cast<int>(begin); s < end; ++s) {
            const double part = std::min(s + 1.0, end) - std::max<double>(s, begin);
            all[static_cast<std::size_t>(i)].push_back({s, static_cast<float>(part / scale)});
        }
    }
    return all;
}

using Sums = std::vector<float>; ///< Four channels for each column.

/// Adds a row of the source to the sums, each pixel in its columns.
void addRow(Sums& sums, const std::uint8_t* row, float weight,
            const std::vector<std::vector<Share>>& columns) {
    float* sum = sums.data();
    for (const auto& column : columns) {
        for (const Share& share : column) {
            const std::uint8_t* pixel =
                row + static_cast<std::ptrdiff_t>(share.source) * PixelBuffer::kBytesPerPixel;
            for (int channel = 0; channel < PixelBuffer::kBytesPerPixel; ++channel) {
                sum[channel] += weight * share.weight * static_cast<float>(pixel[channel]);
            }
        }
        sum += PixelBuffer::kBytesPerPixel;
    }
}

} // namespace

PixelBuffer areaScaled(const PixelBuffer& source, int width, int height) {
    const auto columns = sharesAlong(source.width(), width);
    const auto rows = sharesAlong(source.height(), height);
    PixelBuffer result(width, height);
    Sums sums;
    for (int y = 0; y < height; ++y) {
        sums.assign(static_cast<std::size_t>(width) * PixelBuffer::kBytesPerPixel, 0);
        for (const Share& share : rows[static_cast<std::size_t>(y)]) {
            addRow(sums, source.row(share.source), share.weight, columns);
        }
        std::transform(sums.begin(), sums.end(), result.row(y), [](float sum) {
            return static_cast<std::uint8_t>(std::clamp(std::lround(sum), 0L, 255L));
        });
    }
    return result;
}

} // namespace tavi
