#pragma once

#include "project/TrimState.h"

#include <optional>

namespace tavi {

/// What the editor does to trim and cuts, as functions of the trim alone. Times are
/// seconds of source video. Any thread.
namespace TrimEdits {

/// Where a playback that keeps to the trim ends: the out point, else `duration`.
double end(const TrimState& trim, double duration);

/// Moves the in point, to 0 at the least. An out point that is not behind it any more is removed.
void setTrimIn(TrimState& trim, double time);

/// Moves the out point, to `duration` at the most; false, with nothing changed, where that is
/// not behind the in point.
bool setTrimOut(TrimState& trim, double time, double duration);

/// Cuts what lies between two moments, in either order; false, with nothing changed, for a
/// stretch of a thirtieth of a second or less.
/// Cuts that touch become one, with the id of the one that begins first.
bool addCut(TrimState& trim, double from, double to);

/// The end of the cut that holds `time`; absent outside of every cut. Of cuts that
/// overlap the one that begins first counts.
std::optional<double> endOfCutAt(const TrimState& trim, double time);

} // namespace TrimEdits
} // namespace tavi
