#include "platform/ffmpeg/VideoEncoder.h"

#include "platform/ffmpeg/AlphaPlane.h"
#include "platform/ffmpeg/FfmpegErrors.h"

extern "C" {
#include <libavutil/hwcontext.h>
#include <libavutil/imgutils.h>
}

#include <algorithm>
#include <cassert>
#include <cerrno>
#include <filesystem>
#include <utility>

namespace tavi {

namespace {

/// Surfaces in flight inside a hardware encoder.
constexpr int kSurfaces = 8;

/// Bytes that rows of pictures are aligned to, as the vectors of all parties like it.
constexpr int kAlignment = 64;

/// libx265's rate factor of alpha: errors are seen over a whole background, and most of it is
/// plain.
constexpr std::int64_t kAlphaQuality = 10;

/// Pictures that one may come late by where B pictures refer to each other.
constexpr int kMostReordering = 2;

/// The first graphics device that can compute without a display; empty when
/// the machine has none.
std::string renderNode() {
    std::error_code failure;
    for (const auto& entry : std::filesystem::directory_iterator("/dev/dri", failure)) {
        if (entry.path().filename().string().starts_with("renderD")) {
            return entry.path().string();
        }
    }
    return {};
}

bool needsRenderNode(const EncoderKind& kind) {
    return kind.device == AV_HWDEVICE_TYPE_VAAPI || std::string_view(kind.name).ends_with("_qsv");
}

} // namespace

VideoEncoder::VideoEncoder(const EncoderKind& kind, std::shared_ptr<const ColorConverter> colours,
                           PictureContent content)
    : m_kind(kind),
      m_content(content),
      m_conversion(std::move(colours)) {}

Result<std::unique_ptr<VideoEncoder>, std::string>
VideoEncoder::open(const EncoderKind& kind, const VideoSettings& settings, int timescale,
                   std::shared_ptr<const ColorConverter> colours, PictureContent content) {
    assert(settings.width % 2 == 0 && settings.height % 2 == 0);
    silenceFfmpegLog();
    if (!avcodec_find_encoder_by_name(kind.name)) {
        return fail(std::string("not in this build of the media libraries"));
    }
    if (needsRenderNode(kind) && renderNode().empty()) {
        return fail(std::string("no graphics device in /dev/dri"));
    }
    std::unique_ptr<VideoEncoder> encoder(new VideoEncoder(kind, std::move(colours), content));
    if (const int code = encoder->openCodec(settings, timescale); code < 0) {
        return fail(ffmpegReason(code));
    }
    return encoder;
}

int VideoEncoder::openCodec(const VideoSettings& settings, int timescale) {
    const AVCodec* codec = avcodec_find_encoder_by_name(m_kind.name);
    m_codec.reset(avcodec_alloc_context3(codec));
    Options options;
    configureEncoder(*m_codec, options, m_kind, settings, timescale);
    if (m_content == PictureContent::alpha) {
        m_codec->color_range = AVCOL_RANGE_JPEG;
        options.set("crf", kAlphaQuality); // Only libx265 looks at it.
    }
    if (m_kind.device != AV_HWDEVICE_TYPE_NONE) {
        if (const int code = openDevice(); code < 0) {
            return code;
        }
    }
    const int code = avcodec_open2(m_codec.get(), codec, options.address());
    if (settings.realTime) {
        m_keyFrames.emplace(settings.width, settings.height);
    }
    m_interval = timescale / std::max(settings.expectedFrameRate, 1);
    m_reordering = m_codec->max_b_frames > 0 ? std::max(m_codec->has_b_frames, kMostReordering) : 0;
    return code;
}

/// Makes the device and the surfaces that pictures are uploaded to.
int VideoEncoder::openDevice() {
    AVBufferRef* device = nullptr;
    const int code =
        av_hwdevice_ctx_create(&device, m_kind.device, renderNode().c_str(), nullptr, 0);
    if (code < 0) {
        return code;
    }
    m_device.reset(device);
    BufferHandle frames(av_hwframe_ctx_alloc(device));
    if (!frames) {
        return AVERROR(ENOMEM);
    }
    auto* surfaces = reinterpret_cast<AVHWFramesContext*>(frames->data);
    surfaces->format = AV_PIX_FMT_VAAPI;
    surfaces->sw_format = m_kind.input;
    surfaces->width = m_codec->width;
    surfaces->height = m_codec->height;
    surfaces->initial_pool_size = kSurfaces;
    if (const int initialised = av_hwframe_ctx_init(frames.get()); initialised < 0) {
        return initialised;
    }
    m_codec->pix_fmt = AV_PIX_FMT_VAAPI;
    m_codec->hw_frames_ctx = frames.release();
    return 0;
}

/// A frame with memory for a picture; null where there is none.
FrameHandle VideoEncoder::makeFrame() {
    FrameHandle frame(av_frame_alloc());
    const int bytes =
        av_image_get_buffer_size(m_kind.input, m_codec->width, m_codec->height, kAlignment);
    if (!m_memory && bytes > 0) {
        m_memory.reset(av_buffer_pool_init(static_cast<std::size_t>(bytes), nullptr));
    }
    frame->buf[0] = m_memory ? av_buffer_pool_get(m_memory.get()) : nullptr;
    if (!frame->buf[0]) {
        return nullptr;
    }
    frame->format = m_kind.input;
    frame->width = m_codec->width;
    frame->height = m_codec->height;
    frame->color_range = m_codec->color_range;
    frame->color_primaries = m_codec->color_primaries;
    frame->color_trc = m_codec->color_trc;
    frame->colorspace = m_codec->colorspace;
    frame->chroma_location = m_codec->chroma_sample_location;
    av_image_fill_arrays(frame->data, frame->linesize, frame->buf[0]->data, m_kind.input,
                         frame->width, frame->height, kAlignment);
    return frame;
}

FrameHandle VideoEncoder::convert(const PixelBuffer& picture) {
    FrameHandle frame = makeFrame();
    if (frame && m_content == PictureContent::alpha) {
        fillAlphaPicture(picture, *frame);
        return frame;
    }
    return frame && m_conversion.convert(picture, *frame) ? std::move(frame) : nullptr;
}

int VideoEncoder::encode(AVFrame& frame, std::int64_t ticks, const Sink& sink) {
    frame.pts = ticks;
    frame.pict_type =
        m_keyFrames && m_keyFrames->isDue() ? AV_PICTURE_TYPE_I : AV_PICTURE_TYPE_NONE;
    return m_device ? upload(frame, sink) : send(&frame, sink);
}

int VideoEncoder::upload(const AVFrame& frame, const Sink& sink) {
    const FrameHandle surface(av_frame_alloc());
    int code = av_hwframe_get_buffer(m_codec->hw_frames_ctx, surface.get(), 0);
    if (code >= 0) {
        code = av_hwframe_transfer_data(surface.get(), &frame, 0);
    }
    if (code >= 0) {
        code = av_frame_copy_props(surface.get(), &frame);
    }
    return code < 0 ? code : send(surface.get(), sink);
}

int VideoEncoder::drain(const Sink& sink) {
    return send(nullptr, sink);
}

/// When the next packet is decoded: the packets take the pictures' own times in their
/// order, as many pictures late as they may be reordered by. The encoder's word doesn't
/// count: libx265 leaves it undefined in a film of one picture.
std::int64_t VideoEncoder::nextDecodingTime() {
    const std::int64_t n = m_packets++;
    if (n < m_reordering) {
        return m_times.front() - (m_reordering - n) * m_interval;
    }
    const std::int64_t time = m_times.front();
    m_times.pop_front();
    return time;
}

int VideoEncoder::send(AVFrame* frame, const Sink& sink) {
    if (frame) {
        m_times.push_back(frame->pts);
    }
    int code = avcodec_send_frame(m_codec.get(), frame);
    while (code >= 0) {
        code = avcodec_receive_packet(m_codec.get(), m_packet.get());
        if (code == AVERROR(EAGAIN) || code == AVERROR_EOF) {
            return 0;
        }
        if (code >= 0) {
            m_packet->dts = nextDecodingTime();
            if (m_keyFrames) {
                m_keyFrames->add(m_packet->size, (m_packet->flags & AV_PKT_FLAG_KEY) != 0);
            }
            code = sink(*m_packet);
            av_packet_unref(m_packet.get());
        }
    }
    return code;
}

} // namespace tavi
