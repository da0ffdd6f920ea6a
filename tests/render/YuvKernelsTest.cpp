#include "render/YuvKernels.h"

#include "support/VectorTargets.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <vector>

namespace tavi {
namespace {

// Every kernel gives the very numbers of its plain version: the largest difference is 0.

constexpr std::size_t kLongestRow = 200; // pixels: several of the longest vectors
constexpr std::uint8_t kUntouched = 0xA5;

/// Random bytes, with the first one `shift` bytes off alignment.
class RandomBytes {
public:
    RandomBytes(std::size_t count, std::mt19937& random)
        : m_shift(random() % 5),
          m_bytes(count + m_shift) {
        std::generate(m_bytes.begin(), m_bytes.end(),
                      [&] { return static_cast<std::uint8_t>(random()); });
    }

    const std::uint8_t* data() const { return m_bytes.data() + m_shift; }

private:
    std::size_t m_shift;
    std::vector<std::uint8_t> m_bytes;
};

/// Colour of two rows with room for the repeated ends, which show whether they stay untouched.
struct TwoRows {
    explicit TwoRows(std::size_t count) : samples(4 * (count + 2), 0xBEEF), stride(count + 2) {}

    ChromaRow row(std::size_t number) {
        std::uint16_t* first = samples.data() + 2 * number * stride + 1;
        return {first, first + stride};
    }

    std::vector<std::uint16_t> samples;
    std::size_t stride;
};

TEST(YuvKernels, mixedColourIsThatOfThePlainVersion) {
    test::forEachVectorTarget([] {
        std::mt19937 random(31);
        for (std::size_t count = 1; count <= kLongestRow; ++count) {
            for (const bool isInterleaved : {false, true}) {
                for (const ChromaMix mix : {ChromaMix::quarters, ChromaMix::halves}) {
                    const RandomBytes u(2 * count, random);
                    const RandomBytes v(count, random);
                    const RandomBytes nextU(2 * count, random);
                    const RandomBytes nextV(count, random);
                    const ChromaSamples upper{u.data(), v.data(), isInterleaved};
                    const ChromaSamples lower{nextU.data(), nextV.data(), isInterleaved};
                    TwoRows found(count);
                    TwoRows expected(count);
                    mixChroma(upper, lower, mix, found.row(0), found.row(1), count);
                    plainMixChroma(upper, lower, mix, expected.row(0), expected.row(1), count);
                    ASSERT_EQ(found.samples, expected.samples) << count << " samples";
                }
            }
        }
    });
}

/// Colour whose samples may have any fraction that mixing leaves.
std::vector<std::uint16_t> randomColour(std::size_t count, std::mt19937& random) {
    std::vector<std::uint16_t> samples(count);
    std::generate(samples.begin(), samples.end(),
                  [&] { return static_cast<std::uint16_t>(random() % (255 * 256 + 1)); });
    return samples;
}

TEST(YuvKernels, pixelsAreThoseOfThePlainVersion) {
    test::forEachVectorTarget([] {
        std::mt19937 random(32);
        for (std::size_t width = 1; width <= kLongestRow; ++width) {
            for (const YuvMatrix matrix : {YuvMatrix::bt601, YuvMatrix::bt709}) {
                for (const YuvRange range : {YuvRange::limited, YuvRange::full}) {
                    const ToBgra by{toBgraWeights(matrix, range), random() % 2 == 0};
                    const RandomBytes luma(width, random);
                    std::vector<std::uint16_t> u = randomColour((width + 1) / 2 + 2, random);
                    std::vector<std::uint16_t> v = randomColour((width + 1) / 2 + 2, random);
                    const ChromaRow colour{u.data() + 1, v.data() + 1};
                    const std::size_t shift = 4 * (random() % 3);
                    std::vector<std::uint8_t> found(shift + 4 * width + 1, kUntouched);
                    std::vector<std::uint8_t> expected = found;
                    rowToBgra(luma.data(), colour, by, found.data() + shift, width);
                    plainRowToBgra(luma.data(), colour, by, expected.data() + shift, width);
                    ASSERT_EQ(found, expected) << width << " pixels";
                }
            }
        }
    });
}

TEST(YuvKernels, brightnessIsThatOfThePlainVersion) {
    test::forEachVectorTarget([] {
        std::mt19937 random(33);
        for (std::size_t width = 1; width <= kLongestRow; ++width) {
            for (const YuvMatrix matrix : {YuvMatrix::bt601, YuvMatrix::bt709}) {
                for (const YuvRange range : {YuvRange::limited, YuvRange::full}) {
                    const FromBgraWeights weights = fromBgraWeights(matrix, range);
                    const RandomBytes pixels(4 * width, random);
                    std::vector<std::uint8_t> found(width + 1, kUntouched);
                    std::vector<std::uint8_t> expected = found;
                    rowToLuma(pixels.data(), weights.luma, found.data(), width);
                    plainRowToLuma(pixels.data(), weights.luma, expected.data(), width);
                    ASSERT_EQ(found, expected) << width << " pixels";
                }
            }
        }
    });
}

void compareColourOf(std::size_t width, const ToChroma& by, bool isInterleaved,
                     std::mt19937& random) {
    const RandomBytes above(4 * width, random);
    const RandomBytes own(4 * width, random);
    const RandomBytes below(4 * width, random);
    const PixelRows rows{above.data(), own.data(), below.data()};
    const std::size_t count = (width + 1) / 2;
    std::vector<std::uint8_t> found(3 * count + 2, kUntouched);
    std::vector<std::uint8_t> expected = found;
    const auto target = [&](std::vector<std::uint8_t>& bytes) {
        return ChromaTarget{bytes.data(), bytes.data() + 2 * count + 1, isInterleaved};
    };
    rowsToChroma(rows, by, target(found), width);
    plainRowsToChroma(rows, by, target(expected), width);
    ASSERT_EQ(found, expected) << width << " pixels";
}

TEST(YuvKernels, colourIsThatOfThePlainVersion) {
    test::forEachVectorTarget([] {
        std::mt19937 random(34);
        for (std::size_t width = 1; width <= kLongestRow; ++width) {
            for (const ChromaSiting siting :
                 {ChromaSiting::left, ChromaSiting::centre, ChromaSiting::topLeft}) {
                for (const YuvRange range : {YuvRange::limited, YuvRange::full}) {
                    const YuvMatrix matrix = width % 3 == 0 ? YuvMatrix::bt601 : YuvMatrix::bt709;
                    const ToChroma by{fromBgraWeights(matrix, range), siting};
                    compareColourOf(width, by, false, random);
                    compareColourOf(width, by, true, random);
                }
            }
        }
    });
}

} // namespace
} // namespace tavi
