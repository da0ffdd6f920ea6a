#include "render/YuvConverter.h"

#include "support/VectorTargets.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <random>
#include <vector>

namespace tavi {
namespace {

/// Of 255, from the definition in real numbers: half a step is rounding.
constexpr double kLargestError = 0.55;

constexpr std::uint8_t kUntouched = 0xA5;

/// A 4:2:0 picture in planes with some bytes between the rows; upside down in memory
/// if wanted.
class Picture {
public:
    Picture(int width, int height, YuvEncoding encoding, bool isInterleaved, int gap = 0,
            bool isFlipped = false) {
        m_view.width = width;
        m_view.height = height;
        m_view.encoding = encoding;
        m_view.isInterleaved = isInterleaved;
        const int pairs = m_view.chromaWidth() * (isInterleaved ? 2 : 1);
        m_view.y = plane(m_y, width + gap, height, isFlipped);
        m_view.u = plane(m_u, pairs + gap, m_view.chromaHeight(), isFlipped);
        m_view.v = plane(m_v, pairs + gap, m_view.chromaHeight(), isFlipped);
    }

    const YuvView& view() const { return m_view; }
    ConstYuvView constView() const {
        ConstYuvView view;
        view.width = m_view.width;
        view.height = m_view.height;
        view.y = {m_view.y.data, m_view.y.stride};
        view.u = {m_view.u.data, m_view.u.stride};
        view.v = {m_view.v.data, m_view.v.stride};
        view.isInterleaved = m_view.isInterleaved;
        view.encoding = m_view.encoding;
        return view;
    }

    std::uint8_t& y(int x, int row) const { return m_view.y.row(row)[x]; }
    std::uint8_t& u(int x, int row) const {
        return m_view.u.row(row)[m_view.isInterleaved ? 2 * x : x];
    }
    std::uint8_t& v(int x, int row) const {
        return m_view.isInterleaved ? m_view.u.row(row)[2 * x + 1] : m_view.v.row(row)[x];
    }

    void fill(std::mt19937& random) {
        for (std::vector<std::uint8_t>* samples : {&m_y, &m_u, &m_v}) {
            std::generate(samples->begin(), samples->end(),
                          [&] { return static_cast<std::uint8_t>(random()); });
        }
    }

    void fill(std::uint8_t y, std::uint8_t u, std::uint8_t v) {
        for (int row = 0; row < m_view.height; ++row) {
            for (int x = 0; x < m_view.width; ++x) {
                this->y(x, row) = y;
                this->u(x / 2, row / 2) = u;
                this->v(x / 2, row / 2) = v;
            }
        }
    }

    /// True when nothing was written between the rows.
    bool isGapUntouched() const {
        const int chroma = m_view.chromaWidth() * (m_view.isInterleaved ? 2 : 1);
        return isGapUntouched(m_view.y, m_view.width, m_view.height) &&
               isGapUntouched(m_view.u, chroma, m_view.chromaHeight()) &&
               isGapUntouched(m_view.v, chroma, m_view.chromaHeight());
    }

private:
    static YuvView::Plane plane(std::vector<std::uint8_t>& samples, int stride, int height,
                                bool isFlipped) {
        samples.assign(static_cast<std::size_t>(stride) * static_cast<std::size_t>(height),
                       kUntouched);
        return isFlipped ? YuvView::Plane{samples.data() + stride * (height - 1), -stride}
                         : YuvView::Plane{samples.data(), stride};
    }

    static bool isGapUntouched(const YuvView::Plane& plane, int width, int height) {
        for (int row = 0; row < height; ++row) {
            for (int x = width; x < std::abs(plane.stride); ++x) {
                if (plane.row(row)[x] != kUntouched) {
                    return false;
                }
            }
        }
        return true;
    }

    std::vector<std::uint8_t> m_y;
    std::vector<std::uint8_t> m_u;
    std::vector<std::uint8_t> m_v;
    YuvView m_view;
};

/// The definitions, in real numbers.
struct Definition {
    explicit Definition(const YuvEncoding& encoding)
        : red(encoding.matrix == YuvMatrix::bt601 ? 0.299 : 0.2126),
          blue(encoding.matrix == YuvMatrix::bt601 ? 0.114 : 0.0722),
          isFull(encoding.range == YuvRange::full) {}

    /// Blue, green, red, 0 to 255.
    std::array<double, 3> colourOf(double y, double u, double v) const {
        const double light = isFull ? y / 255 : (y - 16) / 219;
        const double pb = (u - 128) / (isFull ? 255 : 224);
        const double pr = (v - 128) / (isFull ? 255 : 224);
        const double b = light + 2 * (1 - blue) * pb;
        const double r = light + 2 * (1 - red) * pr;
        const double g = (light - red * r - blue * b) / (1 - red - blue);
        const auto channel = [](double part) { return std::clamp(part * 255, 0.0, 255.0); };
        return {channel(b), channel(g), channel(r)};
    }

    /// Y, Cb, Cr of blue, green and red from 0 to 255.
    std::array<double, 3> samplesOf(const std::array<double, 3>& bgr) const {
        const double light = (blue * bgr[0] + (1 - red - blue) * bgr[1] + red * bgr[2]) / 255;
        const double pb = (bgr[0] / 255 - light) / (2 * (1 - blue));
        const double pr = (bgr[2] / 255 - light) / (2 * (1 - red));
        const double steps = isFull ? 255 : 224;
        return {isFull ? light * 255 : 16 + light * 219, std::min(128 + pb * steps, 255.0),
                std::min(128 + pr * steps, 255.0)};
    }

    double red;
    double blue;
    bool isFull;
};

/// A colour plane at a place between its samples, counted in samples.
template<class At>
double bilinear(At at, double x, double y, int width, int height) {
    const auto clamped = [&](double column, double row) {
        return static_cast<double>(at(std::clamp(static_cast<int>(column), 0, width - 1),
                                      std::clamp(static_cast<int>(row), 0, height - 1)));
    };
    const double left = std::floor(x);
    const double top = std::floor(y);
    const double upper = std::lerp(clamped(left, top), clamped(left + 1, top), x - left);
    const double lower = std::lerp(clamped(left, top + 1), clamped(left + 1, top + 1), x - left);
    return std::lerp(upper, lower, y - top);
}

/// How far the pixels are from the definition at most.
double largestError(const Picture& from, const PixelBuffer& to) {
    const YuvView& view = from.view();
    const Definition definition(view.encoding);
    const double columnShift = view.encoding.siting == ChromaSiting::centre ? 0.5 : 0;
    const double rowShift = view.encoding.siting == ChromaSiting::topLeft ? 0 : 0.5;
    double largest = 0;
    for (int y = 0; y < view.height; ++y) {
        for (int x = 0; x < view.width; ++x) {
            const double column = (x - columnShift) / 2;
            const double row = (y - rowShift) / 2;
            const double u = bilinear([&](int i, int j) { return from.u(i, j); }, column, row,
                                      view.chromaWidth(), view.chromaHeight());
            const double v = bilinear([&](int i, int j) { return from.v(i, j); }, column, row,
                                      view.chromaWidth(), view.chromaHeight());
            const auto expected = definition.colourOf(from.y(x, y), u, v);
            const std::uint8_t* pixel = to.row(y) + 4 * x;
            for (std::size_t channel = 0; channel < 3; ++channel) {
                largest = std::max(largest, std::abs(pixel[channel] - expected[channel]));
            }
            largest = std::max(largest, std::abs(pixel[3] - 255.0));
        }
    }
    return largest;
}

/// The mean of the pixels around a colour sample.
std::array<double, 3> meanAround(const PixelBuffer& from, ChromaSiting siting, int column,
                                 int row) {
    const bool isBetweenColumns = siting == ChromaSiting::centre;
    const bool isBetweenRows = siting != ChromaSiting::topLeft;
    const auto weights = [](bool isBetween) {
        return isBetween ? std::array{0.0, 0.5, 0.5} : std::array{0.25, 0.5, 0.25};
    };
    std::array<double, 3> mean{};
    for (int dy = -1; dy <= 1; ++dy) {
        for (int dx = -1; dx <= 1; ++dx) {
            const int y = std::clamp(2 * row + dy, 0, from.height() - 1);
            const int x = std::clamp(2 * column + dx, 0, from.width() - 1);
            const double weight = weights(isBetweenRows)[static_cast<std::size_t>(dy + 1)] *
                                  weights(isBetweenColumns)[static_cast<std::size_t>(dx + 1)];
            for (std::size_t channel = 0; channel < 3; ++channel) {
                mean[channel] += weight * from.row(y)[4 * x + static_cast<int>(channel)];
            }
        }
    }
    return mean;
}

/// How far the samples are from the definition at most.
double largestError(const PixelBuffer& from, const Picture& to) {
    const YuvView& view = to.view();
    const Definition definition(view.encoding);
    double largest = 0;
    for (int y = 0; y < view.height; ++y) {
        for (int x = 0; x < view.width; ++x) {
            const std::uint8_t* pixel = from.row(y) + 4 * x;
            const std::array<double, 3> colour{1.0 * pixel[0], 1.0 * pixel[1], 1.0 * pixel[2]};
            largest = std::max(largest, std::abs(to.y(x, y) - definition.samplesOf(colour)[0]));
        }
    }
    for (int row = 0; row < view.chromaHeight(); ++row) {
        for (int column = 0; column < view.chromaWidth(); ++column) {
            const auto expected =
                definition.samplesOf(meanAround(from, view.encoding.siting, column, row));
            largest = std::max({largest, std::abs(to.u(column, row) - expected[1]),
                                std::abs(to.v(column, row) - expected[2])});
        }
    }
    return largest;
}

std::vector<YuvEncoding> everyEncoding() {
    std::vector<YuvEncoding> all;
    for (const YuvMatrix matrix : {YuvMatrix::bt601, YuvMatrix::bt709}) {
        for (const YuvRange range : {YuvRange::limited, YuvRange::full}) {
            for (const ChromaSiting siting :
                 {ChromaSiting::left, ChromaSiting::centre, ChromaSiting::topLeft}) {
                all.push_back({matrix, range, siting});
            }
        }
    }
    return all;
}

/// Calls `check` with random pictures of every small size; encodings, layouts, gaps
/// and direction take turns.
template<class Check>
void forEverySmallPicture(std::mt19937& random, Check check) {
    const std::vector<YuvEncoding> encodings = everyEncoding();
    for (int height = 1; height <= 9; ++height) {
        for (int width = 1; width <= 70; ++width) {
            for (const bool isInterleaved : {false, true}) {
                const YuvEncoding encoding = encodings[random() % encodings.size()];
                check(Picture(width, height, encoding, isInterleaved,
                              static_cast<int>(random() % 20), random() % 4 == 0));
            }
        }
    }
}

TEST(YuvConverter, givesTheColoursOfTheDefinitionForEverySmallSize) {
    test::forEachVectorTarget([] {
        std::mt19937 random(41);
        forEverySmallPicture(random, [&](Picture picture) {
            const YuvView& view = picture.view();
            picture.fill(random);
            PixelBuffer found(view.width, view.height);
            YuvConverter().toBgra(picture.constView(), found);
            ASSERT_LE(largestError(picture, found), kLargestError)
                << view.width << " x " << view.height;
        });
    });
}

TEST(YuvConverter, givesTheSamplesOfTheDefinitionForEverySmallSize) {
    test::forEachVectorTarget([] {
        std::mt19937 random(42);
        forEverySmallPicture(random, [&](const Picture& picture) {
            const YuvView& view = picture.view();
            PixelBuffer pixels(view.width, view.height);
            std::generate_n(pixels.data(), pixels.stride() * static_cast<std::size_t>(view.height),
                            [&] { return static_cast<std::uint8_t>(random()); });
            YuvConverter().fromBgra(pixels, view);
            ASSERT_LE(largestError(pixels, picture), kLargestError)
                << view.width << " x " << view.height;
            ASSERT_TRUE(picture.isGapUntouched()) << view.width << " x " << view.height;
        });
    });
}

TEST(YuvConverter, everySetOfSamplesGivesItsColour) {
    std::mt19937 random(43);
    for (const YuvEncoding& encoding : everyEncoding()) {
        Picture picture(64 * 64, 16, encoding, false);
        picture.fill(random);
        PixelBuffer found(64 * 64, 16);
        YuvConverter().toBgra(picture.constView(), found);
        ASSERT_LE(largestError(picture, found), kLargestError);
    }
}

PixelBuffer flat(int width, int height, std::uint8_t blue, std::uint8_t green, std::uint8_t red) {
    PixelBuffer picture(width, height);
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            std::uint8_t* pixel = picture.row(y) + 4 * x;
            pixel[0] = blue;
            pixel[1] = green;
            pixel[2] = red;
            pixel[3] = 77; // of no importance
        }
    }
    return picture;
}

TEST(YuvConverter, greysStayGreysAndEndsMeetEnds) {
    for (const YuvEncoding& encoding : everyEncoding()) {
        const bool isFull = encoding.range == YuvRange::full;
        for (int grey = 0; grey <= 255; ++grey) {
            const auto value = static_cast<std::uint8_t>(grey);
            const Picture picture(67, 3, encoding, false);
            YuvConverter().fromBgra(flat(67, 3, value, value, value), picture.view());
            const long luma = isFull ? grey : std::lround(16 + grey * 219 / 255.0);
            PixelBuffer back(67, 3);
            YuvConverter().toBgra(picture.constView(), back);
            for (const int x : {0, 33, 66}) {
                ASSERT_EQ(picture.y(x, 1), luma);
                ASSERT_EQ(picture.u(x / 2, 0), 128);
                ASSERT_EQ(picture.v(x / 2, 0), 128);
                const std::uint8_t* pixel = back.row(1) + 4 * x;
                ASSERT_EQ(pixel[0], pixel[1]);
                ASSERT_EQ(pixel[1], pixel[2]);
                ASSERT_NEAR(pixel[0], grey, isFull || grey % 255 == 0 ? 0 : 1);
            }
        }
    }
}

TEST(YuvConverter, beyondBlackAndWhiteIsBlackAndWhite) {
    Picture picture(40, 2, {}, false);
    PixelBuffer found(40, 2);
    for (const auto& [luma, grey] : {std::pair{0, 0}, {15, 0}, {16, 0}, {235, 255}, {255, 255}}) {
        picture.fill(static_cast<std::uint8_t>(luma), 128, 128);
        YuvConverter().toBgra(picture.constView(), found);
        for (int channel = 0; channel < 3; ++channel) {
            EXPECT_EQ(found.row(1)[4 * 17 + channel], grey);
        }
    }
}

TEST(YuvConverter, flatColoursComeBack) {
    constexpr int kLargestLoss = 2; // of 255: limited range has fewer steps
    for (const YuvEncoding& encoding : everyEncoding()) {
        for (int n = 0; n < 6 * 6 * 6; ++n) {
            const auto step = [](int digit) { return static_cast<std::uint8_t>(digit % 6 * 51); };
            const PixelBuffer there = flat(35, 5, step(n), step(n / 6), step(n / 36));
            const Picture picture(35, 5, encoding, n % 2 == 0);
            PixelBuffer back(35, 5);
            YuvConverter().fromBgra(there, picture.view());
            YuvConverter().toBgra(picture.constView(), back);
            for (const int x : {0, 16, 34}) {
                for (int channel = 0; channel < 3; ++channel) {
                    ASSERT_NEAR(back.row(2)[4 * x + channel], there.row(2)[4 * x + channel],
                                kLargestLoss);
                }
            }
        }
    }
}

TEST(YuvConverter, leavesAnEmptyPictureAlone) {
    const Picture picture(0, 0, {}, false);
    PixelBuffer nothing;
    YuvConverter().toBgra(picture.constView(), nothing);
    YuvConverter().fromBgra(nothing, picture.view());
}

} // namespace
} // namespace tavi
