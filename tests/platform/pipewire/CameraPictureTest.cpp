#include "platform/pipewire/CameraPicture.h"

#include "platform/pipewire/FakePicture.h"

#include <gtest/gtest.h>

#include <cstdlib>

namespace tavi {
namespace {

using test::FakeMode;

constexpr std::uint32_t kLeft = 0x30A060;
constexpr std::uint32_t kRight = 0xE0E010;

CameraPicture pictureOf(const FakeMode& mode, const std::vector<std::uint8_t>& bytes) {
    CameraPicture picture;
    picture.format = static_cast<spa_video_format>(mode.format);
    picture.width = mode.width;
    picture.height = mode.height;
    picture.bytes = bytes;
    return picture;
}

bool isNear(const PixelBuffer& image, int x, int y, std::uint32_t colour) {
    const std::uint8_t* pixel = image.row(y) + x * 4;
    return std::abs(pixel[0] - static_cast<int>(colour & 255)) <= 3 &&
           std::abs(pixel[1] - static_cast<int>(colour >> 8 & 255)) <= 3 &&
           std::abs(pixel[2] - static_cast<int>(colour >> 16 & 255)) <= 3 && pixel[3] == 255;
}

class CameraPictureFormats : public testing::TestWithParam<spa_video_format> {};

TEST_P(CameraPictureFormats, cutShortAreNoPictureAndReadNothingBeyond) {
    const FakeMode mode{GetParam(), 16, 8, 30};
    const auto whole = test::fakePicture(mode, kLeft, kRight);
    PixelBuffer image(16, 8);
    ASSERT_TRUE(readCameraPicture(pictureOf(mode, whole), Mirroring::off, image));
    EXPECT_TRUE(isNear(image, 0, 0, kLeft));
    EXPECT_TRUE(isNear(image, 15, 7, kRight));
    for (std::size_t length = 0; length < whole.size(); ++length) {
        // Memory of just this length: a sanitizer sees what is read beyond.
        const std::vector<std::uint8_t> part(whole.begin(),
                                             whole.begin() + static_cast<std::ptrdiff_t>(length));
        const bool isRead = readCameraPicture(pictureOf(mode, part), Mirroring::off, image);
        if (mode.format != SPA_VIDEO_FORMAT_ENCODED) {
            EXPECT_FALSE(isRead) << length; // of a JPEG the rest may be made up
        }
    }
}

TEST_P(CameraPictureFormats, largerThanWantedAreCut) {
    const FakeMode mode{GetParam(), 16, 8, 30};
    const auto bytes = test::fakePicture(mode, kLeft, kRight);
    PixelBuffer image(14, 6);
    ASSERT_TRUE(readCameraPicture(pictureOf(mode, bytes), Mirroring::off, image));
    EXPECT_TRUE(isNear(image, 0, 5, kLeft));
    EXPECT_TRUE(isNear(image, 13, 5, kRight));
    PixelBuffer tooLarge(18, 8);
    EXPECT_FALSE(readCameraPicture(pictureOf(mode, bytes), Mirroring::off, tooLarge));
}

INSTANTIATE_TEST_SUITE_P(Any, CameraPictureFormats,
                         testing::Values(SPA_VIDEO_FORMAT_BGRx, SPA_VIDEO_FORMAT_RGBA,
                                         SPA_VIDEO_FORMAT_YUY2, SPA_VIDEO_FORMAT_UYVY,
                                         SPA_VIDEO_FORMAT_NV12, SPA_VIDEO_FORMAT_I420,
                                         SPA_VIDEO_FORMAT_ENCODED));

TEST(CameraPicture, rowsMayBePadded) {
    const FakeMode mode{SPA_VIDEO_FORMAT_NV12, 8, 4, 30};
    const auto dense = test::fakePicture(mode, kLeft, kRight);
    std::vector<std::uint8_t> padded;
    for (int row = 0; row < 6; ++row) {
        padded.insert(padded.end(), dense.begin() + row * 8, dense.begin() + row * 8 + 8);
        padded.insert(padded.end(), 5, 0xEE);
    }
    padded.resize(padded.size() - 5);
    auto picture = pictureOf(mode, padded);
    picture.stride = 13;
    PixelBuffer image(8, 4);
    ASSERT_TRUE(readCameraPicture(picture, Mirroring::off, image));
    EXPECT_TRUE(isNear(image, 3, 3, kLeft));
    EXPECT_TRUE(isNear(image, 7, 3, kRight));
}

TEST(CameraPicture, greyStaysGreyInEveryEncoding) {
    for (const auto matrix : {YuvMatrix::bt601, YuvMatrix::bt709}) {
        for (const auto range : {YuvRange::limited, YuvRange::full}) {
            const bool isFull = range == YuvRange::full;
            std::vector<std::uint8_t> bytes{0, 128, 0, 128};
            bytes[0] = isFull ? 0 : 16;
            bytes[2] = isFull ? 255 : 235;
            CameraPicture picture;
            picture.format = SPA_VIDEO_FORMAT_YUY2;
            picture.width = 2;
            picture.height = 1;
            picture.matrix = matrix;
            picture.range = range;
            picture.bytes = bytes;
            PixelBuffer image(2, 1);
            ASSERT_TRUE(readCameraPicture(picture, Mirroring::off, image));
            for (int channel = 0; channel < 3; ++channel) {
                EXPECT_EQ(image.row(0)[channel], 0);
                EXPECT_EQ(image.row(0)[4 + channel], 255);
            }
        }
    }
}

TEST(CameraPicture, jpegOfAnotherSizeIsNone) {
    const auto bytes = test::fakePicture({SPA_VIDEO_FORMAT_ENCODED, 16, 8, 30}, kLeft, kRight);
    PixelBuffer image(8, 8);
    EXPECT_FALSE(readCameraPicture(pictureOf({SPA_VIDEO_FORMAT_ENCODED, 32, 8, 30}, bytes),
                                   Mirroring::off, image));
}

} // namespace
} // namespace tavi
