#pragma once

#include "base/Geometry.h"
#include "project/CursorEvent.h"
#include "project/EditProject.h"
#include "project/ZoomKeyframe.h"

#include <optional>
#include <span>
#include <vector>

namespace tavi {

/// Turns the log of a take into zoom keyframes: finds bursts of activity, plans
/// which of them one camera shot can cover, and writes each shot as a keyframe
/// with its pan and its zoom curve. One number drives every threshold.
///
/// Times are seconds of source video, positions pixels of the source video with
/// the origin at the bottom left. Every function is pure; any thread.
namespace UnifiedAutoZoom {

/// Everything the phases need besides the log.
struct Inputs {
    double scale = 1;            ///< Video pixels per log unit.
    Size video;                  ///< Natural size of the video, pixels.
    Size base;                   ///< The part of the video that the output's aspect shows, pixels.
    double duration = 0;         ///< Of the video, seconds.
    double aggressiveness = 0.5; ///< 0 is calm, 1 is eager; not limited here.

    /// Where an event of the log lies in the video. Limited to +-1e100 pixels, so
    /// that no sum or distance of such positions overflows.
    Point position(const CursorEvent& event) const;
};

/// What `aggressiveness` stands for. Linear in it.
struct Thresholds {
    explicit Thresholds(double aggressiveness);

    double activityGap;         ///< Seconds of pause that end a burst.
    double mergeGap;            ///< Seconds of pause that one shot may span.
    double zoomFactor;          ///< Magnification of a shot.
    double leadIn;              ///< Seconds that the camera starts early.
    double tail;                ///< Seconds that the camera stays after.
    double minWaypointInterval; ///< Seconds between two points of a pan.
};

/// An event that counts as activity, in video pixels.
struct InteractionEvent {
    double timestamp = 0;
    double x = 0;
    double y = 0;
    CursorEventType type = CursorEventType::move;
};

/// One burst of activity and its weighted centre.
struct ActivitySegment {
    double startTime = 0; ///< Time of the first event.
    double endTime = 0;   ///< Time of the last event.
    double focalX = 0;
    double focalY = 0;

    bool operator==(const ActivitySegment&) const = default;
};

struct FocalPoint {
    double time = 0;
    double x = 0;
    double y = 0;

    bool operator==(const FocalPoint&) const = default;
};

/// One planned camera shot.
struct ZoomRegion {
    double startTime = 0;
    double endTime = 0;
    std::vector<FocalPoint> focalPoints; ///< One per segment, in order.
    double primaryFocalX = 0;            ///< Mean of the focal points.
    double primaryFocalY = 0;

    bool operator==(const ZoomRegion&) const = default;
};

/// The inputs for one take: scale from the log's height, base from the output's aspect.
Inputs prepareInputs(const EditProject& project, Size video, double duration,
                     double aggressiveness);

/// The log in order of time; equal times keep their order.
std::vector<CursorEvent> sortedByTime(std::span<const CursorEvent> events);

/// The size of a shot's viewport in video pixels.
Size viewportSize(const Inputs& inputs);

/// Splits the activity of a sorted log at every pause longer than `activityGap`.
std::vector<ActivitySegment> detectActivity(std::span<const CursorEvent> events,
                                            const Inputs& inputs);

/// The segment of one burst; absent for an empty one. A run of typing (three
/// keys or more, no pause above 0.8 s) counts at its first key, one unit a key.
std::optional<ActivitySegment> summarizeActivity(std::span<const InteractionEvent> run);

/// Merges segments that follow each other soon and near enough into shots.
std::vector<ZoomRegion> simulateCamera(std::span<const ActivitySegment> segments,
                                       const Inputs& inputs);

/// One keyframe per shot, before overlaps are merged. `events` is the whole
/// sorted log: any event may move the camera inside a shot.
std::vector<ZoomKeyframe> emitKeyframes(std::span<const ZoomRegion> regions,
                                        std::span<const CursorEvent> events, const Inputs& inputs);

/// Sorts keyframes by time and joins those that overlap or almost touch.
std::vector<ZoomKeyframe> mergeKeyframes(std::vector<ZoomKeyframe> keyframes);

/// All phases. Sorted by timestamp; empty for an empty log, a duration that is
/// not positive, and a video or aggressiveness that leaves no viewport.
std::vector<ZoomKeyframe> generate(std::span<const CursorEvent> events, const Inputs& inputs);

/// The keyframes of a take, from its log and the size and duration of its video.
std::vector<ZoomKeyframe> generate(const EditProject& project, Size video, double duration,
                                   double aggressiveness);

} // namespace UnifiedAutoZoom
} // namespace tavi
