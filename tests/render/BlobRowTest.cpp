#include "render/BlobRow.h"

#include "support/VectorTargets.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <random>
#include <vector>

namespace tavi {
namespace {

constexpr int kLongestRow = 100; // pixels: several of the longest vectors

BlobRow randomRow(std::mt19937& random) {
    const auto upTo = [&](float most) {
        return std::uniform_real_distribution<float>(0, most)(random);
    };
    BlobRow row;
    row.base = {upTo(255), upTo(255), upTo(255)};
    for (BlobRow::Blob& blob : row.blobs) {
        blob.alpha = upTo(1);
        blob.centerX = upTo(140) - 20;
        blob.distanceSquared = upTo(3600);
        blob.inverseRadius = 1 / (upTo(90) + 1);
        blob.color = {upTo(255) * blob.alpha, upTo(255) * blob.alpha, upTo(255) * blob.alpha};
    }
    return row;
}

TEST(BlobRow, isWithinOneOfThePlainVersion) {
    int largest = 0;
    test::forEachVectorTarget([&] {
        std::mt19937 random(31);
        for (int count = 0; count <= kLongestRow; ++count) {
            const BlobRow row = randomRow(random);
            const std::size_t shift = random() % 4;
            std::vector<std::uint8_t> fast(shift + 4 * static_cast<std::size_t>(count) + 4, 77);
            std::vector<std::uint8_t> plain = fast;
            drawBlobRow(row, fast.data() + shift, count);
            plainDrawBlobRow(row, plain.data() + shift, 0, count);
            for (std::size_t i = 0; i < fast.size(); ++i) {
                largest = std::max(largest, std::abs(fast[i] - plain[i]));
            }
            EXPECT_EQ(fast.back(), 77) << "wrote behind the row";
        }
    });
    EXPECT_LE(largest, 1);
}

TEST(BlobRow, blobWithoutARadiusShowsNowhere) {
    BlobRow row;
    row.base = {10, 20, 30};
    std::vector<std::uint8_t> out(4 * 33);
    drawBlobRow(row, out.data(), 33);
    for (std::size_t i = 0; i < out.size(); i += 4) {
        EXPECT_EQ(out[i], 10);
        EXPECT_EQ(out[i + 1], 20);
        EXPECT_EQ(out[i + 2], 30);
        EXPECT_EQ(out[i + 3], 255);
    }
}

} // namespace
} // namespace tavi
