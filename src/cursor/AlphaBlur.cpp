#include "cursor/AlphaBlur.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace tavi {

namespace {

std::vector<float> gaussian(double sigma) {
    const int reach = static_cast<int>(std::ceil(4 * sigma));
    std::vector<double> weights(static_cast<std::size_t>(2 * reach) + 1);
    double total = 0;
    for (int i = -reach; i <= reach; ++i) {
        const double weight = std::exp(-0.5 * i * i / (sigma * sigma));
        weights.data()[i + reach] = weight;
        total += weight;
    }
    std::vector<float> kernel(weights.size());
    std::transform(weights.begin(), weights.end(), kernel.begin(),
                   [&](double weight) { return static_cast<float>(weight / total); });
    return kernel;
}

/// Convolves the columns. Works a row at a time, which the compiler vectorises.
AlphaPicture blurredAlongColumns(const AlphaPicture& in, const std::vector<float>& kernel) {
    const int reach = static_cast<int>(kernel.size() / 2);
    const auto width = static_cast<std::ptrdiff_t>(in.width);
    AlphaPicture out(in.width, in.height);
    for (int y = 0; y < in.height; ++y) {
        float* sums = out.values.data() + y * width;
        for (int i = std::max(-reach, -y); i <= std::min(reach, in.height - 1 - y); ++i) {
            const float weight = kernel.data()[i + reach];
            const float* row = in.values.data() + (y + i) * width;
            for (std::ptrdiff_t x = 0; x < width; ++x) {
                sums[x] += weight * row[x];
            }
        }
    }
    return out;
}

AlphaPicture transposed(const AlphaPicture& in) {
    AlphaPicture out(in.height, in.width);
    for (int y = 0; y < in.height; ++y) {
        for (int x = 0; x < in.width; ++x) {
            out.at(y, x) = in.at(x, y);
        }
    }
    return out;
}

} // namespace

AlphaPicture gaussianBlurred(const AlphaPicture& picture, double sigma) {
    if (!(sigma > 0)) {
        return picture;
    }
    const std::vector<float> kernel = gaussian(sigma);
    return transposed(
        blurredAlongColumns(transposed(blurredAlongColumns(picture, kernel)), kernel));
}

} // namespace tavi
