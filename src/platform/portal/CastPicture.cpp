#include "platform/portal/CastPicture.h"

#include "capture/PictureEdges.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <utility>

namespace tavi {

namespace {

constexpr std::ptrdiff_t kPixel = PixelBuffer::kBytesPerPixel;

bool hasRedFirst(spa_video_format format) {
    return format == SPA_VIDEO_FORMAT_RGBx || format == SPA_VIDEO_FORMAT_RGBA;
}

bool isPacked(spa_video_format format) {
    return hasRedFirst(format) || format == SPA_VIDEO_FORMAT_BGRx ||
           format == SPA_VIDEO_FORMAT_BGRA;
}

bool isSideways(spa_meta_videotransform_value transform) {
    return transform == SPA_META_TRANSFORMATION_90 || transform == SPA_META_TRANSFORMATION_270 ||
           transform == SPA_META_TRANSFORMATION_Flipped90 ||
           transform == SPA_META_TRANSFORMATION_Flipped270;
}

/// A plane of `height` rows in memory, whichever way round it lies.
struct Plane {
    const std::uint8_t* top = nullptr; ///< Null where bytes are missing.
    std::ptrdiff_t stride = 0;
};

Plane planeOf(std::span<const std::uint8_t> bytes, std::ptrdiff_t stride, std::ptrdiff_t rowBytes,
              int height) {
    const std::ptrdiff_t step = stride == 0 ? rowBytes : stride;
    const std::ptrdiff_t length = std::abs(step);
    const std::ptrdiff_t rowsAbove = length * (height - 1);
    if (length < rowBytes || std::cmp_less(bytes.size(), rowsAbove + rowBytes)) {
        return {};
    }
    return {bytes.data() + (step < 0 ? rowsAbove : 0), step};
}

/// The way over the pixels of a buffer that gives what is shown, top row first.
struct Walk {
    std::ptrdiff_t start = 0; ///< Byte of the first pixel.
    std::ptrdiff_t right = 0; ///< Bytes from a pixel to the one at its right.
    std::ptrdiff_t down = 0;
};

Walk walkOver(const CastArea& crop, std::ptrdiff_t stride,
              spa_meta_videotransform_value transform) {
    const auto at = [&](int x, int y) { return (crop.y + y) * stride + (crop.x + x) * kPixel; };
    const int right = crop.width - 1;
    const int bottom = crop.height - 1;
    switch (transform) {
    case SPA_META_TRANSFORMATION_90:
        return {at(0, bottom), -stride, kPixel};
    case SPA_META_TRANSFORMATION_180:
        return {at(right, bottom), -kPixel, -stride};
    case SPA_META_TRANSFORMATION_270:
        return {at(right, 0), stride, -kPixel};
    case SPA_META_TRANSFORMATION_Flipped:
        return {at(right, 0), -kPixel, stride};
    case SPA_META_TRANSFORMATION_Flipped90:
        return {at(0, 0), stride, kPixel};
    case SPA_META_TRANSFORMATION_Flipped180:
        return {at(0, bottom), kPixel, -stride};
    case SPA_META_TRANSFORMATION_Flipped270:
        return {at(right, bottom), -stride, -kPixel};
    case SPA_META_TRANSFORMATION_None:
        break;
    }
    return {at(0, 0), kPixel, stride};
}

std::uint32_t pixelAt(const std::uint8_t* from) {
    std::uint32_t pixel = 0;
    std::memcpy(&pixel, from, sizeof pixel);
    return pixel;
}

std::uint32_t withBlueFirst(std::uint32_t pixel) {
    return (pixel & 0xFF00FF00U) | (pixel & 0xFFU) << 16 | (pixel >> 16 & 0xFFU);
}

void drawRow(const std::uint8_t* from, std::ptrdiff_t step, bool isRedFirst, std::uint32_t* to,
             int count) {
    if (step == kPixel && !isRedFirst) {
        std::memcpy(to, from, static_cast<std::size_t>(count) * kPixel);
    } else if (step == kPixel) {
        for (int x = 0; x < count; ++x) {
            to[x] = withBlueFirst(pixelAt(from + x * kPixel));
        }
    } else {
        for (int x = 0; x < count; ++x) {
            const std::uint32_t pixel = pixelAt(from + x * step);
            to[x] = isRedFirst ? withBlueFirst(pixel) : pixel;
        }
    }
}

bool drawPacked(const CastPicture& picture, PixelBuffer& to) {
    const Plane plane =
        planeOf(picture.bytes, picture.stride, picture.width * kPixel, picture.height);
    if (plane.top == nullptr) {
        return false;
    }
    const CastArea shown = shownArea(picture);
    const int width = std::min(shown.width, to.width());
    const int height = std::min(shown.height, to.height());
    const Walk walk = walkOver(picture.crop, plane.stride, picture.transform);
    for (int y = 0; y < height; ++y) {
        drawRow(plane.top + walk.start + y * walk.down, walk.right, hasRedFirst(picture.format),
                reinterpret_cast<std::uint32_t*>(to.row(y)), width);
    }
    repeatEdges(to, width, height);
    return true;
}

bool drawNv12(const CastPicture& picture, const ColorConverter& colours, PixelBuffer& to) {
    const std::ptrdiff_t chromaRow = (picture.width + 1) / 2 * 2;
    const int chromaHeight = (picture.height + 1) / 2;
    const std::ptrdiff_t stride = picture.stride == 0 ? picture.width : picture.stride;
    const Plane luma = planeOf(picture.bytes, stride, picture.width, picture.height);
    const auto behind = static_cast<std::size_t>(std::abs(stride) * picture.height);
    const bool isOnePlane = picture.chroma.empty() && picture.bytes.size() > behind;
    const Plane chroma =
        isOnePlane ? planeOf(picture.bytes.subspan(behind), stride, chromaRow, chromaHeight)
                   : planeOf(picture.chroma, picture.chromaStride, chromaRow, chromaHeight);
    if (luma.top == nullptr || chroma.top == nullptr) {
        return false;
    }
    ConstYuvView view;
    view.width = picture.width;
    view.height = picture.height;
    view.y = {luma.top, luma.stride};
    view.u = {chroma.top, chroma.stride};
    view.isInterleaved = true;
    view.encoding = picture.encoding;
    PixelBuffer whole(picture.width, picture.height);
    colours.toBgra(view, whole);
    CastPicture packed = picture;
    packed.format = SPA_VIDEO_FORMAT_BGRx;
    packed.stride = static_cast<std::ptrdiff_t>(whole.stride());
    packed.bytes = {whole.data(), PixelBuffer::bytesFor(whole.width(), whole.height())};
    return drawPacked(packed, to);
}

} // namespace

CastArea shownArea(const CastPicture& picture) {
    const CastArea& crop = picture.crop;
    return isSideways(picture.transform) ? CastArea{0, 0, crop.height, crop.width}
                                         : CastArea{0, 0, crop.width, crop.height};
}

CastPoint shownPoint(const CastPicture& picture, CastPoint point) {
    const int x = point.x - picture.crop.x;
    const int y = point.y - picture.crop.y;
    const int right = picture.crop.width - 1;
    const int bottom = picture.crop.height - 1;
    switch (picture.transform) {
    case SPA_META_TRANSFORMATION_90:
        return {bottom - y, x};
    case SPA_META_TRANSFORMATION_180:
        return {right - x, bottom - y};
    case SPA_META_TRANSFORMATION_270:
        return {y, right - x};
    case SPA_META_TRANSFORMATION_Flipped:
        return {right - x, y};
    case SPA_META_TRANSFORMATION_Flipped90:
        return {y, x};
    case SPA_META_TRANSFORMATION_Flipped180:
        return {x, bottom - y};
    case SPA_META_TRANSFORMATION_Flipped270:
        return {bottom - y, right - x};
    case SPA_META_TRANSFORMATION_None:
        break;
    }
    return {x, y};
}

const std::uint8_t* asPixelBuffer(const CastPicture& picture, int width, int height) {
    const bool isPlain =
        (picture.format == SPA_VIDEO_FORMAT_BGRx || picture.format == SPA_VIDEO_FORMAT_BGRA) &&
        picture.transform == SPA_META_TRANSFORMATION_None && picture.crop.width == width &&
        picture.crop.height == height;
    const auto stride = static_cast<std::ptrdiff_t>(PixelBuffer::strideFor(width));
    if (!isPlain || picture.stride != stride) {
        return nullptr;
    }
    const std::ptrdiff_t start = picture.crop.y * stride + picture.crop.x * kPixel;
    const std::uint8_t* first = picture.bytes.data() + start;
    const bool isAligned = reinterpret_cast<std::uintptr_t>(first) % PixelBuffer::kAlignment == 0;
    const bool isWhole = picture.bytes.size() >=
                         static_cast<std::size_t>(start) + PixelBuffer::bytesFor(width, height);
    return isAligned && isWhole ? first : nullptr;
}

bool drawCastPicture(const CastPicture& picture, const ColorConverter* colours, PixelBuffer& to) {
    if (to.empty() || picture.crop.width <= 0 || picture.crop.height <= 0) {
        return false;
    }
    if (isPacked(picture.format)) {
        return drawPacked(picture, to);
    }
    return picture.format == SPA_VIDEO_FORMAT_NV12 && colours != nullptr &&
           drawNv12(picture, *colours, to);
}

} // namespace tavi
