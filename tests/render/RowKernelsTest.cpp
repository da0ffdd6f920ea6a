#include "render/Composite.h"
#include "support/VectorTargets.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <vector>

namespace tavi {
namespace {

constexpr int kLongestRow = 160; // pixels: several of the longest vectors

std::vector<std::uint8_t> randomBytes(std::size_t count, std::mt19937& random) {
    std::vector<std::uint8_t> bytes(count);
    std::generate(bytes.begin(), bytes.end(), [&] { return static_cast<std::uint8_t>(random()); });
    return bytes;
}

TEST(DarkenRow, givesTheBytesOfThePlainVersion) {
    test::forEachVectorTarget([] {
        std::mt19937 random(11);
        for (int count = 0; count <= kLongestRow; ++count) {
            const std::size_t shift = random() % 4;
            const auto size = static_cast<std::size_t>(count);
            // Premultiplied or not: the arithmetic is the same.
            std::vector<std::uint8_t> fast = randomBytes(shift + 4 * size + 4, random);
            std::vector<std::uint8_t> plain = fast;
            const std::vector<std::uint8_t> alpha = randomBytes(size, random);
            darkenRow(fast.data() + shift, alpha.data(), count);
            plainDarkenRow(plain.data() + shift, alpha.data(), count);
            ASSERT_EQ(fast, plain) << count << " pixels";
        }
    });
}

TEST(CompositeRowOver, givesTheBytesOfThePlainVersion) {
    test::forEachVectorTarget([] {
        std::mt19937 random(12);
        for (int count = 0; count <= kLongestRow; ++count) {
            const std::size_t shift = random() % 4;
            const auto size = static_cast<std::size_t>(count);
            // Premultiplied or not: sums beyond 255 are cut off alike.
            std::vector<std::uint8_t> fast = randomBytes(shift + 4 * size + 4, random);
            std::vector<std::uint8_t> plain = fast;
            const std::vector<std::uint8_t> src = randomBytes(4 * size, random);
            const std::vector<std::uint8_t> coverage = randomBytes(size, random);
            compositeRowOver(fast.data() + shift, src.data(), count);
            plainCompositeRowOver(plain.data() + shift, src.data(), count);
            ASSERT_EQ(fast, plain) << count << " pixels";
            compositeRowOver(fast.data() + shift, src.data(), coverage.data(), count);
            plainCompositeRowOver(plain.data() + shift, src.data(), coverage.data(), count);
            ASSERT_EQ(fast, plain) << count << " covered pixels";
        }
    });
}

TEST(OpaqueRow, isMadeAsByThePlainVersion) {
    test::forEachVectorTarget([] {
        std::mt19937 random(13);
        for (int count = 0; count <= kLongestRow; ++count) {
            const std::size_t shift = random() % 4;
            std::vector<std::uint8_t> fast =
                randomBytes(shift + 4 * static_cast<std::size_t>(count) + 4, random);
            std::vector<std::uint8_t> plain = fast;
            makeRowOpaque(fast.data() + shift, count);
            plainMakeRowOpaque(plain.data() + shift, count);
            ASSERT_EQ(fast, plain) << count << " pixels";
        }
    });
}

TEST(OpaqueRow, seesEveryPixelThatIsNotOpaque) {
    test::forEachVectorTarget([] {
        for (int count = 0; count <= kLongestRow; ++count) {
            std::vector<std::uint8_t> row(static_cast<std::size_t>(count) * 4 + 1, 0);
            std::uint8_t* pixels = row.data() + 1;
            makeRowOpaque(pixels, count);
            ASSERT_TRUE(isRowOpaque(pixels, count));
            for (int x = 0; x < count; ++x) {
                pixels[4 * x + 3] = 254;
                ASSERT_FALSE(isRowOpaque(pixels, count)) << x << " of " << count;
                ASSERT_FALSE(plainIsRowOpaque(pixels, count));
                pixels[4 * x + 3] = 255;
            }
        }
    });
}

} // namespace
} // namespace tavi
