#pragma once

#include "platform/ffmpeg/FfmpegHandles.h"

#include <cstdint>
#include <vector>

namespace tavi {

/// What a stretch of raw sound looks like.
struct SoundFormat {
    AVSampleFormat sampleFormat = AV_SAMPLE_FMT_FLT;
    int sampleRate = 0; ///< Hz.
    int channels = 0;
    /// The channels by place as the library's mask; 0 where only their number is known.
    std::uint64_t layoutMask = 0;

    bool operator==(const SoundFormat&) const = default;
};

/// Turns raw sound into interleaved floats of one rate and number of channels.
///
/// Channels are mixed so that what is at most full scale stays so: the sum of
/// the weights of one output channel is at most 1. Of sound whose channels have
/// no known places every output channel is the mean.
/// What comes out is aligned with what goes in; the last moments stay inside until flush().
/// Thread: one at a time.
class FfmpegAudioResampler {
public:
    /// `canStretch`: stretch() is going to be used.
    FfmpegAudioResampler(int sampleRate, int channels, bool canStretch = false)
        : m_sampleRate(sampleRate),
          m_channels(channels),
          m_canStretch(canStretch) {}

    /// Prepares for sound of this kind; forgets what is inside. Returns a library code.
    int open(const SoundFormat& from);

    /// True for sound like that of the last open().
    bool isFor(const SoundFormat& from) const { return m_resampler && from == m_from; }

    /// Appends to `to` what comes of `frames` moments. `planes` is one pointer, or one for
    /// each channel where the format is planar. Returns a library code.
    int convert(const std::uint8_t* const* planes, int frames, std::vector<float>& to);

    /// Adds so many moments to the next `over` ones that come out (takes them away
    /// when below 0). Returns a library code.
    int stretch(int moments, int over);

    /// Appends what is still inside. Nothing can be converted after it until open().
    int flush(std::vector<float>& to);

    /// Moments at the output's rate that went in and have not come out.
    std::int64_t delay() const;

private:
    int run(const std::uint8_t* const* planes, int frames, std::vector<float>& to);

    const int m_sampleRate;
    const int m_channels;
    const bool m_canStretch;
    SoundFormat m_from;
    ResamplerHandle m_resampler;
};

} // namespace tavi
