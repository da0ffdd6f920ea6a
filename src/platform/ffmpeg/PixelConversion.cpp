#include "platform/ffmpeg/PixelConversion.h"

extern "C" {
#include <libavutil/pixdesc.h>
}

#include <array>

namespace tavi {

namespace {

/// Exact rounding, and colour at full width: a screen's thin coloured lines
/// must not lose to speed.
constexpr int kQuality = SWS_BICUBIC | SWS_ACCURATE_RND | SWS_FULL_CHR_H_INT | SWS_FULL_CHR_H_INP;

constexpr int kNoChange = 1 << 16; ///< Contrast and saturation of 1, in 16.16.

/// From this many lines on an untagged picture counts as BT.709.
constexpr int kHighDefinitionLines = 720;

int matrixOf(const AVFrame& frame) {
    switch (frame.colorspace) {
    case AVCOL_SPC_BT709:
        return SWS_CS_ITU709;
    case AVCOL_SPC_BT470BG:
    case AVCOL_SPC_SMPTE170M:
        return SWS_CS_ITU601;
    case AVCOL_SPC_FCC:
        return SWS_CS_FCC;
    case AVCOL_SPC_SMPTE240M:
        return SWS_CS_SMPTE240M;
    case AVCOL_SPC_BT2020_NCL:
    case AVCOL_SPC_BT2020_CL:
        return SWS_CS_BT2020;
    default:
        return frame.height >= kHighDefinitionLines ? SWS_CS_ITU709 : SWS_CS_ITU601;
    }
}

/// The formats whose very name says "full range", under their plain names.
AVPixelFormat plainFormat(int format) {
    switch (format) {
    case AV_PIX_FMT_YUVJ420P:
        return AV_PIX_FMT_YUV420P;
    case AV_PIX_FMT_YUVJ422P:
        return AV_PIX_FMT_YUV422P;
    case AV_PIX_FMT_YUVJ444P:
        return AV_PIX_FMT_YUV444P;
    case AV_PIX_FMT_YUVJ440P:
        return AV_PIX_FMT_YUV440P;
    default:
        return static_cast<AVPixelFormat>(format);
    }
}

bool isFullRange(const AVFrame& frame) {
    return frame.color_range == AVCOL_RANGE_JPEG || plainFormat(frame.format) != frame.format;
}

/// Video is shown opaque, whatever the file says about alpha.
void makeOpaque(PixelBuffer& picture) {
    for (int y = 0; y < picture.height(); ++y) {
        std::uint8_t* row = picture.row(y);
        for (int x = 0; x < picture.width(); ++x) {
            row[x * PixelBuffer::kBytesPerPixel + 3] = 255;
        }
    }
}

bool hasAlpha(int format) {
    const AVPixFmtDescriptor* description = av_pix_fmt_desc_get(static_cast<AVPixelFormat>(format));
    return description && (description->flags & (AV_PIX_FMT_FLAG_ALPHA | AV_PIX_FMT_FLAG_PAL));
}

} // namespace

PictureDecoding::Kind PictureDecoding::kindOf(const AVFrame& from, const PixelBuffer& to) {
    return {from.width,  from.height,    plainFormat(from.format), to.width(),
            to.height(), matrixOf(from), tavi::isFullRange(from)};
}

bool PictureDecoding::prepare(const Kind& kind) {
    if (m_kind == kind) {
        return m_scaler != nullptr;
    }
    m_kind = kind;
    m_scaler.reset(sws_getContext(kind.width, kind.height, static_cast<AVPixelFormat>(kind.format),
                                  kind.toWidth, kind.toHeight, AV_PIX_FMT_BGRA, kQuality, nullptr,
                                  nullptr, nullptr));
    if (m_scaler) {
        sws_setColorspaceDetails(m_scaler.get(), sws_getCoefficients(kind.matrix), kind.isFullRange,
                                 sws_getCoefficients(SWS_CS_ITU709), 1, 0, kNoChange, kNoChange);
    }
    return m_scaler != nullptr;
}

bool PictureDecoding::convert(const AVFrame& from, PixelBuffer& to) {
    if (!prepare(kindOf(from, to))) {
        return false;
    }
    std::uint8_t* const planes[4] = {to.data(), nullptr, nullptr, nullptr};
    const int strides[4] = {static_cast<int>(to.stride()), 0, 0, 0};
    const int rows =
        sws_scale(m_scaler.get(), from.data, from.linesize, 0, from.height, planes, strides);
    if (rows != to.height()) {
        return false;
    }
    if (hasAlpha(from.format)) {
        makeOpaque(to);
    }
    return true;
}

bool PictureEncoding::convert(const PixelBuffer& from, AVFrame& to) {
    if (from.width() != to.width || from.height() != to.height) {
        return false;
    }
    if (!m_scaler) {
        m_scaler.reset(sws_getContext(to.width, to.height, AV_PIX_FMT_BGRA, to.width, to.height,
                                      static_cast<AVPixelFormat>(to.format),
                                      SWS_BILINEAR | SWS_ACCURATE_RND, nullptr, nullptr, nullptr));
        if (!m_scaler) {
            return false;
        }
        const int* matrix = sws_getCoefficients(SWS_CS_ITU709);
        sws_setColorspaceDetails(m_scaler.get(), matrix, 1, matrix, 0, 0, kNoChange, kNoChange);
    }
    const std::uint8_t* const planes[4] = {from.data(), nullptr, nullptr, nullptr};
    const int strides[4] = {static_cast<int>(from.stride()), 0, 0, 0};
    return sws_scale(m_scaler.get(), planes, strides, 0, from.height(), to.data, to.linesize) ==
           to.height;
}

} // namespace tavi
