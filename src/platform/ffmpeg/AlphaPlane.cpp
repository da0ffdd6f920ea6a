#include "platform/ffmpeg/AlphaPlane.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <string_view>

namespace tavi {

namespace {

constexpr int kAlphaPlane = 3;

/// Of both colour samples of a picture without colour.
constexpr int kNeutral = 128;

/// How far coding leads alpha astray where it is plain: the finest quantizer of a recording has
/// steps of 2.5. What is further inside is real.
constexpr std::uint8_t kNearlyNone = 2;
constexpr std::uint8_t kNearlyAll = 253;

/// Marks frames of joinAlpha() in a field that the libraries leave to programs.
const int kJoined = 0;

bool isCalledAlpha(const AVStream& stream) {
    const AVDictionaryEntry* name = av_dict_get(stream.metadata, "handler_name", nullptr, 0);
    return name && std::string_view(name->value) == kAlphaTrackName;
}

bool isPlanar(const AVFrame& frame) {
    return frame.format == AV_PIX_FMT_YUV420P || frame.format == AV_PIX_FMT_YUVJ420P;
}

bool hasBrightnessPlane(const AVFrame& frame) {
    return isPlanar(frame) || frame.format == AV_PIX_FMT_NV12 || frame.format == AV_PIX_FMT_GRAY8;
}

void fillRows(std::uint8_t* plane, int stride, int bytes, int rows) {
    for (int y = 0; y < rows; ++y) {
        std::memset(plane + static_cast<std::ptrdiff_t>(stride) * y, kNeutral,
                    static_cast<std::size_t>(bytes));
    }
}

std::uint8_t settled(std::uint8_t alpha) {
    if (alpha <= kNearlyNone) {
        return 0;
    }
    return alpha >= kNearlyAll ? std::uint8_t{255} : alpha;
}

} // namespace

bool isPicture(const AVStream& stream) {
    return stream.codecpar->codec_type == AVMEDIA_TYPE_VIDEO &&
           !(stream.disposition & AV_DISPOSITION_ATTACHED_PIC);
}

std::optional<int> firstPictureTrack(const AVFormatContext& input) {
    for (unsigned i = 0; i < input.nb_streams; ++i) {
        if (isPicture(*input.streams[i])) {
            return static_cast<int>(i);
        }
    }
    return std::nullopt;
}

std::optional<int> alphaTrackOf(const AVFormatContext& input) {
    const auto first = firstPictureTrack(input);
    for (int i = first.value_or(0) + 1; first && i < static_cast<int>(input.nb_streams); ++i) {
        const AVStream& stream = *input.streams[i];
        const AVCodecParameters& colours = *input.streams[*first]->codecpar;
        if (isPicture(stream) && isCalledAlpha(stream) && stream.codecpar->width == colours.width &&
            stream.codecpar->height == colours.height) {
            return i;
        }
    }
    return std::nullopt;
}

void fillAlphaPicture(const PixelBuffer& from, AVFrame& to) {
    for (int y = 0; y < from.height(); ++y) {
        const std::uint8_t* in = from.row(y) + kAlphaPlane;
        std::uint8_t* out = to.data[0] + static_cast<std::ptrdiff_t>(to.linesize[0]) * y;
        for (int x = 0; x < from.width(); ++x, in += PixelBuffer::kBytesPerPixel) {
            out[x] = *in;
        }
    }
    const int columns = (to.width + 1) / 2;
    const int rows = (to.height + 1) / 2;
    if (to.format == AV_PIX_FMT_NV12) {
        fillRows(to.data[1], to.linesize[1], 2 * columns, rows);
    } else {
        fillRows(to.data[1], to.linesize[1], columns, rows);
        fillRows(to.data[2], to.linesize[2], columns, rows);
    }
}

bool isSameAlpha(const AVFrame& a, const AVFrame& b) {
    for (int y = 0; y < a.height; ++y) {
        if (std::memcmp(a.data[0] + static_cast<std::ptrdiff_t>(a.linesize[0]) * y,
                        b.data[0] + static_cast<std::ptrdiff_t>(b.linesize[0]) * y,
                        static_cast<std::size_t>(a.width)) != 0) {
            return false;
        }
    }
    return true;
}

bool joinAlpha(AVFrame& colours, const AVFrame& alpha) {
    auto* const end = std::end(colours.buf);
    auto* const place = std::find(std::begin(colours.buf), end, nullptr);
    if (!isPlanar(colours) || !hasBrightnessPlane(alpha) || colours.width != alpha.width ||
        colours.height != alpha.height || place == end) {
        return false;
    }
    *place = av_buffer_ref(alpha.buf[0]);
    if (!*place) {
        return false;
    }
    colours.data[kAlphaPlane] = alpha.data[0];
    colours.linesize[kAlphaPlane] = alpha.linesize[0];
    colours.format = AV_PIX_FMT_YUVA420P;
    colours.opaque = const_cast<int*>(&kJoined);
    return true;
}

bool hasJoinedAlpha(const AVFrame& frame) {
    return frame.format == AV_PIX_FMT_YUVA420P && frame.opaque == &kJoined;
}

void takeAlpha(const AVFrame& from, PixelBuffer& to) {
    for (int y = 0; y < to.height(); ++y) {
        const std::uint8_t* in =
            from.data[kAlphaPlane] + static_cast<std::ptrdiff_t>(from.linesize[kAlphaPlane]) * y;
        std::uint8_t* out = to.row(y) + kAlphaPlane;
        for (int x = 0; x < to.width(); ++x, out += PixelBuffer::kBytesPerPixel) {
            *out = in[x];
        }
    }
    settleAlpha(to);
}

void settleAlpha(PixelBuffer& picture) {
    for (int y = 0; y < picture.height(); ++y) {
        std::uint8_t* pixel = picture.row(y);
        for (int x = 0; x < picture.width(); ++x, pixel += PixelBuffer::kBytesPerPixel) {
            const std::uint8_t alpha = settled(pixel[kAlphaPlane]);
            for (int i = 0; i < kAlphaPlane; ++i) {
                pixel[i] = std::min(pixel[i], alpha);
            }
            pixel[kAlphaPlane] = alpha;
        }
    }
}

} // namespace tavi
