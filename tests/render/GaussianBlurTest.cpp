#include "render/GaussianBlur.h"

#include "support/Pictures.h"

#include <gtest/gtest.h>

#include <functional>
#include <numbers>

namespace tavi {
namespace {

using test::Pixel;

/// The reference: a direct convolution in doubles, along x and then along y.
PixelBuffer directBlur(const PixelBuffer& image, double sigma, BlurEdges edges) {
    const int reach = static_cast<int>(std::ceil(sigma * 6));
    std::vector<double> kernel;
    double total = 0;
    for (int i = -reach; i <= reach; ++i) {
        kernel.push_back(std::exp(-0.5 * i * i / (sigma * sigma)));
        total += kernel.back();
    }
    const int width = image.width();
    const int height = image.height();
    std::vector<double> values(static_cast<std::size_t>(width * height * 4));
    std::vector<double> rows(values.size());
    const auto index = [&](int x, int y, int c) {
        return static_cast<std::size_t>((y * width + x) * 4 + c);
    };
    const auto convolve = [&](const std::vector<double>& in, std::vector<double>& out, int dx,
                              int dy) {
        for (int y = 0; y < height; ++y) {
            for (int x = 0; x < width; ++x) {
                for (int c = 0; c < 4; ++c) {
                    double sum = 0;
                    for (int i = -reach; i <= reach; ++i) {
                        const int sx = std::clamp(x + i * dx, 0, width - 1);
                        const int sy = std::clamp(y + i * dy, 0, height - 1);
                        const bool inside = sx == x + i * dx && sy == y + i * dy;
                        if (inside || edges == BlurEdges::extended) {
                            sum +=
                                in[index(sx, sy, c)] * kernel[static_cast<std::size_t>(i + reach)];
                        }
                    }
                    out[index(x, y, c)] = sum / total;
                }
            }
        }
    };
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width * 4; ++x) {
            values[static_cast<std::size_t>(y * width * 4 + x)] = image.row(y)[x];
        }
    }
    convolve(values, rows, 1, 0);
    convolve(rows, values, 0, 1);
    PixelBuffer out(width, height);
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width * 4; ++x) {
            out.row(y)[x] = static_cast<std::uint8_t>(
                std::lround(values[static_cast<std::size_t>(y * width * 4 + x)]));
        }
    }
    return out;
}

PixelBuffer drawn(int width, int height, const std::function<int(int x, int y)>& shade) {
    PixelBuffer image(width, height);
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            const int s = shade(x, y);
            test::setPixel(image, x, y, {s, 255 - s, s / 2, 255});
        }
    }
    return image;
}

struct BlurCase {
    double sigma;
    BlurEdges edges;
};

class GaussianBlurAccuracy : public testing::TestWithParam<BlurCase> {};

TEST_P(GaussianBlurAccuracy, isWithinOneOfTheDirectConvolution) {
    const auto [sigma, edges] = GetParam();
    const int width = 141; // odd, and no multiple of any reduction
    const int height = 93;
    const std::vector<PixelBuffer> pictures = [&] {
        std::vector<PixelBuffer> list;
        list.push_back(test::noisePicture(width, height, 7));
        list.push_back(
            drawn(width, height, [](int x, int y) { return x > 70 || y > 40 ? 255 : 0; }));
        list.push_back(
            drawn(width, height, [](int x, int) { return x == 0 || x == 140 ? 255 : 0; }));
        list.push_back(drawn(width, height, [](int x, int y) { return (x + y) % 2 * 255; }));
        list.push_back(
            drawn(width, height, [](int x, int y) { return x == 60 && y == 50 ? 255 : 0; }));
        // Waves near the sample rates of the reduced pictures, where they could fold.
        for (const double period : {2.1, 4.1, 7.7, 8.3, 16.5, 33.0}) {
            list.push_back(drawn(width, height, [&](int x, int) {
                return static_cast<int>(
                    std::lround(127.5 + 127.5 * std::sin(2 * std::numbers::pi * x / period)));
            }));
        }
        return list;
    }();
    for (std::size_t i = 0; i < pictures.size(); ++i) {
        PixelBuffer blurred(width, height);
        gaussianBlur(blurred, pictures[i], sigma, edges);
        EXPECT_LE(test::largestDifference(blurred, directBlur(pictures[i], sigma, edges)), 1)
            << "picture " << i;
    }
}

INSTANTIATE_TEST_SUITE_P(
    Radii, GaussianBlurAccuracy,
    // 7, 14, 28 and 56 are where the picture is halved once more, the least exact.
    testing::Values(BlurCase{0.4, BlurEdges::extended}, BlurCase{1.5, BlurEdges::transparent},
                    BlurCase{6.9, BlurEdges::extended}, BlurCase{7.0, BlurEdges::extended},
                    BlurCase{7.0, BlurEdges::transparent}, BlurCase{14.0, BlurEdges::extended},
                    BlurCase{20.0, BlurEdges::transparent}, BlurCase{28.0, BlurEdges::transparent},
                    BlurCase{40.0, BlurEdges::extended}, BlurCase{55.9, BlurEdges::extended},
                    BlurCase{56.0, BlurEdges::transparent}, BlurCase{56.0, BlurEdges::extended},
                    BlurCase{80.0, BlurEdges::extended}));

TEST(GaussianBlur, aSigmaThatIsNotPositiveCopies) {
    const PixelBuffer noise = test::noisePicture(19, 11, 8);
    for (const double sigma : {0.0, -3.0, std::nan("")}) {
        PixelBuffer out(19, 11);
        gaussianBlur(out, noise, sigma, BlurEdges::transparent);
        EXPECT_EQ(test::largestDifference(out, noise), 0);
    }
}

TEST(GaussianBlur, anEvenPictureDoesNotDarkenTowardsItsBorders) {
    const PixelBuffer even = test::plainPicture(50, 40, {7, 99, 255, 255});
    for (const double sigma : {1.0, 9.0, 40.0, 1e9}) {
        PixelBuffer out(50, 40);
        gaussianBlur(out, even, sigma, BlurEdges::extended);
        EXPECT_EQ(test::largestDifference(out, even), 0) << sigma;
    }
}

TEST(GaussianBlur, worksOnSinglePixelsAndLines) {
    for (const auto& [width, height] : {std::pair{1, 1}, std::pair{1, 30}, std::pair{30, 1}}) {
        const PixelBuffer noise = test::noisePicture(width, height, 9);
        for (const double sigma : {2.0, 15.0}) {
            PixelBuffer out(width, height);
            gaussianBlur(out, noise, sigma, BlurEdges::extended);
            EXPECT_LE(test::largestDifference(out, directBlur(noise, sigma, BlurEdges::extended)),
                      1);
        }
    }
}

TEST(GaussianBlur, masksBlurLikeTheAlphaOfAPicture) {
    const PixelBuffer noise = test::noisePicture(60, 50, 10);
    std::vector<std::uint8_t> mask;
    for (int y = 0; y < 50; ++y) {
        for (int x = 0; x < 60; ++x) {
            mask.push_back(static_cast<std::uint8_t>(test::pixelAt(noise, x, y).green));
        }
    }
    PixelBuffer blurred(60, 50);
    gaussianBlur(blurred, noise, 13, BlurEdges::transparent);
    GaussianBlur blur;
    blur.blur({mask.data(), 60, 50, 60, 1}, 13, BlurEdges::transparent);
    blur.begin();
    for (int y = 0; y < 50; ++y) {
        std::array<std::uint8_t, 60> row{};
        blur.writeRow(y, 0, 60, row.data());
        for (int x = 0; x < 60; ++x) {
            EXPECT_EQ(row[static_cast<std::size_t>(x)], test::pixelAt(blurred, x, y).green);
        }
    }
}

} // namespace
} // namespace tavi
