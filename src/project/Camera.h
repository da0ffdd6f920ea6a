#pragma once

#include "project/ZoomKeyframe.h"

#include <span>

namespace tavi {

/// The virtual camera: pure functions from keyframes and a time to the part of
/// the source video that is shown. Preview and export share them.
/// Times are seconds, positions video pixels with a bottom-left origin. Any thread.

/// An easing curve at `t`, which is clamped to 0..1. The spring overshoots 1 on
/// purpose (decay 6, angular rate 3*pi/2).
double ease(EasingType easing, double t);

/// 6t^5 - 15t^4 + 10t^3 (Perlin's smootherstep) for `t` in 0..1.
double smootherstep(double t);

/// Where the camera of `keyframe` is centred at `time`, ramps not applied. Every
/// leg of the path eases with smootherstep, whatever the keyframe's easing.
Point center(const ZoomKeyframe& keyframe, double time);

/// The magnification of `keyframe` at `time`, ramps not applied: linear between
/// the points of the curve, sorted by time; without a curve the video's width
/// over the rect's, 1 for a rect of no width.
double zoomLevel(const ZoomKeyframe& keyframe, double time, double videoWidth);

/// The crop of the source to show at `time`.
///
/// Units:  `video` in pixels; `cropAspect` is width over height of the output's
///         content area.
/// Result: the full frame where no keyframe is active, else a rectangle of
///         aspect `cropAspect`, moved (never resized) to stay inside the video
///         on the right and top and then on the left and bottom.
/// Errors: none. Of overlapping keyframes the one with the earliest timestamp
///         wins until its end.
Rect evaluateCamera(std::span<const ZoomKeyframe> keyframes, double time, Size video,
                    double cropAspect);

} // namespace tavi
