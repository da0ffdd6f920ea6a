#include "platform/portal/CastPicture.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <cstring>
#include <functional>
#include <vector>

namespace tavi {
namespace {

/// Pixels as rows of numbers, to turn by the plainest means.
using Grid = std::vector<std::vector<std::uint32_t>>;

Grid gridOf(int width, int height) {
    Grid grid(static_cast<std::size_t>(height));
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            grid[static_cast<std::size_t>(y)].push_back(0xFF000000U +
                                                        static_cast<unsigned>(y * 256 + x));
        }
    }
    return grid;
}

Grid flipped(Grid grid) {
    for (auto& row : grid) {
        std::reverse(row.begin(), row.end());
    }
    return grid;
}

Grid turnedLeft(const Grid& grid) {
    Grid turned;
    for (std::size_t column = grid[0].size(); column-- > 0;) {
        turned.emplace_back();
        for (const auto& row : grid) {
            turned.back().push_back(row[column]);
        }
    }
    return turned;
}

/// What a compositor makes of an upright picture.
Grid transformed(Grid grid, std::uint32_t transform) {
    if (transform >= SPA_META_TRANSFORMATION_Flipped) {
        grid = flipped(std::move(grid));
    }
    for (std::uint32_t i = 0; i < transform % 4; ++i) {
        grid = turnedLeft(grid);
    }
    return grid;
}

/// The bytes of a grid, rows `padding` bytes longer than needed.
struct Memory {
    explicit Memory(const Grid& grid, std::size_t padding = 0, bool isBottomUp = false)
        : width(static_cast<int>(grid[0].size())),
          height(static_cast<int>(grid.size())),
          stride(static_cast<std::ptrdiff_t>(grid[0].size() * 4 + padding)),
          bytes(static_cast<std::size_t>(stride) * grid.size(), 0xEE) {
        for (std::size_t y = 0; y < grid.size(); ++y) {
            const std::size_t row = isBottomUp ? grid.size() - 1 - y : y;
            std::memcpy(bytes.data() + row * static_cast<std::size_t>(stride), grid[y].data(),
                        grid[y].size() * 4);
        }
        stride = isBottomUp ? -stride : stride;
    }

    CastPicture picture() const {
        CastPicture made;
        made.format = SPA_VIDEO_FORMAT_BGRx;
        made.width = width;
        made.height = height;
        made.stride = stride;
        made.bytes = bytes;
        made.crop = {0, 0, width, height};
        return made;
    }

    int width;
    int height;
    std::ptrdiff_t stride;
    std::vector<std::uint8_t> bytes;
};

std::uint32_t pixel(const PixelBuffer& picture, int x, int y) {
    std::uint32_t value = 0;
    std::memcpy(&value, picture.row(y) + std::ptrdiff_t{x} * 4, sizeof value);
    return value;
}

Grid gridOf(const PixelBuffer& picture) {
    Grid grid(static_cast<std::size_t>(picture.height()));
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x) {
            grid[static_cast<std::size_t>(y)].push_back(pixel(picture, x, y));
        }
    }
    return grid;
}

Grid drawn(const CastPicture& picture, int width, int height) {
    PixelBuffer to(width, height);
    EXPECT_TRUE(drawCastPicture(picture, nullptr, to));
    return gridOf(to);
}

class CastTransform : public testing::TestWithParam<std::uint32_t> {};

TEST_P(CastTransform, isTurnedBack) {
    const Grid upright = gridOf(5, 3);
    const Memory memory(transformed(upright, GetParam()), 12);
    CastPicture picture = memory.picture();
    picture.transform = static_cast<spa_meta_videotransform_value>(GetParam());
    EXPECT_EQ(shownArea(picture), (CastArea{0, 0, 5, 3}));
    EXPECT_EQ(drawn(picture, 5, 3), upright);
}

TEST_P(CastTransform, pointsGoWithTheirPixels) {
    const Grid upright = gridOf(5, 3);
    const Grid turned = transformed(upright, GetParam());
    const Memory memory(turned);
    CastPicture picture = memory.picture();
    picture.transform = static_cast<spa_meta_videotransform_value>(GetParam());
    for (int y = 0; y < memory.height; ++y) {
        for (int x = 0; x < memory.width; ++x) {
            const CastPoint shown = shownPoint(picture, {x, y});
            EXPECT_EQ(
                upright.at(static_cast<std::size_t>(shown.y)).at(static_cast<std::size_t>(shown.x)),
                turned[static_cast<std::size_t>(y)][static_cast<std::size_t>(x)]);
        }
    }
}

INSTANTIATE_TEST_SUITE_P(AllEight, CastTransform, testing::Range(0U, 8U));

TEST(CastPicture, bottomUpRowsAreTurnedRound) {
    const Grid upright = gridOf(4, 6);
    EXPECT_EQ(drawn(Memory(upright, 8, true).picture(), 4, 6), upright);
}

TEST(CastPicture, cropIsWhatIsShown) {
    const Memory memory(gridOf(8, 6));
    CastPicture picture = memory.picture();
    picture.crop = {2, 1, 3, 4};
    const Grid shown = drawn(picture, 3, 4);
    EXPECT_EQ(shown[0][0], 0xFF000000U + 256 + 2);
    EXPECT_EQ(shown[3][2], 0xFF000000U + 4 * 256 + 4);
    EXPECT_EQ(shownPoint(picture, {2, 1}), (CastPoint{0, 0}));
}

TEST(CastPicture, redFirstIsTurnedIntoBlueFirst) {
    Memory memory(Grid{{0xFF332211U, 0x80665544U}});
    for (const auto format : {SPA_VIDEO_FORMAT_RGBx, SPA_VIDEO_FORMAT_RGBA}) {
        CastPicture picture = memory.picture();
        picture.format = format;
        EXPECT_EQ(drawn(picture, 2, 1), (Grid{{0xFF112233U, 0x80445566U}}));
    }
}

TEST(CastPicture, smallerSourceIsContinuedByItsLastColumnAndRow) {
    const Grid shown = drawn(Memory(gridOf(2, 2)).picture(), 4, 3);
    const Grid source = gridOf(2, 2);
    for (std::size_t y = 0; y < 3; ++y) {
        for (std::size_t x = 0; x < 4; ++x) {
            EXPECT_EQ(shown[y][x],
                      source[std::min<std::size_t>(y, 1)][std::min<std::size_t>(x, 1)]);
        }
    }
}

TEST(CastPicture, largerSourceIsCutOff) {
    const Grid shown = drawn(Memory(gridOf(9, 9)).picture(), 4, 3);
    EXPECT_EQ(shown[2][3], 0xFF000000U + 2 * 256 + 3);
}

TEST(CastPicture, tooFewBytesAreNoPicture) {
    const Memory memory(gridOf(4, 4));
    CastPicture picture = memory.picture();
    picture.bytes = picture.bytes.first(picture.bytes.size() - 1);
    PixelBuffer to(4, 4);
    EXPECT_FALSE(drawCastPicture(picture, nullptr, to));
    picture = memory.picture();
    picture.stride = 15;
    EXPECT_FALSE(drawCastPicture(picture, nullptr, to));
}

TEST(CastPicture, otherFormatsAreNotRead) {
    const Memory memory(gridOf(4, 4));
    CastPicture picture = memory.picture();
    PixelBuffer to(4, 4);
    picture.format = SPA_VIDEO_FORMAT_YUY2;
    EXPECT_FALSE(drawCastPicture(picture, nullptr, to));
}

TEST(CastPicture, isAPixelBufferOnlyWhenItLiesAsOne) {
    PixelBuffer own(32, 4); // rows of 128 bytes
    CastPicture picture;
    picture.format = SPA_VIDEO_FORMAT_BGRA;
    picture.width = 32;
    picture.height = 4;
    picture.stride = static_cast<std::ptrdiff_t>(own.stride());
    picture.bytes = {own.data(), PixelBuffer::bytesFor(32, 4)};
    picture.crop = {0, 0, 32, 4};
    EXPECT_EQ(asPixelBuffer(picture, 32, 4), own.data());
    EXPECT_EQ(asPixelBuffer(picture, 32, 3), nullptr);
    for (const auto& change : std::vector<std::function<void(CastPicture&)>>{
             [](CastPicture& p) { p.format = SPA_VIDEO_FORMAT_RGBx; },
             [](CastPicture& p) { p.stride = -p.stride; },
             [](CastPicture& p) { p.transform = SPA_META_TRANSFORMATION_180; },
             [](CastPicture& p) { p.crop.x = 1; },
             [](CastPicture& p) { p.bytes = p.bytes.first(100); }}) {
        CastPicture other = picture;
        change(other);
        EXPECT_EQ(asPixelBuffer(other, 32, 4), nullptr);
    }
}

} // namespace
} // namespace tavi
