#include "render/ResampleColumns.h"

#include "support/VectorTargets.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <random>
#include <vector>

namespace tavi {
namespace {

constexpr int kLargestDifference = 2; // of 64 to a step of a channel
constexpr int kChannels = 4;
constexpr std::uint16_t kUntouched = 0xBEEF;

std::vector<std::uint8_t> randomBytes(std::size_t count, std::mt19937& random) {
    std::vector<std::uint8_t> bytes(count);
    std::generate(bytes.begin(), bytes.end(), [&] { return static_cast<std::uint8_t>(random()); });
    return bytes;
}

/// Compares one row with the reference, the pixels `shift` bytes off alignment.
void checkRow(int sourceWidth, int columns, const AxisMapping& mapping, std::size_t shift,
              std::mt19937& random) {
    AxisTaps taps;
    taps.assign(mapping, 0, columns);
    // The row ends where its memory ends, so that a sanitizer sees reads beyond.
    const auto bytes =
        randomBytes(shift + static_cast<std::size_t>(sourceWidth * kChannels), random);
    const auto count = static_cast<std::size_t>(columns * kChannels);
    ResampleColumns pass;
    pass.begin(taps, sourceWidth);
    ASSERT_GE(pass.rowSize(), count);
    std::vector<std::uint16_t> fast(pass.rowSize() + 1, kUntouched);
    std::vector<std::uint16_t> plain(count, kUntouched);
    pass.columns(bytes.data() + shift, bytes.data() + shift, taps, fast.data());
    plainColumns(bytes.data() + shift, taps, plain.data());
    ASSERT_EQ(fast[pass.rowSize()], kUntouched);
    for (std::size_t i = 0; i < count; ++i) {
        ASSERT_LE(std::abs(fast[i] - plain[i]), kLargestDifference)
            << sourceWidth << " pixels, " << columns << " columns, number " << i;
    }
}

TEST(ResampleColumns, matchThePlainVersionForEverySmallSize) {
    test::forEachVectorTarget([] {
        std::mt19937 random(7);
        std::uniform_real_distribution<double> part(0, 1);
        for (int width = 1; width <= 40; ++width) {
            for (int columns = 1; columns <= 40; ++columns) {
                const double start = part(random) * width * 0.5;
                const double length = std::max(0.1, part(random) * (width - start));
                checkRow(width, columns, {start, length, 0, double(columns), width}, random() % 4,
                         random);
                if (testing::Test::HasFatalFailure()) {
                    return;
                }
            }
        }
    });
}

TEST(ResampleColumns, matchThePlainVersionForEveryScale) {
    test::forEachVectorTarget([] {
        std::mt19937 random(8);
        std::uniform_real_distribution<double> part(0, 1);
        for (double scale = 0.2; scale < 6; scale *= 1.07) {
            const int width = 150;
            const double start = part(random) * 30;
            const double length = 150 - start - part(random) * 30;
            const double offset = part(random);
            const int columns = static_cast<int>(length * scale) + 1;
            checkRow(width, columns, {start, length, offset, length * scale, width}, 1, random);
            if (testing::Test::HasFatalFailure()) {
                return;
            }
        }
    });
}

} // namespace
} // namespace tavi
