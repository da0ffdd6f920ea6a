#include "render/MixRows.h"

#include "render/AxisTaps.h"
#include "support/VectorTargets.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <numeric>
#include <random>
#include <vector>

namespace tavi {
namespace {

constexpr int kLargestDifference = 1; // of 255
constexpr int kLargestValue = 255 * 64;
constexpr std::uint8_t kUntouched = 0xA5;

/// Random weights that add up to one; now and then one of them has it all.
std::vector<std::int16_t> randomWeights(std::size_t count, std::mt19937& random) {
    std::vector<std::int16_t> weights(count);
    int rest = AxisTaps::kOne;
    for (std::size_t i = 0; i + 1 < count; ++i) {
        const int part = random() % 4 == 0 ? rest : static_cast<int>(random() % (rest + 1U));
        weights[i] = static_cast<std::int16_t>(part);
        rest -= part;
    }
    weights.back() = static_cast<std::int16_t>(rest);
    return weights;
}

/// Compares one mix with the reference and returns the largest difference.
int differenceFor(std::size_t taps, std::size_t count, bool isEven, std::mt19937& random) {
    const auto even = static_cast<std::uint16_t>(random() % 256 * 64);
    std::vector<std::vector<std::uint16_t>> rows(taps, std::vector<std::uint16_t>(count + 1, even));
    std::vector<const std::uint16_t*> pointers;
    const std::size_t shift = random() % 2;
    for (std::vector<std::uint16_t>& row : rows) {
        if (!isEven) {
            std::generate(row.begin(), row.end(), [&] {
                return static_cast<std::uint16_t>(random() % (kLargestValue + 1));
            });
        }
        pointers.push_back(row.data() + shift);
    }
    const std::vector<std::int16_t> weights = randomWeights(taps, random);
    std::vector<std::uint8_t> fast(count + 1, kUntouched);
    std::vector<std::uint8_t> plain(count + 1, kUntouched);
    mixRows(pointers, weights.data(), fast.data(), count);
    plainMixRows(pointers, weights.data(), plain.data(), count);
    EXPECT_EQ(fast[count], kUntouched);
    return std::inner_product(
        fast.begin(), fast.end(), plain.begin(), 0, [](int a, int b) { return std::max(a, b); },
        [](int a, int b) { return std::abs(a - b); });
}

TEST(MixRows, matchesThePlainVersionForEverySmallSize) {
    test::forEachVectorTarget([] {
        std::mt19937 random(3);
        for (std::size_t count = 1; count <= 160; ++count) {
            for (std::size_t taps = 1; taps <= 6; ++taps) {
                EXPECT_LE(differenceFor(taps, count, false, random), kLargestDifference);
            }
        }
    });
}

TEST(MixRows, matchesThePlainVersionForManyRows) {
    test::forEachVectorTarget([] {
        std::mt19937 random(4);
        for (std::size_t taps = 7; taps <= 40; ++taps) {
            EXPECT_LE(differenceFor(taps, 150, false, random), kLargestDifference);
        }
    });
}

TEST(MixRows, keepsEvenRowsEven) {
    test::forEachVectorTarget([] {
        std::mt19937 random(5);
        for (std::size_t taps = 1; taps <= 40; ++taps) {
            EXPECT_EQ(differenceFor(taps, 100, true, random), 0);
        }
    });
}

} // namespace
} // namespace tavi
