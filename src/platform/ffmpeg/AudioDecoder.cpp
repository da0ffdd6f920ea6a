#include "platform/ffmpeg/AudioDecoder.h"

extern "C" {
#include <libavutil/common.h>
#include <libavutil/mathematics.h>
}

#include <algorithm>
#include <utility>

namespace tavi {

namespace {

/// Sound decodes in no time.
constexpr int kThreads = 1;

/// Decoded before what is wanted: the first packets after a jump sound wrong, since
/// they lean on those before.
constexpr MediaTime kWarmUp{1, 10};

/// No sound lies further away, in moments; what a damaged file says may.
constexpr std::int64_t kFurthest = std::int64_t{1} << 50;

SoundFormat formatOf(const AVFrame& frame) {
    const AVChannelLayout& layout = frame.ch_layout;
    const bool hasMask = layout.order == AV_CHANNEL_ORDER_NATIVE;
    return {static_cast<AVSampleFormat>(frame.format), frame.sample_rate, layout.nb_channels,
            hasMask ? layout.u.mask : 0};
}

} // namespace

AudioDecoder::AudioDecoder(int sampleRate, int channels)
    : m_sampleRate(sampleRate),
      m_channels(channels),
      m_resampler(sampleRate, channels) {}

Result<std::unique_ptr<AudioDecoder>, MediaError>
AudioDecoder::open(const std::filesystem::path& path, int track, int sampleRate, int channels) {
    std::unique_ptr<AudioDecoder> decoder(new AudioDecoder(sampleRate, channels));
    if (auto opened = decoder->m_track.open(path, track, AVMEDIA_TYPE_AUDIO, kThreads); !opened) {
        return fail(std::move(opened.error()));
    }
    decoder->noteTrack();
    return decoder;
}

void AudioDecoder::noteTrack() {
    m_rounding = std::max<std::int64_t>(toMoments(2), 2);
    if (stream().start_time != AV_NOPTS_VALUE && stream().duration > 0) {
        m_trackEnd = toMoments(av_sat_add64(stream().start_time, stream().duration));
    }
}

std::int64_t AudioDecoder::toMoments(std::int64_t ticks) const {
    const std::int64_t moments = av_rescale_q(ticks, stream().time_base, {1, m_sampleRate});
    return std::clamp(moments, -kFurthest, kFurthest);
}

std::optional<SoundPiece> AudioDecoder::next() {
    while (m_track.decode(*m_frame)) {
        std::optional<SoundPiece> piece = convertFrame();
        if (piece) {
            std::swap(piece, m_held);
        }
        if (piece) {
            return piece;
        }
    }
    return lastPiece();
}

void AudioDecoder::seek(MediaTime time) {
    const AVRational base = stream().time_base;
    const MediaTime from = time - kWarmUp;
    const std::int64_t start = stream().start_time == AV_NOPTS_VALUE ? 0 : stream().start_time;
    const std::int64_t ticks = from.rescaled(base.den).value / base.num;
    if (ticks <= start || !m_track.jump(ticks)) {
        m_track.jump(std::min<std::int64_t>(start, 0));
    }
    m_held.reset();
    std::vector<float> rest;
    m_resampler.flush(rest); // Made anew for the next frame.
    m_expected = 0;
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
    const auto lastTicks = m_track.packetEnd();
    const auto packetEnd = lastTicks ? std::optional(toMoments(*lastTicks)) : std::nullopt;
    for (const auto& end : {m_trackEnd, packetEnd}) {
        // An end before the piece belongs to a description that says nothing of the rest.
        if (end && *end > piece->position) {
            const auto most = static_cast<std::size_t>((*end - piece->position) * m_channels);
            piece->samples.resize(std::min(piece->samples.size(), most));
        }
    }
    return piece;
}

} // namespace tavi
