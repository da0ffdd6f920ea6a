#include "platform/ffmpeg/PixelConversion.h"

#include "platform/ffmpeg/AlphaPlane.h"

extern "C" {
#include <libavutil/opt.h>
#include <libavutil/pixdesc.h>
}

#include <utility>

namespace tavi {

namespace {

/// Exact rounding, and colour at full width: a screen's thin coloured lines
/// must not lose to speed.
constexpr int kQuality = SWS_BILINEAR | SWS_ACCURATE_RND | SWS_FULL_CHR_H_INT;

constexpr int kNoChange = 1 << 16; ///< Contrast and saturation of 1, in 16.16.

/// From this many lines on an untagged picture counts as BT.709.
constexpr int kHighDefinitionLines = 720;

/// Where a colour sample lies between the brightness samples that share it, in
/// 1/256 of a brightness sample's distance (the scaler's unit).
struct ChromaPosition {
    int x = 0;   ///< H.264 and HEVC, unless they say otherwise: on the left one,
    int y = 128; ///< half way down.

    bool operator==(const ChromaPosition&) const = default;
};

ChromaPosition chromaPosition(AVChromaLocation location) {
    switch (location) {
    case AVCHROMA_LOC_CENTER:
        return {128, 128};
    case AVCHROMA_LOC_TOPLEFT:
        return {0, 0};
    case AVCHROMA_LOC_TOP:
        return {128, 0};
    default:
        return {};
    }
}

struct Side {
    int width = 0;
    int height = 0;
    AVPixelFormat format = AV_PIX_FMT_NONE;
    int matrix = SWS_CS_ITU709;
    bool isFullRange = true;
};

/// A scaler between BGRA and something else; `chroma` is that of the latter.
/// Null where the library has no way.
ScalerHandle makeScaler(const Side& from, const Side& to, ChromaPosition chroma) {
    ScalerHandle scaler(sws_alloc_context());
    av_opt_set_int(scaler.get(), "srcw", from.width, 0);
    av_opt_set_int(scaler.get(), "srch", from.height, 0);
    av_opt_set_int(scaler.get(), "src_format", from.format, 0);
    av_opt_set_int(scaler.get(), "dstw", to.width, 0);
    av_opt_set_int(scaler.get(), "dsth", to.height, 0);
    av_opt_set_int(scaler.get(), "dst_format", to.format, 0);
    av_opt_set_int(scaler.get(), "sws_flags", kQuality, 0);
    const bool isDecoding = to.format == AV_PIX_FMT_BGRA;
    int columns = 0;
    int rows = 0; // Log2 of the brightness samples that share a colour sample.
    av_pix_fmt_get_chroma_sub_sample(isDecoding ? from.format : to.format, &columns, &rows);
    if (columns == 1) {
        av_opt_set_int(scaler.get(), isDecoding ? "src_h_chr_pos" : "dst_h_chr_pos", chroma.x, 0);
    }
    if (rows == 1) {
        av_opt_set_int(scaler.get(), isDecoding ? "src_v_chr_pos" : "dst_v_chr_pos", chroma.y, 0);
    }
    sws_setColorspaceDetails(scaler.get(), sws_getCoefficients(from.matrix), from.isFullRange,
                             sws_getCoefficients(to.matrix), to.isFullRange, 0, kNoChange,
                             kNoChange);
    return sws_init_context(scaler.get(), nullptr, nullptr) < 0 ? nullptr : std::move(scaler);
}

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

/// Video of others is shown opaque, whatever the file says about alpha.
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

std::optional<YuvMatrix> knownMatrix(const AVFrame& frame) {
    switch (matrixOf(frame)) {
    case SWS_CS_ITU709:
        return YuvMatrix::bt709;
    case SWS_CS_ITU601:
        return YuvMatrix::bt601;
    default:
        return std::nullopt;
    }
}

std::optional<ChromaSiting> knownSiting(AVChromaLocation location) {
    switch (location) {
    case AVCHROMA_LOC_UNSPECIFIED:
    case AVCHROMA_LOC_LEFT:
        return ChromaSiting::left;
    case AVCHROMA_LOC_CENTER:
        return ChromaSiting::centre;
    case AVCHROMA_LOC_TOPLEFT:
        return ChromaSiting::topLeft;
    default:
        return std::nullopt;
    }
}

/// The frame's samples for a ColorConverter; absent where it is of a kind that none knows.
template<class View>
std::optional<View> viewOf(const AVFrame& frame) {
    const AVPixelFormat format = plainFormat(frame.format);
    const auto matrix = knownMatrix(frame);
    const auto siting = knownSiting(frame.chroma_location);
    const bool isPlanar = format == AV_PIX_FMT_YUV420P || format == AV_PIX_FMT_YUVA420P;
    if ((!isPlanar && format != AV_PIX_FMT_NV12) || !matrix || !siting) {
        return std::nullopt;
    }
    View view;
    view.width = frame.width;
    view.height = frame.height;
    view.y = {frame.data[0], frame.linesize[0]};
    view.u = {frame.data[1], frame.linesize[1]};
    view.v = {frame.data[2], frame.linesize[2]};
    view.isInterleaved = format == AV_PIX_FMT_NV12;
    view.encoding = {*matrix, isFullRange(frame) ? YuvRange::full : YuvRange::limited, *siting};
    return view;
}

} // namespace

PictureDecoding::Kind PictureDecoding::kindOf(const AVFrame& from, const PixelBuffer& to) {
    return {from.width,  from.height,    plainFormat(from.format), to.width(),
            to.height(), matrixOf(from), from.chroma_location,     tavi::isFullRange(from)};
}

bool PictureDecoding::prepare(const Kind& kind) {
    if (m_kind != kind) {
        m_kind = kind;
        const auto format = static_cast<AVPixelFormat>(kind.format);
        m_scaler = makeScaler({kind.width, kind.height, format, kind.matrix, kind.isFullRange},
                              {kind.toWidth, kind.toHeight, AV_PIX_FMT_BGRA},
                              chromaPosition(static_cast<AVChromaLocation>(kind.chroma)));
    }
    return m_scaler != nullptr;
}

bool PictureDecoding::convert(const AVFrame& from, PixelBuffer& to) {
    const bool isOfSize = from.width == to.width() && from.height == to.height();
    const auto view = m_colours && isOfSize ? viewOf<ConstYuvView>(from) : std::nullopt;
    if (!view) {
        return scale(from, to);
    }
    m_colours->toBgra(*view, to);
    if (hasJoinedAlpha(from)) {
        takeAlpha(from, to);
    }
    return true;
}

bool PictureDecoding::scale(const AVFrame& from, PixelBuffer& to) {
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
    if (hasJoinedAlpha(from)) {
        settleAlpha(to);
    } else if (hasAlpha(from.format)) {
        makeOpaque(to);
    }
    return true;
}

bool PictureEncoding::convert(const PixelBuffer& from, AVFrame& to) {
    if (from.width() != to.width || from.height() != to.height) {
        return false;
    }
    auto view = m_colours ? viewOf<YuvView>(to) : std::nullopt;
    if (!view) {
        return scale(from, to);
    }
    view->encoding = {YuvMatrix::bt709, YuvRange::limited, ChromaSiting::left};
    m_colours->fromBgra(from, *view);
    return true;
}

bool PictureEncoding::scale(const PixelBuffer& from, AVFrame& to) {
    if (!m_scaler) {
        const auto format = static_cast<AVPixelFormat>(to.format);
        m_scaler = makeScaler({from.width(), from.height(), AV_PIX_FMT_BGRA},
                              {to.width, to.height, format, SWS_CS_ITU709, false}, {});
    }
    if (!m_scaler) {
        return false;
    }
    const std::uint8_t* const planes[4] = {from.data(), nullptr, nullptr, nullptr};
    const int strides[4] = {static_cast<int>(from.stride()), 0, 0, 0};
    return sws_scale(m_scaler.get(), planes, strides, 0, from.height(), to.data, to.linesize) ==
           to.height;
}

} // namespace tavi
