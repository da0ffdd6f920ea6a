#include "platform/pipewire/CameraPicture.h"

#include <algorithm>
#include <array>
#include <memory>
#include <turbojpeg.h>
#include <vector>

namespace tavi {

namespace {

using Row = std::vector<std::uint8_t>;

/// How a format lies in memory: planes, and what a row of the first one takes.
struct Layout {
    std::ptrdiff_t stride = 0;
    std::ptrdiff_t chromaStride = 0;
    std::size_t bytes = 0; ///< Without which the picture is not whole.
};

bool isPlanar(spa_video_format format) {
    return format == SPA_VIDEO_FORMAT_NV12 || format == SPA_VIDEO_FORMAT_I420;
}

bool isPackedYuv(spa_video_format format) {
    return format == SPA_VIDEO_FORMAT_YUY2 || format == SPA_VIDEO_FORMAT_UYVY;
}

Layout layoutOf(const CameraPicture& picture) {
    const std::ptrdiff_t pairs = (picture.width + 1) / 2;
    std::ptrdiff_t row = std::ptrdiff_t{picture.width} * 4;
    if (isPlanar(picture.format)) {
        row = picture.width;
    } else if (isPackedYuv(picture.format)) {
        row = pairs * 4;
    }
    Layout layout;
    layout.stride = std::max(picture.stride, row);
    const auto height = static_cast<std::size_t>(picture.height);
    layout.bytes =
        static_cast<std::size_t>(layout.stride) * (height - 1) + static_cast<std::size_t>(row);
    if (isPlanar(picture.format)) {
        const bool isInterleaved = picture.format == SPA_VIDEO_FORMAT_NV12;
        const std::size_t planes = isInterleaved ? 1 : 2;
        layout.chromaStride = isInterleaved ? layout.stride : (layout.stride + 1) / 2;
        const std::ptrdiff_t chromaRow = isInterleaved ? 2 * pairs : pairs;
        layout.chromaStride = std::max(layout.chromaStride, chromaRow);
        layout.bytes =
            static_cast<std::size_t>(layout.stride) * height +
            static_cast<std::size_t>(layout.chromaStride) * ((height + 1) / 2 * planes - 1) +
            static_cast<std::size_t>(chromaRow);
    }
    return layout;
}

/// One row as its three samples a pixel.
struct YuvRow {
    explicit YuvRow(int width) : y(static_cast<std::size_t>(width) + 1), u(y.size()), v(y.size()) {}
    Row y, u, v;
};

/// `order`: the places of the first and second brightness and of both colours in four bytes.
void unpack(const std::uint8_t* from, std::array<int, 4> order, int width, YuvRow& row) {
    for (int x = 0; x < width; x += 2, from += 4) {
        const auto i = static_cast<std::size_t>(x);
        row.y[i] = from[order[0]];
        row.y[i + 1] = from[order[1]];
        row.u[i] = row.u[i + 1] = from[order[2]];
        row.v[i] = row.v[i + 1] = from[order[3]];
    }
}

void unpackPlanar(const CameraPicture& picture, const Layout& layout, int y, int width,
                  YuvRow& row) {
    const std::uint8_t* const first = picture.bytes.data();
    std::copy_n(first + layout.stride * y, width, row.y.begin());
    const std::uint8_t* chroma = first + layout.stride * picture.height;
    const std::ptrdiff_t plane = layout.chromaStride * ((picture.height + 1) / 2);
    const std::ptrdiff_t offset = layout.chromaStride * (y / 2);
    const bool isInterleaved = picture.format == SPA_VIDEO_FORMAT_NV12;
    for (int x = 0; x < width; ++x) {
        const std::ptrdiff_t pair = x / 2;
        const auto i = static_cast<std::size_t>(x);
        row.u[i] = chroma[offset + (isInterleaved ? 2 * pair : pair)];
        row.v[i] = chroma[offset + (isInterleaved ? 2 * pair + 1 : plane + pair)];
    }
}

/// Weights of BT.601 or BT.709 in 1/65536, for samples of a range.
struct Weights {
    int black, y, redV, greenU, greenV, blueU;
};

Weights weightsOf(YuvMatrix matrix, YuvRange range) {
    const double red = matrix == YuvMatrix::bt601 ? 0.299 : 0.2126;
    const double blue = matrix == YuvMatrix::bt601 ? 0.114 : 0.0722;
    const double green = 1 - red - blue;
    const bool isLimited = range == YuvRange::limited;
    const double light = isLimited ? 255.0 / 219 : 1;
    const double colour = isLimited ? 255.0 / 224 : 1;
    const auto fixed = [](double weight) { return static_cast<int>(weight * 65536 + 0.5); };
    return {isLimited ? 16 : 0,
            fixed(light),
            fixed(2 * (1 - red) * colour),
            fixed(2 * (1 - blue) * blue / green * colour),
            fixed(2 * (1 - red) * red / green * colour),
            fixed(2 * (1 - blue) * colour)};
}

std::uint8_t byteOf(int fixed) {
    return static_cast<std::uint8_t>(std::clamp((fixed + 32768) >> 16, 0, 255));
}

void convert(const YuvRow& row, const Weights& weights, int width, std::uint8_t* to) {
    for (int x = 0; x < width; ++x, to += 4) {
        const auto i = static_cast<std::size_t>(x);
        const int light = (row.y[i] - weights.black) * weights.y;
        const int u = row.u[i] - 128;
        const int v = row.v[i] - 128;
        to[0] = byteOf(light + weights.blueU * u);
        to[1] = byteOf(light - weights.greenU * u - weights.greenV * v);
        to[2] = byteOf(light + weights.redV * v);
        to[3] = 255;
    }
}

void readYuv(const CameraPicture& picture, const Layout& layout, PixelBuffer& to) {
    const Weights weights = weightsOf(picture.matrix, picture.range);
    YuvRow row(picture.width);
    for (int y = 0; y < to.height(); ++y) {
        const std::uint8_t* const from = picture.bytes.data() + layout.stride * y;
        if (isPlanar(picture.format)) {
            unpackPlanar(picture, layout, y, to.width(), row);
        } else if (picture.format == SPA_VIDEO_FORMAT_YUY2) {
            unpack(from, {0, 2, 1, 3}, to.width(), row);
        } else {
            unpack(from, {1, 3, 0, 2}, to.width(), row);
        }
        convert(row, weights, to.width(), to.row(y));
    }
}

void readRgb(const CameraPicture& picture, const Layout& layout, PixelBuffer& to) {
    const bool isRedFirst =
        picture.format == SPA_VIDEO_FORMAT_RGBx || picture.format == SPA_VIDEO_FORMAT_RGBA;
    for (int y = 0; y < to.height(); ++y) {
        const std::uint8_t* from = picture.bytes.data() + layout.stride * y;
        std::uint8_t* out = to.row(y);
        for (int x = 0; x < to.width(); ++x, from += 4, out += 4) {
            out[0] = from[isRedFirst ? 2 : 0];
            out[1] = from[1];
            out[2] = from[isRedFirst ? 0 : 2];
            out[3] = 255;
        }
    }
}

bool readJpeg(const CameraPicture& picture, PixelBuffer& to) {
    struct End {
        void operator()(void* handle) const { tjDestroy(handle); }
    };
    const std::unique_ptr<void, End> decoder(tjInitDecompress());
    int width = 0;
    int height = 0;
    int sampling = 0;
    int space = 0;
    const auto size = static_cast<unsigned long>(picture.bytes.size());
    if (!decoder ||
        tjDecompressHeader3(decoder.get(), picture.bytes.data(), size, &width, &height, &sampling,
                            &space) != 0 ||
        width != picture.width || height != picture.height) {
        return false;
    }
    // An odd size has a row or a column more than is wanted.
    PixelBuffer whole;
    const bool isWhole = width == to.width() && height == to.height();
    if (!isWhole) {
        whole = PixelBuffer(width, height);
    }
    PixelBuffer& into = isWhole ? to : whole;
    if (tjDecompress2(decoder.get(), picture.bytes.data(), size, into.data(), width,
                      static_cast<int>(into.stride()), height, TJPF_BGRA, 0) != 0 &&
        tjGetErrorCode(decoder.get()) != TJERR_WARNING) {
        return false;
    }
    for (int y = 0; !isWhole && y < to.height(); ++y) {
        std::copy_n(whole.row(y), to.width() * PixelBuffer::kBytesPerPixel, to.row(y));
    }
    return true;
}

void mirror(PixelBuffer& picture) {
    for (int y = 0; y < picture.height(); ++y) {
        auto* pixels = reinterpret_cast<std::uint32_t*>(picture.row(y));
        std::reverse(pixels, pixels + picture.width());
    }
}

} // namespace

bool readCameraPicture(const CameraPicture& picture, Mirroring mirroring, PixelBuffer& to) {
    if (to.empty() || to.width() > picture.width || to.height() > picture.height) {
        return false;
    }
    if (picture.format == SPA_VIDEO_FORMAT_ENCODED) {
        if (!readJpeg(picture, to)) {
            return false;
        }
    } else {
        const Layout layout = layoutOf(picture);
        if (picture.bytes.size() < layout.bytes) {
            return false;
        }
        if (isPlanar(picture.format) || isPackedYuv(picture.format)) {
            readYuv(picture, layout, to);
        } else {
            readRgb(picture, layout, to);
        }
    }
    if (mirroring == Mirroring::on) {
        mirror(to);
    }
    return true;
}

} // namespace tavi
