#include "platform/ffmpeg/FfmpegAudioResampler.h"

extern "C" {
#include <libavutil/channel_layout.h>
#include <libavutil/opt.h>
}

#include <cerrno>

namespace tavi {

namespace {

/// The usual places of so many channels, or just their number where there are none.
AVChannelLayout layoutOf(int channels, std::uint64_t mask) {
    AVChannelLayout layout{};
    if (mask == 0 || av_channel_layout_from_mask(&layout, mask) < 0 ||
        layout.nb_channels != channels) {
        av_channel_layout_uninit(&layout);
        av_channel_layout_default(&layout, channels);
    }
    return layout;
}

bool hasPlaces(const AVChannelLayout& layout) {
    return layout.order == AV_CHANNEL_ORDER_NATIVE;
}

int setMean(SwrContext& resampler, int from, int to) {
    const std::vector<double> weights(static_cast<std::size_t>(from) * static_cast<std::size_t>(to),
                                      1.0 / from);
    return swr_set_matrix(&resampler, weights.data(), from);
}

} // namespace

int FfmpegAudioResampler::open(const SoundFormat& from) {
    m_from = from;
    // Not constant, since older versions of the library take them so.
    AVChannelLayout in = layoutOf(from.channels, from.layoutMask);
    AVChannelLayout out = from.channels == m_channels ? in : layoutOf(m_channels, 0);
    SwrContext* opened = nullptr;
    int code = swr_alloc_set_opts2(&opened, &out, AV_SAMPLE_FMT_FLT, m_sampleRate, &in,
                                   from.sampleFormat, from.sampleRate, 0, nullptr);
    m_resampler.reset(opened);
    if (code < 0) {
        return code;
    }
    av_opt_set_double(opened, "rematrix_maxval", 1.0, 0);
    if (m_canStretch) {
        av_opt_set_int(opened, "flags", SWR_FLAG_RESAMPLE, 0); // Also at equal rates.
    }
    if (from.channels != m_channels && !(hasPlaces(in) && hasPlaces(out))) {
        code = setMean(*opened, from.channels, m_channels);
    }
    if (code >= 0) {
        code = swr_init(opened);
    }
    if (code < 0) {
        m_resampler.reset();
    }
    return code;
}

int FfmpegAudioResampler::convert(const std::uint8_t* const* planes, int frames,
                                  std::vector<float>& to) {
    return frames > 0 ? run(planes, frames, to) : 0;
}

int FfmpegAudioResampler::stretch(int moments, int over) {
    return m_resampler ? swr_set_compensation(m_resampler.get(), moments, over) : 0;
}

int FfmpegAudioResampler::flush(std::vector<float>& to) {
    const int code = m_resampler ? run(nullptr, 0, to) : 0;
    m_resampler.reset();
    return code;
}

int FfmpegAudioResampler::run(const std::uint8_t* const* planes, int frames,
                              std::vector<float>& to) {
    if (!m_resampler) {
        return AVERROR(EINVAL);
    }
    const int most = swr_get_out_samples(m_resampler.get(), frames);
    if (most < 0) {
        return most;
    }
    const auto channels = static_cast<std::size_t>(m_channels);
    const std::size_t before = to.size();
    to.resize(before + static_cast<std::size_t>(most) * channels);
    auto* target = reinterpret_cast<std::uint8_t*>(to.data() + before);
    // Older versions of the library take the input through pointers to non-constant pointers.
    const int made = swr_convert(m_resampler.get(), &target, most,
                                 const_cast<const std::uint8_t**>(planes), frames);
    to.resize(before + static_cast<std::size_t>(made > 0 ? made : 0) * channels);
    return made < 0 ? made : 0;
}

std::int64_t FfmpegAudioResampler::delay() const {
    return m_resampler ? swr_get_delay(m_resampler.get(), m_sampleRate) : 0;
}

} // namespace tavi
