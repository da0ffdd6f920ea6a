#pragma once

#include "base/Geometry.h"
#include "project/ZoomKeyframe.h"

#include <optional>
#include <vector>

namespace tavi {

/// What the editor does to a list of keyframes, as functions of the list alone.
/// Times are seconds of source video, positions video pixels with a bottom-left
/// origin. Each returns whether the list was touched. Any thread.
///
/// Kept so by all of them: keyframes in order of `timestamp`; within a keyframe,
/// waypoints and curve points in order of time.
namespace KeyframeEdits {

/// Adds a zoom of two seconds, or up to `duration`, on the middle seven tenths of
/// the video. Nothing where `time` lies in a keyframe (start inclusive, end exclusive).
/// Kept on purpose: it may reach into the following keyframe.
bool addKeyframe(std::vector<ZoomKeyframe>& keyframes, double time, double duration, Size video);

/// Replaces the keyframe of the same id, kept apart from its neighbours: it begins no
/// earlier than the one before ends, and ends no later than the next one begins.
/// Curve points outside of what is left are gone for good.
bool updateKeyframe(std::vector<ZoomKeyframe>& keyframes, ZoomKeyframe keyframe);

/// Whether addWaypoint() would take a point at `time`, touching nothing.
bool takesWaypoint(const std::vector<ZoomKeyframe>& keyframes, Uuid keyframe, double time);

/// Adds a point of the pan at `time`, which has to lie in the keyframe, both ends inclusive.
bool addWaypoint(std::vector<ZoomKeyframe>& keyframes, Uuid keyframe, ZoomWaypoint waypoint);

/// Adds a point as it comes: its limits are the caller's.
bool addZoomCurvePoint(std::vector<ZoomKeyframe>& keyframes, Uuid keyframe, ZoomCurvePoint point);

/// Replaces the point of the same id.
bool updateZoomCurvePoint(std::vector<ZoomKeyframe>& keyframes, Uuid keyframe,
                          ZoomCurvePoint point);

/// Removes every point of that id; true where the keyframe exists.
bool deleteZoomCurvePoint(std::vector<ZoomKeyframe>& keyframes, Uuid keyframe, Uuid point);

/// Completes keyframes as older versions wrote them: one without an end ends where
/// the next begins (the last at `duration`), and one that zooms by its rectangle alone gets
/// a curve of two points at that level, an entry ramp and an exit ramp from its ends.
bool normalize(std::vector<ZoomKeyframe>& keyframes, double duration, double videoWidth);

} // namespace KeyframeEdits
} // namespace tavi
