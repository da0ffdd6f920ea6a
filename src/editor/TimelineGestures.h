#pragma once

#include "editor/TimelineHit.h"

#include <functional>
#include <optional>

namespace tavi {

/// Turns what the pointer does on the timeline into edits.
///
/// A gesture goes from press() through any number of move() to release() or cancel(). A press on
/// a handle or a curve point begins its drag once the pointer has moved far enough, and never
/// scrubs; a press anywhere else scrubs at once. A press on a keyframe's body or on the ground of a
/// curve that is released where it began is a click, after its scrub.
/// Thread: main. Places are points from the upper left corner of the lane's track.
class TimelineGestures {
public:
    /// What the gestures ask for; all are set.
    struct Callbacks {
        std::function<void(double)> onSeek;
        std::function<void(std::optional<Uuid>)> onSelectKeyframe;
        std::function<void(double)> onTrimInChanged;
        std::function<void(double)> onTrimOutChanged;
        std::function<void(const ZoomKeyframe&)> onUpdateKeyframe;
        std::function<void(Uuid, const ZoomCurvePoint&)> onAddZoomCurvePoint;
        std::function<void(Uuid, const ZoomCurvePoint&)> onUpdateZoomCurvePoint;
    };

    explicit TimelineGestures(Callbacks callbacks);

    /// `model` is as it is at the moment of the call; it is not kept.
    void press(const TimelineModel& model, TimelineLane lane, Point place);
    void move(const TimelineModel& model, Point place);
    void release(const TimelineModel& model, Point place);

    /// Ends the gesture; what it has done so far stays.
    void cancel();

    bool isActive() const { return m_lane.has_value(); }
    bool isDraggingTrimIn() const { return isDragging(TimelineHit::Kind::trimIn); }
    bool isDraggingTrimOut() const { return isDragging(TimelineHit::Kind::trimOut); }

    /// The edge that is being dragged; leftEdge or rightEdge with its keyframe.
    std::optional<TimelineHit> draggingEdge() const;
    std::optional<Uuid> draggingCurvePointID() const;

private:
    bool isDragging(TimelineHit::Kind kind) const { return m_isDragging && m_hit.kind == kind; }
    bool isScrub() const;
    void scrub(const TimelineModel& model, double x);
    void drag(const TimelineModel& model, Point place);
    void dragEdge(const TimelineModel& model, double time);
    void dragPoint(const TimelineModel& model, Point place);
    void click(const TimelineModel& model, Point place);
    void addPoint(const TimelineModel& model, Point place);

    Callbacks m_callbacks;
    std::optional<TimelineLane> m_lane; ///< Of the gesture that is on.
    TimelineHit m_hit;                  ///< What it began on.
    Point m_start;
    bool m_isDragging = false; ///< It has moved far enough to be a drag.
};

} // namespace tavi
