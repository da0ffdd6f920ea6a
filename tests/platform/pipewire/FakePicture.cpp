#include "platform/pipewire/FakePicture.h"

#include "platform/pipewire/FakeYuv.h"

#include <gtest/gtest.h>

#include <array>
#include <turbojpeg.h>

namespace tavi::test {

namespace {

using Bytes = std::vector<std::uint8_t>;

/// Four bytes a pixel in memory order.
Bytes packed(const FakeMode& mode, std::uint32_t left, std::uint32_t right, bool isRedFirst) {
    Bytes picture;
    for (int y = 0; y < mode.height; ++y) {
        for (int x = 0; x < mode.width; ++x) {
            const std::uint32_t colour = x < mode.width / 2 ? left : right;
            const auto r = static_cast<std::uint8_t>(colour >> 16);
            const auto g = static_cast<std::uint8_t>(colour >> 8);
            const auto b = static_cast<std::uint8_t>(colour);
            picture.insert(picture.end(), {isRedFirst ? r : b, g, isRedFirst ? b : r,
                                           mode.format == SPA_VIDEO_FORMAT_BGRA ||
                                                   mode.format == SPA_VIDEO_FORMAT_RGBA
                                               ? std::uint8_t{255}
                                               : std::uint8_t{0}});
        }
    }
    return picture;
}

Bytes jpeg(const FakeMode& mode, std::uint32_t left, std::uint32_t right) {
    const Bytes pixels = packed(mode, left, right, false);
    unsigned char* memory = nullptr;
    unsigned long size = 0;
    tjhandle compressor = tjInitCompress();
    EXPECT_EQ(tjCompress2(compressor, pixels.data(), mode.width, 0, mode.height, TJPF_BGRX, &memory,
                          &size, TJSAMP_422, 95, 0),
              0);
    Bytes picture(memory, memory + size);
    tjFree(memory);
    tjDestroy(compressor);
    return picture;
}

void appendPlane(Bytes& picture, int rows, int leftCount, const Bytes& left, int rightCount,
                 const Bytes& right) {
    for (int row = 0; row < rows; ++row) {
        for (int i = 0; i < leftCount; ++i) {
            picture.insert(picture.end(), left.begin(), left.end());
        }
        for (int i = 0; i < rightCount; ++i) {
            picture.insert(picture.end(), right.begin(), right.end());
        }
    }
}

} // namespace

int rowBytes(const FakeMode& mode) {
    switch (mode.format) {
    case SPA_VIDEO_FORMAT_YUY2:
    case SPA_VIDEO_FORMAT_UYVY:
        return mode.width * 2;
    case SPA_VIDEO_FORMAT_NV12:
    case SPA_VIDEO_FORMAT_I420:
        return mode.width;
    case SPA_VIDEO_FORMAT_ENCODED:
        return 0;
    default:
        return mode.width * 4;
    }
}

Bytes fakePicture(const FakeMode& mode, std::uint32_t left, std::uint32_t right) {
    const FakeYuv a = fakeYuv(left, kBt601);
    const FakeYuv b = fakeYuv(right, kBt601);
    const int half = mode.width / 2;
    const int quarter = mode.width / 4;
    Bytes picture;
    switch (mode.format) {
    case SPA_VIDEO_FORMAT_ENCODED:
        return jpeg(mode, left, right);
    case SPA_VIDEO_FORMAT_YUY2:
        appendPlane(picture, mode.height, quarter, {a.y, a.u, a.y, a.v}, quarter,
                    {b.y, b.u, b.y, b.v});
        return picture;
    case SPA_VIDEO_FORMAT_UYVY:
        appendPlane(picture, mode.height, quarter, {a.u, a.y, a.v, a.y}, quarter,
                    {b.u, b.y, b.v, b.y});
        return picture;
    case SPA_VIDEO_FORMAT_NV12:
        appendPlane(picture, mode.height, half, {a.y}, half, {b.y});
        appendPlane(picture, mode.height / 2, quarter, {a.u, a.v}, quarter, {b.u, b.v});
        return picture;
    case SPA_VIDEO_FORMAT_I420:
        appendPlane(picture, mode.height, half, {a.y}, half, {b.y});
        appendPlane(picture, mode.height / 2, quarter, {a.u}, quarter, {b.u});
        appendPlane(picture, mode.height / 2, quarter, {a.v}, quarter, {b.v});
        return picture;
    default:
        return packed(mode, left, right,
                      mode.format == SPA_VIDEO_FORMAT_RGBx || mode.format == SPA_VIDEO_FORMAT_RGBA);
    }
}

} // namespace tavi::test
