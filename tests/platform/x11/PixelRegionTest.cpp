#include "platform/x11/PixelRegion.h"

#include <gtest/gtest.h>

#include <random>

namespace tavi {
namespace {

bool covers(const PixelRegion& region, const PixelRect& rect) {
    for (int y = rect.y; y < rect.y + rect.height; ++y) {
        for (int x = rect.x; x < rect.x + rect.width; ++x) {
            int holders = 0;
            for (const auto& piece : region.pieces()) {
                holders += piece.intersected({x, y, 1, 1}).isEmpty() ? 0 : 1;
            }
            if (holders != 1) {
                return false;
            }
        }
    }
    return true;
}

TEST(PixelRegion, keepsPiecesThatAreFarApart) {
    PixelRegion region;
    region.add(PixelRect{0, 0, 10, 10});
    region.add(PixelRect{500, 400, 10, 10});
    EXPECT_EQ(region.pieces().size(), 2U);
    EXPECT_EQ(region.bounds(), (PixelRect{0, 0, 510, 410}));
}

TEST(PixelRegion, joinsNeighboursAndOverlaps) {
    PixelRegion region;
    region.add(PixelRect{0, 0, 10, 10});
    region.add(PixelRect{0, 10, 10, 10});
    region.add(PixelRect{5, 5, 10, 10});
    EXPECT_EQ(region.pieces(), (std::vector{PixelRect{0, 0, 15, 20}}));
}

TEST(PixelRegion, isEmptyWithoutPieces) {
    PixelRegion region;
    region.add(PixelRect{5, 5, 0, 10});
    EXPECT_TRUE(region.isEmpty());
    EXPECT_TRUE(region.bounds().isEmpty());
}

TEST(PixelRegion, partIsCutAndMoved) {
    PixelRegion region(PixelRect{10, 10, 20, 20});
    region.add(PixelRect{100, 100, 5, 5});
    EXPECT_EQ(region.within({0, 0, 20, 50}, -10, -5).pieces(),
              (std::vector{PixelRect{0, 5, 10, 20}}));
}

TEST(PixelRegion, coversEachPixelPutIntoItOnceInAFewPieces) {
    std::mt19937 random(5); // fixed seed: the same areas at every run
    const auto below = [&random](int end) {
        return static_cast<int>(random() % static_cast<unsigned>(end));
    };
    for (int run = 0; run < 30; ++run) {
        PixelRegion region;
        for (int step = 0; step < 30; ++step) {
            const PixelRect rect{below(200), below(200), 1 + below(20), 1 + below(20)};
            region.add(rect);
            ASSERT_TRUE(covers(region, rect));
            ASSERT_LE(region.pieces().size(), 16U);
        }
    }
}

} // namespace
} // namespace tavi
