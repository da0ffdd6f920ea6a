#pragma once

#include "media/AssetWriter.h"
#include "platform/ffmpeg/FfmpegHandles.h"

#include <span>
#include <string_view>

namespace tavi {

/// One encoder that the program knows how to drive.
struct EncoderKind {
    const char* name;      ///< The library's name for it.
    AVPixelFormat input;   ///< What pictures are converted to for it.
    AVHWDeviceType device; ///< Where its pictures must lie; NONE: in memory.
    bool isHardware;
};

/// Those for a codec, in the order of preference: hardware first.
std::span<const EncoderKind> encoderKinds(VideoCodec codec);

/// Fills size, rate, colour tags and the encoder's own options for `settings`.
/// Live pictures are not reordered: their decoding and presentation order are the same.
/// `timescale` is the encoder's clock, ticks per second.
void configureEncoder(AVCodecContext& context, Options& options, const EncoderKind& kind,
                      const VideoSettings& settings, int timescale);

} // namespace tavi
