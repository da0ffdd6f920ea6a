#include "render/CoverageMask.h"

#include <gtest/gtest.h>

#include <cmath>
#include <random>

namespace tavi {
namespace {

constexpr PixelBounds kBounds{0, 0, 40, 30};

int coverageAt(const CoverageMask& mask, int x, int y) {
    if (y < mask.bounds().top || y >= mask.bounds().bottom) {
        return 0;
    }
    const CoverageMask::Row row = mask.row(y);
    if (x < row.begin || x >= row.end) {
        return 0;
    }
    if (x >= row.solidBegin && x < row.solidEnd) {
        return 255;
    }
    return x < row.solidBegin ? row.left[static_cast<std::size_t>(x - row.begin)]
                              : row.right[static_cast<std::size_t>(x - row.solidEnd)];
}

CoverageMask maskOf(const Rect& shape, double radius, const Rect& clip = {-1e6, -1e6, 2e6, 2e6}) {
    CoverageMask mask;
    mask.assign(shape, radius, clip, kBounds);
    return mask;
}

bool isInside(const Rect& r, double radius, double x, double y) {
    if (x < r.x || y < r.y || x >= r.maxX() || y >= r.maxY()) {
        return false;
    }
    const double dx = std::max({r.x + radius - x, x - (r.maxX() - radius), 0.0});
    const double dy = std::max({r.y + radius - y, y - (r.maxY() - radius), 0.0});
    return dx * dx + dy * dy <= radius * radius;
}

/// By brute force: 32 x 32 points a pixel.
double sampledCoverage(const Rect& shape, double radius, int x, int y) {
    constexpr int kGrid = 32;
    int hits = 0;
    for (int i = 0; i < kGrid; ++i) {
        for (int j = 0; j < kGrid; ++j) {
            hits += isInside(shape, radius, x + (i + 0.5) / kGrid, y + (j + 0.5) / kGrid);
        }
    }
    return 255.0 * hits / (kGrid * kGrid);
}

TEST(CoverageMask, wholePixelsAreCoveredWhollyAndNoOthers) {
    const CoverageMask mask = maskOf({4, 5, 10, 7}, 0);
    for (int y = 0; y < 30; ++y) {
        for (int x = 0; x < 40; ++x) {
            const bool inside = x >= 4 && x < 14 && y >= 5 && y < 12;
            EXPECT_EQ(coverageAt(mask, x, y), inside ? 255 : 0);
        }
    }
    EXPECT_EQ(mask.bounds(), (PixelBounds{4, 5, 14, 12}));
}

TEST(CoverageMask, fractionalEdgesAreCoveredByArea) {
    const CoverageMask mask = maskOf({4.25, 5.5, 10, 7}, 0);
    EXPECT_EQ(coverageAt(mask, 4, 8), 191); // three quarters
    EXPECT_EQ(coverageAt(mask, 14, 8), 64); // one quarter
    EXPECT_EQ(coverageAt(mask, 8, 5), 128); // a half
    EXPECT_EQ(coverageAt(mask, 8, 12), 128);
    EXPECT_EQ(coverageAt(mask, 4, 5), 96); // both
    EXPECT_EQ(coverageAt(mask, 8, 8), 255);
}

TEST(CoverageMask, roundedCornersMatchTheirArea) {
    for (const double radius : {0.7, 3.0, 6.5, 11.0}) {
        const Rect shape{3.3, 2.6, 30.4, 22.5};
        const CoverageMask mask = maskOf(shape, radius);
        for (int y = 0; y < 30; ++y) {
            for (int x = 0; x < 40; ++x) {
                EXPECT_NEAR(coverageAt(mask, x, y), sampledCoverage(shape, radius, x, y), 7)
                    << radius << " at " << x << ", " << y;
            }
        }
    }
}

TEST(CoverageMask, aRadiusBeyondHalfOfTheShorterSideIsLimitedToIt) {
    const Rect shape{2, 3, 30, 20};
    const CoverageMask limited = maskOf(shape, 10);
    const CoverageMask huge = maskOf(shape, 1000);
    for (int y = 0; y < 30; ++y) {
        for (int x = 0; x < 40; ++x) {
            EXPECT_EQ(coverageAt(huge, x, y), coverageAt(limited, x, y));
        }
    }
    EXPECT_EQ(coverageAt(huge, 2, 3), 0);
}

TEST(CoverageMask, theClipCutsWithoutRounding) {
    const CoverageMask mask = maskOf({2, 3, 30, 20}, 8, {10.5, 0, 100, 15});
    EXPECT_EQ(coverageAt(mask, 9, 10), 0);
    EXPECT_EQ(coverageAt(mask, 10, 10), 128);
    EXPECT_EQ(coverageAt(mask, 11, 14), 255);
    EXPECT_EQ(coverageAt(mask, 11, 15), 0);
}

TEST(CoverageMask, whatLiesOutsideOfTheBoundsIsLeftOut) {
    const CoverageMask mask = maskOf({-100, -100, 1000, 1000}, 5);
    EXPECT_EQ(mask.bounds(), kBounds);
    EXPECT_EQ(coverageAt(mask, 0, 0), 255);
    EXPECT_EQ(coverageAt(mask, 39, 29), 255);
}

TEST(CoverageMask, shapesWithoutAreaCoverNothing) {
    for (const Rect shape : {Rect{}, Rect{3, 3, 0, 5}, Rect{3, 3, -4, 5}, Rect{NAN, 3, 4, 5},
                             Rect{3, 3, INFINITY, 5}, Rect{100, 3, 4, 5}}) {
        EXPECT_TRUE(maskOf(shape, 2).bounds().empty());
    }
    EXPECT_TRUE(maskOf({3, 3, 9, 9}, 2, {20, 20, 3, 3}).bounds().empty());
}

TEST(CoverageMask, aRadiusThatIsNoNumberLeavesTheCorners) {
    EXPECT_EQ(coverageAt(maskOf({2, 3, 30, 20}, NAN), 2, 3), 255);
    EXPECT_EQ(coverageAt(maskOf({2, 3, 30, 20}, -4), 2, 3), 255);
}

TEST(CoverageMask, theCoverageAddsUpToTheArea) {
    std::mt19937 random(6);
    std::uniform_real_distribution<double> side(0.1, 15);
    std::uniform_real_distribution<double> place(1, 12);
    for (int i = 0; i < 200; ++i) {
        const Rect shape{place(random), place(random), side(random), side(random)};
        const double radius = std::min(side(random), std::min(shape.width, shape.height) / 2);
        const CoverageMask mask = maskOf(shape, radius);
        double sum = 0;
        for (int y = 0; y < 30; ++y) {
            for (int x = 0; x < 40; ++x) {
                sum += coverageAt(mask, x, y) / 255.0;
            }
        }
        const double area = shape.width * shape.height - (4 - std::acos(-1)) * radius * radius;
        EXPECT_NEAR(sum, area, 0.02 * area + 0.05);
    }
}

} // namespace
} // namespace tavi
