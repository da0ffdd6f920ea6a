#include "ui/Picture.h"

#include "base/PixelBuffer.h"

#include <gtest/gtest.h>

#include <memory>

namespace tavi {
namespace {

PixelBufferPtr bufferOf(int width, int height) {
    auto buffer = std::make_shared<PixelBuffer>(width, height);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x) {
            std::uint8_t* pixel = buffer->row(y) + x * 4;
            pixel[0] = std::uint8_t(x);
            pixel[1] = std::uint8_t(y);
            pixel[2] = 200;
            pixel[3] = 255;
        }
    return buffer;
}

TEST(Picture, takesPixelBuffersAsTheyAre) {
    const PixelBufferPtr buffer = bufferOf(7, 3); // rows longer than their pixels
    const QImage image = imageOf(QVariant::fromValue(buffer));
    ASSERT_EQ(image.size(), QSize(7, 3));
    EXPECT_EQ(image.pixel(6, 2), qRgb(200, 2, 6));
    EXPECT_EQ(image.constBits(), buffer->data());
}

TEST(Picture, keepsABufferAliveWhileItsImageIsShown) {
    PixelBufferPtr buffer = bufferOf(4, 4);
    const std::weak_ptr<const PixelBuffer> watched = buffer;
    QImage image = imageOf(QVariant::fromValue(buffer));
    buffer.reset();
    EXPECT_FALSE(watched.expired());
    image = {};
    EXPECT_TRUE(watched.expired());
}

TEST(Picture, isNoneForAnythingElse) {
    EXPECT_TRUE(imageOf({}).isNull());
    EXPECT_TRUE(imageOf(QVariant(3)).isNull());
    EXPECT_TRUE(imageOf(QVariant::fromValue(PixelBufferPtr())).isNull());
    EXPECT_TRUE(imageOf(QVariant::fromValue(bufferOf(0, 4))).isNull());
    EXPECT_EQ(imageOf(QImage(5, 6, QImage::Format_RGB32)).size(), QSize(5, 6));
}

TEST(CoveringPart, isTheMiddleOfTheLongerSide) {
    EXPECT_EQ(coveringPart({400, 100}, {100, 100}), QRectF(150, 0, 100, 100));
    EXPECT_EQ(coveringPart({100, 400}, {100, 100}), QRectF(0, 150, 100, 100));
    EXPECT_EQ(coveringPart({640, 360}, {320, 180}), QRectF(0, 0, 640, 360));
    EXPECT_EQ(coveringPart({10, 10}, {300, 100}).width(), 10);
}

} // namespace
} // namespace tavi
