#include "render/BlurKernels.h"

#include "support/VectorTargets.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <random>
#include <vector>

namespace tavi {
namespace {

constexpr std::size_t kLongestRow = 160; // samples: several of the longest vectors

/// Random numbers up to `largest`, with the first one `shift` numbers off alignment.
template<typename Sample>
class RandomRow {
public:
    RandomRow(std::size_t count, unsigned largest, std::mt19937& random)
        : m_shift(random() % 3),
          m_samples(count + m_shift) {
        std::generate(m_samples.begin(), m_samples.end(),
                      [&] { return static_cast<Sample>(random() % (largest + 1)); });
    }

    const Sample* data() const { return m_samples.data() + m_shift; }

private:
    std::size_t m_shift;
    std::vector<Sample> m_samples;
};

constexpr unsigned kLargestSample = 255 * 64;

template<typename Sample, typename Fast, typename Plain>
void compareFourRows(Fast fast, Plain plain, unsigned largest) {
    test::forEachVectorTarget([&] {
        std::mt19937 random(21);
        for (std::size_t count = 1; count <= kLongestRow; ++count) {
            const RandomRow<Sample> a(count, largest, random);
            const RandomRow<Sample> b(count, largest, random);
            const RandomRow<Sample> c(count, largest, random);
            const RandomRow<Sample> d(count, largest, random);
            std::vector<std::uint16_t> found(count + 1, 0xBEEF);
            std::vector<std::uint16_t> expected(count + 1, 0xBEEF);
            fast({a.data(), b.data(), c.data(), d.data()}, found.data(), count);
            plain({a.data(), b.data(), c.data(), d.data()}, expected.data(), count);
            ASSERT_EQ(found, expected) << count << " samples";
        }
    });
}

TEST(BlurKernels, sumsOfRowsAreThoseOfThePlainVersion) {
    compareFourRows<std::uint8_t>(addBinomialRows, plainAddBinomialRows, 255);
}

TEST(BlurKernels, quartersOfRowsAreThoseOfThePlainVersion) {
    test::forEachVectorTarget([] {
        std::mt19937 random(27);
        for (std::size_t count = 1; count <= kLongestRow; ++count) {
            std::vector<RandomRow<std::uint8_t>> samples;
            TenRows rows;
            for (std::size_t i = 0; i < rows.rows.size(); ++i) {
                samples.emplace_back(count, 255, random);
                rows.rows[i] = samples.back().data();
            }
            std::vector<std::uint16_t> found(count + 1, 0xBEEF);
            std::vector<std::uint16_t> expected = found;
            addQuarterRows(rows, found.data(), count);
            plainAddQuarterRows(rows, expected.data(), count);
            ASSERT_EQ(found, expected) << count << " samples";
        }
    });
}

TEST(BlurKernels, quartersOfRowsAreWhatTheBinomialFilterMakesOfThemTwice) {
    std::mt19937 random(28);
    for (int i = 0; i < 1000; ++i) {
        std::array<std::uint8_t, 10> column{};
        std::generate(column.begin(), column.end(), [&] { return random() % 256; });
        std::array<std::uint16_t, 4> halves{};
        TenRows rows;
        for (std::size_t y = 0; y < column.size(); ++y) {
            rows.rows[y] = &column[y];
        }
        for (std::size_t y = 0; y < halves.size(); ++y) {
            const std::uint8_t* first = &column[2 * y];
            plainAddBinomialRows({first, first + 1, first + 2, first + 3}, &halves[y], 1);
        }
        std::uint16_t found = 0;
        plainAddQuarterRows(rows, &found, 1);
        ASSERT_EQ(found, halves[0] + 3 * halves[1] + 3 * halves[2] + halves[3]);
    }
}

TEST(BlurKernels, averagesOfRowsAreThoseOfThePlainVersion) {
    compareFourRows<std::uint16_t>(averageBinomialRows, plainAverageBinomialRows, kLargestSample);
}

TEST(BlurKernels, averagesAreWithinOneOfTheExactOnes) {
    std::mt19937 random(22);
    for (int i = 0; i < 10000; ++i) {
        const std::uint16_t a = random() % (kLargestSample + 1);
        const std::uint16_t b = random() % (kLargestSample + 1);
        const std::uint16_t c = random() % (kLargestSample + 1);
        const std::uint16_t d = random() % (kLargestSample + 1);
        std::uint16_t found = 0;
        plainAverageBinomialRows({&a, &b, &c, &d}, &found, 1);
        ASSERT_LE(std::abs(found - (a + 3.0 * b + 3.0 * c + d) / 8), 1.0);
    }
}

TEST(BlurKernels, halvedRowsAreThoseOfThePlainVersion) {
    test::forEachVectorTarget([] {
        std::mt19937 random(23);
        for (std::size_t pixels = 1; pixels <= 40; ++pixels) {
            for (const std::size_t channels : {1U, 4U}) {
                for (const Halving halving : {Halving::sum, Halving::average}) {
                    const unsigned largest = halving == Halving::sum ? 8 * 255 : kLargestSample;
                    const RandomRow<std::uint16_t> in((2 * pixels + 2) * channels, largest, random);
                    std::vector<std::uint16_t> found(pixels * channels + 1, 0xBEEF);
                    std::vector<std::uint16_t> expected = found;
                    halveRow(in.data(), found.data(), pixels, channels, halving);
                    plainHalveRow(in.data(), expected.data(), pixels, channels, halving);
                    ASSERT_EQ(found, expected) << pixels << " pixels";
                }
            }
        }
    });
}

TEST(BlurKernels, symmetricSumsAreThoseOfThePlainVersion) {
    test::forEachVectorTarget([] {
        std::mt19937 random(24);
        std::uniform_real_distribution<float> value(0, kLargestSample);
        for (std::size_t count = 1; count <= 70; ++count) {
            const std::size_t reach = random() % 28;
            std::vector<float> line(count + 2 * reach);
            std::generate(line.begin(), line.end(), [&] { return value(random); });
            std::vector<const float*> before;
            std::vector<const float*> after;
            const std::vector<float> weights(reach + 1, 1.0F / static_cast<float>(2 * reach + 1));
            for (std::size_t k = 1; k <= reach; ++k) {
                before.push_back(line.data() + reach - k);
                after.push_back(line.data() + reach + k);
            }
            std::vector<float> found(count + 1, -1);
            std::vector<float> expected(count + 1, -1);
            const SymmetricRows rows{line.data() + reach, before, after};
            addSymmetricRows(rows, weights.data(), found.data(), count);
            plainAddSymmetricRows(rows, weights.data(), expected.data(), count);
            ASSERT_EQ(found[count], -1);
            for (std::size_t i = 0; i < count; ++i) {
                ASSERT_NEAR(found[i], expected[i], expected[i] * 3e-6) << count << " numbers";
            }
        }
    });
}

TEST(BlurKernels, mixedPixelsAreThoseOfThePlainVersion) {
    test::forEachVectorTarget([] {
        std::mt19937 random(25);
        for (std::size_t count = 1; count <= 40; ++count) {
            for (const std::size_t channels : {1U, 4U}) {
                constexpr std::size_t kPixels = 30;
                const RandomRow<std::uint16_t> samples(kPixels * channels, kLargestSample, random);
                std::vector<PixelPlace> places(count);
                for (PixelPlace& place : places) {
                    place.first = static_cast<std::int32_t>(random() % (kPixels - 1));
                    place.fraction = static_cast<std::int32_t>(random() % kPlaceOne);
                }
                std::vector<std::uint8_t> found(count * channels + 1, 0xA5);
                std::vector<std::uint8_t> expected = found;
                mixPixels(samples.data(), places.data(), count, channels, found.data());
                plainMixPixels(samples.data(), places.data(), count, channels, expected.data());
                ASSERT_EQ(found, expected) << count << " pixels";
            }
        }
    });
}

TEST(BlurKernels, mixedSamplesAreThoseOfThePlainVersion) {
    test::forEachVectorTarget([] {
        std::mt19937 random(26);
        for (std::size_t count = 1; count <= kLongestRow; ++count) {
            const RandomRow<std::uint16_t> a(count, kLargestSample, random);
            const RandomRow<std::uint16_t> b(count, kLargestSample, random);
            const auto fraction = static_cast<std::int32_t>(random() % kPlaceOne);
            std::vector<std::uint16_t> found(count + 1, 0xBEEF);
            std::vector<std::uint16_t> expected = found;
            mixSamples(a.data(), b.data(), fraction, found.data(), count);
            plainMixSamples(a.data(), b.data(), fraction, expected.data(), count);
            ASSERT_EQ(found, expected) << count << " samples";
        }
    });
}

} // namespace
} // namespace tavi
