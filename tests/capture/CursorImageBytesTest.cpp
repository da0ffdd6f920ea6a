#include "capture/CursorImageBytes.h"

#include <gtest/gtest.h>

namespace tavi {
namespace {

PixelBuffer gradient(int width, int height) {
    PixelBuffer image(width, height);
    for (int y = 0; y < height; ++y) {
        for (int i = 0; i < width * PixelBuffer::kBytesPerPixel; ++i) {
            image.row(y)[i] = static_cast<std::uint8_t>(y * 31 + i);
        }
    }
    return image;
}

TEST(CursorImageBytes, giveThePictureBack) {
    const PixelBuffer image = gradient(5, 3);
    const auto back = cursorImageFromBytes(cursorImageBytes(image, 2, 1));
    ASSERT_TRUE(back);
    ASSERT_EQ(back->width(), 5);
    ASSERT_EQ(back->height(), 3);
    for (int y = 0; y < 3; ++y) {
        EXPECT_EQ(std::memcmp(back->row(y), image.row(y), 20), 0) << y;
    }
}

TEST(CursorImageBytes, differByPixelsSizeAndHotSpot) {
    const auto bytes = cursorImageBytes(gradient(4, 4), 1, 1);
    EXPECT_EQ(bytes, cursorImageBytes(gradient(4, 4), 1, 1));
    EXPECT_NE(bytes, cursorImageBytes(gradient(4, 4), 1, 2));
    EXPECT_NE(cursorImageBytes(PixelBuffer(4, 2), 0, 0), cursorImageBytes(PixelBuffer(2, 4), 0, 0));
    PixelBuffer other = gradient(4, 4);
    other.row(3)[15] ^= 1;
    EXPECT_NE(bytes, cursorImageBytes(other, 1, 1));
}

TEST(CursorImageBytes, ofAnotherFormAreNoPicture) {
    auto bytes = cursorImageBytes(gradient(4, 4), 1, 1);
    bytes.pop_back();
    EXPECT_FALSE(cursorImageFromBytes(bytes));
    EXPECT_FALSE(cursorImageFromBytes({}));
    EXPECT_FALSE(cursorImageFromBytes(cursorImageBytes(PixelBuffer(0, 0), 0, 0)));
    const std::vector<std::uint8_t> huge(16, 0xFF);
    EXPECT_FALSE(cursorImageFromBytes(huge));
}

} // namespace
} // namespace tavi
