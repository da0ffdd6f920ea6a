#include "render/YuvWeights.h"

#include <cmath>

namespace tavi {

namespace {

/// The shares of the channels in brightness.
struct Shares {
    double red;
    double blue;

    double green() const { return 1 - red - blue; }
};

Shares sharesOf(YuvMatrix matrix) {
    return matrix == YuvMatrix::bt601 ? Shares{0.299, 0.114} : Shares{0.2126, 0.0722};
}

/// Steps between the ends of a sample's range.
struct Steps {
    double luma;
    double chroma;
    int black; ///< The sample of black.
};

Steps stepsOf(YuvRange range) {
    return range == YuvRange::limited ? Steps{219, 224, 16} : Steps{255, 255, 0};
}

constexpr double kChannelSteps = 255;
constexpr int kNoColour = 128;

std::uint16_t rounded(double number) {
    return static_cast<std::uint16_t>(std::lround(number));
}

/// The share that a whole sample has under a weight.
int share(int sample, std::uint16_t weight) {
    return static_cast<int>(std::int64_t{sample} * 256 * weight >> 16);
}

} // namespace

ToBgraWeights toBgraWeights(YuvMatrix matrix, YuvRange range) {
    const Shares shares = sharesOf(matrix);
    const Steps steps = stepsOf(range);
    constexpr double kOne = ToBgraWeights::kUnit * 256.0;
    const double blue = 2 * (1 - shares.blue) * kChannelSteps / steps.chroma;
    const double red = 2 * (1 - shares.red) * kChannelSteps / steps.chroma;
    ToBgraWeights weights;
    weights.luma = rounded(kChannelSteps / steps.luma * kOne);
    weights.blueFromU = rounded(blue * kOne);
    weights.greenFromU = rounded(blue * shares.blue / shares.green() * kOne);
    weights.greenFromV = rounded(red * shares.red / shares.green() * kOne);
    weights.redFromV = rounded(red * kOne);
    const int surplus = share(steps.black, weights.luma) - ToBgraWeights::kUnit / 2;
    weights.blueOffset = static_cast<std::uint16_t>(surplus + share(kNoColour, weights.blueFromU));
    weights.redOffset = static_cast<std::uint16_t>(surplus + share(kNoColour, weights.redFromV));
    weights.greenOffset = static_cast<std::uint16_t>(
        share(kNoColour, weights.greenFromU) + share(kNoColour, weights.greenFromV) - surplus);
    return weights;
}

FromBgraWeights fromBgraWeights(YuvMatrix matrix, YuvRange range) {
    const Shares shares = sharesOf(matrix);
    const Steps steps = stepsOf(range);
    constexpr double kOne = 65536;
    const double lumaScale = steps.luma / kChannelSteps * kOne;
    const double chromaScale = steps.chroma / kChannelSteps / 2 * kOne;
    FromBgraWeights weights;
    weights.luma.blue = rounded(shares.blue * lumaScale);
    weights.luma.red = rounded(shares.red * lumaScale);
    weights.luma.green = rounded(lumaScale - weights.luma.blue - weights.luma.red);
    // Each of the three shares loses half a unit on average.
    weights.luma.offset = static_cast<std::uint16_t>(steps.black * 256 + 128 + 1);
    weights.u.own = weights.v.own = rounded(chromaScale);
    weights.u.other = rounded(shares.red / (1 - shares.blue) * chromaScale);
    weights.v.other = rounded(shares.blue / (1 - shares.red) * chromaScale);
    weights.u.green = static_cast<std::uint16_t>(weights.u.own - weights.u.other);
    weights.v.green = static_cast<std::uint16_t>(weights.v.own - weights.v.other);
    return weights;
}

} // namespace tavi
