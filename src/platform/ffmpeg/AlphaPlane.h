#pragma once

#include "base/PixelBuffer.h"
#include "platform/ffmpeg/FfmpegHandles.h"

#include <optional>

namespace tavi {

/// What the alpha track of a movie is called in the file.
///
/// The alpha of pictures is the brightness, full range, of a second track of pictures of the same
/// size, whose colours are neutral. It is not enabled, so players show the first one, whose colours
/// are multiplied by their alpha, as if over black. An alpha picture is in force from its time to
/// that of the next one: where only colours change the track has none.
inline constexpr const char* kAlphaTrackName = "Alpha";

/// Whether it holds pictures that follow each other.
bool isPicture(const AVStream& stream);

/// The stream with the alpha of the first stream of pictures; absent where that has none.
std::optional<int> alphaTrackOf(const AVFormatContext& input);

/// The first stream of pictures; absent where there is none.
std::optional<int> firstPictureTrack(const AVFormatContext& input);

/// Fills a picture of 4:2:0 (planar or NV12, of the same size) with the alpha of another.
void fillAlphaPicture(const PixelBuffer& from, AVFrame& to);

/// Whether two pictures of fillAlphaPicture() show the same.
bool isSameAlpha(const AVFrame& a, const AVFrame& b);

/// Gives a planar 4:2:0 picture a fourth plane, that of an alpha picture, which it shares. False,
/// and it stays as it was, where the two don't fit.
bool joinAlpha(AVFrame& colours, const AVFrame& alpha);

/// Whether joinAlpha() gave the picture its fourth plane. Other files' alpha is not looked at.
bool hasJoinedAlpha(const AVFrame& frame);

/// Sets the alpha of `to`, of the same size, to the frame's fourth plane, and settles it.
void takeAlpha(const AVFrame& from, PixelBuffer& to);

/// Makes what coding left of a premultiplied picture one again: alpha next to nothing is none,
/// alpha next to all is all, and no colour is above its alpha.
void settleAlpha(PixelBuffer& picture);

} // namespace tavi
