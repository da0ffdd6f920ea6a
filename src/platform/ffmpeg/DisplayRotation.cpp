#include "platform/ffmpeg/DisplayRotation.h"

extern "C" {
#include <libavutil/display.h>
}

#include <cstdint>
#include <cstring>

namespace tavi {

namespace {

const std::int32_t* displayMatrix(const AVStream& stream) {
#if LIBAVCODEC_VERSION_INT >= AV_VERSION_INT(60, 31, 100)
    const AVPacketSideData* data =
        av_packet_side_data_get(stream.codecpar->coded_side_data,
                                stream.codecpar->nb_coded_side_data, AV_PKT_DATA_DISPLAYMATRIX);
    return data ? reinterpret_cast<const std::int32_t*>(data->data) : nullptr;
#else
    return reinterpret_cast<const std::int32_t*>(
        av_stream_get_side_data(&stream, AV_PKT_DATA_DISPLAYMATRIX, nullptr));
#endif
}

/// -1, 0 or 1 of a 16.16 number.
int unit(std::int32_t fixed) {
    constexpr std::int32_t kHalf = 1 << 15;
    return fixed > kHalf ? 1 : fixed < -kHalf ? -1 : 0;
}

} // namespace

DisplayRotation rotationOf(const AVStream& stream) {
    const std::int32_t* matrix = displayMatrix(stream);
    if (!matrix) {
        return {};
    }
    const DisplayRotation rotation{unit(matrix[0]), unit(matrix[1]), unit(matrix[3]),
                                   unit(matrix[4])};
    const bool isUpright = rotation.a != 0 && rotation.d != 0 && rotation.b == 0 && rotation.c == 0;
    const bool isTurned = rotation.a == 0 && rotation.d == 0 && rotation.b != 0 && rotation.c != 0;
    return isUpright || isTurned ? rotation : DisplayRotation{};
}

PixelBuffer DisplayRotation::apply(PixelBuffer image) const {
    if (*this == DisplayRotation{}) {
        return image;
    }
    const int width = image.width();
    const int height = image.height();
    PixelBuffer turned(swapsSides() ? height : width, swapsSides() ? width : height);
    const int originX = (a < 0 ? width - 1 : 0) + (c < 0 ? height - 1 : 0);
    const int originY = (b < 0 ? width - 1 : 0) + (d < 0 ? height - 1 : 0);
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            const int toX = originX + a * x + c * y;
            const int toY = originY + b * x + d * y;
            const auto pixelBytes = static_cast<std::ptrdiff_t>(PixelBuffer::kBytesPerPixel);
            std::memcpy(turned.row(toY) + toX * pixelBytes, image.row(y) + x * pixelBytes,
                        PixelBuffer::kBytesPerPixel);
        }
    }
    return turned;
}

} // namespace tavi
