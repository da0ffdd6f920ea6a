#include "platform/ffmpeg/AudioDecoder.h"

#include "platform/ffmpeg/FfmpegAsset.h"
#include "platform/ffmpeg/FfmpegErrors.h"

extern "C" {
#include <libavutil/common.h>
#include <libavutil/mathematics.h>
}

#include <algorithm>
#include <utility>

namespace tavi {

namespace {

/// So many unreadable packets in a row mean that the rest of the file is gone.
constexpr int kMostReadErrors = 64;

/// No sound lies further away, in moments; what a damaged file says may.
constexpr std::int64_t kFurthest = std::int64_t{1} << 50;

SoundFormat formatOf(const AVFrame& frame) {
    const AVChannelLayout& layout = frame.ch_layout;
    const bool hasMask = layout.order == AV_CHANNEL_ORDER_NATIVE;
    return {static_cast<AVSampleFormat>(frame.format), frame.sample_rate, layout.nb_channels,
            hasMask ? layout.u.mask : 0};
}

} // namespace

AudioDecoder::AudioDecoder(std::filesystem::path path, int track, int sampleRate, int channels)
    : m_path(std::move(path)),
      m_track(track),
      m_sampleRate(sampleRate),
      m_channels(channels),
      m_resampler(sampleRate, channels) {}

Result<std::unique_ptr<AudioDecoder>, MediaError>
AudioDecoder::open(const std::filesystem::path& path, int track, int sampleRate, int channels) {
    auto input = openInput(path);
    if (!input) {
        return fail(input.error());
    }
    std::unique_ptr<AudioDecoder> decoder(new AudioDecoder(path, track, sampleRate, channels));
    decoder->m_input = std::move(*input);
    if (const auto started = decoder->start(); !started) {
        return fail(started.error());
    }
    return decoder;
}

Result<void, MediaError> AudioDecoder::start() {
    using Kind = MediaError::Kind;
    if (m_track < 0 || m_track >= static_cast<int>(m_input->nb_streams) ||
        stream().codecpar->codec_type != AVMEDIA_TYPE_AUDIO) {
        return fail(mediaError(Kind::cannotDecode, m_path, "it has no such track of sound"));
    }
    for (unsigned i = 0; i < m_input->nb_streams; ++i) {
        const bool isWanted = static_cast<int>(i) == m_track;
        m_input->streams[i]->discard = isWanted ? AVDISCARD_DEFAULT : AVDISCARD_ALL;
    }
    const AVCodecParameters* parameters = stream().codecpar;
    const AVCodec* codec = avcodec_find_decoder(parameters->codec_id);
    if (!codec) {
        return fail(
            mediaError(Kind::cannotDecode, m_path,
                       std::string("no decoder for ") + avcodec_get_name(parameters->codec_id)));
    }
    m_codec.reset(avcodec_alloc_context3(codec));
    avcodec_parameters_to_context(m_codec.get(), parameters);
    m_codec->pkt_timebase = stream().time_base;
    if (const int code = avcodec_open2(m_codec.get(), codec, nullptr); code < 0) {
        return fail(mediaError(Kind::cannotDecode, m_path, ffmpegReason(code)));
    }
    m_rounding = std::max<std::int64_t>(toMoments(2), 2);
    if (stream().start_time != AV_NOPTS_VALUE && stream().duration > 0) {
        m_trackEnd = toMoments(av_sat_add64(stream().start_time, stream().duration));
    }
    return {};
}

std::int64_t AudioDecoder::toMoments(std::int64_t ticks) const {
    const std::int64_t moments = av_rescale_q(ticks, stream().time_base, {1, m_sampleRate});
    return std::clamp(moments, -kFurthest, kFurthest);
}

std::optional<SoundPiece> AudioDecoder::next() {
    while (decodeFrame()) {
        std::optional<SoundPiece> piece = convertFrame();
        if (piece) {
            m_hasDecoded = true;
            std::swap(piece, m_held);
        }
        if (piece) {
            return piece;
        }
    }
    return lastPiece();
}

/// The decoded frame as floats; absent for one that can't be converted.
std::optional<SoundPiece> AudioDecoder::convertFrame() {
    const SoundFormat format = formatOf(*m_frame);
    if (!m_resampler.isFor(format) && m_resampler.open(format) < 0) {
        return std::nullopt;
    }
    const std::int64_t ticks = m_frame->best_effort_timestamp;
    SoundPiece piece;
    piece.position = ticks == AV_NOPTS_VALUE ? m_expected : toMoments(ticks) - m_resampler.delay();
    if (m_resampler.convert(m_frame->extended_data, m_frame->nb_samples, piece.samples) < 0) {
        return std::nullopt;
    }
    m_expected = piece.position + static_cast<std::int64_t>(piece.samples.size()) / m_channels;
    return piece;
}

/// The piece held back, without the padding that fills up the last packet.
std::optional<SoundPiece> AudioDecoder::lastPiece() {
    std::optional<SoundPiece> piece = std::exchange(m_held, std::nullopt);
    if (!piece) {
        return std::nullopt;
    }
    m_resampler.flush(piece->samples);
    for (const auto& end : {m_trackEnd, m_packetEnd}) {
        // An end before the piece belongs to a description that says nothing of the rest.
        if (end && *end > piece->position) {
            const auto most = static_cast<std::size_t>((*end - piece->position) * m_channels);
            piece->samples.resize(std::min(piece->samples.size(), most));
        }
    }
    return piece;
}

/// False at the end.
bool AudioDecoder::decodeFrame() {
    while (true) {
        const int code = avcodec_receive_frame(m_codec.get(), m_frame.get());
        if (code >= 0) {
            return true;
        }
        if (code == AVERROR_EOF || (m_isDraining && m_readErrors > kMostReadErrors)) {
            noteEnd();
            return false;
        }
        feed(); // Either it asks for more, or this stretch is damaged.
    }
}

/// Hands the decoder one more packet, or tells it that there are no more.
void AudioDecoder::feed() {
    if (m_isDraining) {
        ++m_readErrors;
        return;
    }
    while (true) {
        const int code = av_read_frame(m_input.get(), m_packet.get());
        if (code == AVERROR_EOF || m_readErrors > kMostReadErrors) {
            break;
        }
        if (code < 0) {
            ++m_readErrors;
            m_error = mediaError(MediaError::Kind::cannotDecode, m_path, ffmpegReason(code));
            continue;
        }
        const bool isOurs = m_packet->stream_index == m_track;
        if (isOurs) {
            notePacket();
            avcodec_send_packet(m_codec.get(), m_packet.get());
        }
        av_packet_unref(m_packet.get());
        if (isOurs) {
            return;
        }
    }
    m_isDraining = true;
    avcodec_send_packet(m_codec.get(), nullptr);
}

void AudioDecoder::notePacket() {
    m_readErrors = 0;
    m_hasPackets = true;
    m_packetEnd.reset();
    if (m_packet->pts != AV_NOPTS_VALUE && m_packet->duration > 0) {
        m_packetEnd = toMoments(av_sat_add64(m_packet->pts, m_packet->duration));
    }
}

void AudioDecoder::noteEnd() {
    if (m_readErrors == 0) {
        m_error.reset(); // What was unreadable lay in the middle.
    }
    if (m_hasPackets && !m_hasDecoded && !m_error) {
        m_error = mediaError(MediaError::Kind::cannotDecode, m_path, "no sound could be decoded");
    }
}

} // namespace tavi
