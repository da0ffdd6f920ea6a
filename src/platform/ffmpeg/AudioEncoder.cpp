#include "platform/ffmpeg/AudioEncoder.h"

#include "platform/ffmpeg/FfmpegErrors.h"

extern "C" {
#include <libavutil/channel_layout.h>
}

#include <algorithm>
#include <cerrno>
#include <cmath>

namespace tavi {

namespace {

constexpr const char* kEncoder = "aac";

float soundOnly(float value) {
    return std::isfinite(value) ? std::clamp(value, -1.0F, 1.0F) : 0.0F;
}

} // namespace

Result<std::unique_ptr<AudioEncoder>, std::string>
AudioEncoder::open(const AudioSettings& settings) {
    silenceFfmpegLog();
    const AVCodec* codec = avcodec_find_encoder_by_name(kEncoder);
    if (!codec) {
        return fail(std::string("aac: not in this build of the media libraries"));
    }
    if (settings.channels <= 0 || settings.sampleRate <= 0 || settings.bitRate <= 0) {
        return fail(std::string("aac: channels, rate and bit rate must be positive"));
    }
    std::unique_ptr<AudioEncoder> encoder(new AudioEncoder);
    encoder->m_codec.reset(avcodec_alloc_context3(codec));
    AVCodecContext& context = *encoder->m_codec;
    context.sample_fmt = AV_SAMPLE_FMT_FLTP;
    context.sample_rate = settings.sampleRate;
    context.bit_rate = settings.bitRate;
    context.time_base = {1, settings.sampleRate};
    context.flags |= AV_CODEC_FLAG_GLOBAL_HEADER;
    av_channel_layout_default(&context.ch_layout, settings.channels);
    if (const int code = avcodec_open2(&context, codec, nullptr); code < 0) {
        return fail("aac: " + ffmpegReason(code));
    }
    return encoder;
}

int AudioEncoder::encode(std::span<const float> samples, const Sink& sink) {
    const auto channels = static_cast<std::size_t>(m_codec->ch_layout.nb_channels);
    const std::size_t whole = static_cast<std::size_t>(m_codec->frame_size) * channels;
    m_rest.insert(m_rest.end(), samples.begin(), samples.end());
    std::size_t used = 0;
    int code = 0;
    for (; code >= 0 && m_rest.size() - used >= whole; used += whole) {
        code = sendFrame(std::span<const float>(m_rest).subspan(used, whole), sink);
    }
    m_rest.erase(m_rest.begin(), m_rest.begin() + static_cast<std::ptrdiff_t>(used));
    return code;
}

int AudioEncoder::drain(const Sink& sink) {
    int code = 0;
    if (!m_rest.empty()) {
        code = sendFrame(m_rest, sink);
        m_rest.clear();
    }
    return code < 0 ? code : send(nullptr, sink);
}

int AudioEncoder::sendFrame(std::span<const float> samples, const Sink& sink) {
    const auto channels = static_cast<std::size_t>(m_codec->ch_layout.nb_channels);
    av_frame_unref(m_frame.get());
    m_frame->format = m_codec->sample_fmt;
    m_frame->sample_rate = m_codec->sample_rate;
    m_frame->nb_samples = static_cast<int>(samples.size() / channels);
    int code = av_channel_layout_copy(&m_frame->ch_layout, &m_codec->ch_layout);
    code = code < 0 ? code : av_frame_get_buffer(m_frame.get(), 0);
    if (code < 0) {
        return code;
    }
    for (std::size_t channel = 0; channel < channels; ++channel) {
        auto* plane = reinterpret_cast<float*>(m_frame->extended_data[channel]);
        for (std::size_t i = channel; i < samples.size(); i += channels) {
            *plane++ = soundOnly(samples[i]);
        }
    }
    m_frame->pts = m_position;
    m_position += m_frame->nb_samples;
    return send(m_frame.get(), sink);
}

int AudioEncoder::send(const AVFrame* frame, const Sink& sink) {
    int code = avcodec_send_frame(m_codec.get(), frame);
    while (code >= 0) {
        code = avcodec_receive_packet(m_codec.get(), m_packet.get());
        if (code == AVERROR(EAGAIN) || code == AVERROR_EOF) {
            return 0;
        }
        if (code >= 0) {
            code = sink(*m_packet);
            av_packet_unref(m_packet.get());
        }
    }
    return code;
}

} // namespace tavi
