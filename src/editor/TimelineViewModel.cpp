#include "editor/TimelineViewModel.h"

#include <algorithm>

namespace tavi {

namespace {

TimelineLane laneOf(int lane) {
    return lane == 0 ? TimelineLane::upper : TimelineLane::lower;
}

} // namespace

TimelineViewModel::TimelineViewModel(EditorViewModel& editor, QObject* parent)
    : QObject(parent),
      m_editor(editor),
      m_gestures(callbacks()),
      m_stops(editor, [this] { return model(); }) {
    connect(this, &TimelineViewModel::marksChanged, &m_stops, &TimelineStopsViewModel::refresh);
    for (const auto changed :
         {&EditorViewModel::projectChanged, &EditorViewModel::durationChanged,
          &EditorViewModel::videoSizeChanged, &EditorViewModel::selectedKeyframeIDChanged,
          &EditorViewModel::cutMarkingChanged}) {
        connect(&editor, changed, this, &TimelineViewModel::marksChanged);
    }
    connect(&editor, &EditorViewModel::durationChanged, this, &TimelineViewModel::playheadChanged);
    connect(&editor, &EditorViewModel::currentTimeChanged, this, [this] {
        emit playheadChanged();
        if (m_editor.isMarkingCut()) {
            emit marksChanged(); // the pending cut ends at the playhead
        }
    });
    m_stops.refresh();
}

TimelineGestures::Callbacks TimelineViewModel::callbacks() {
    return {
        [this](double time) { m_editor.seek(time); },
        [this](std::optional<Uuid> id) { m_editor.selectKeyframe(id); },
        [this](double time) { m_editor.setTrimIn(time); },
        [this](double time) { m_editor.setTrimOut(time); },
        [this](const ZoomKeyframe& keyframe) { m_editor.updateKeyframe(keyframe); },
        [this](Uuid id, const ZoomCurvePoint& point) { m_editor.addZoomCurvePoint(id, point); },
        [this](Uuid id, const ZoomCurvePoint& point) { m_editor.updateZoomCurvePoint(id, point); }};
}

void TimelineViewModel::setTrackWidth(double width) {
    const double limited = std::max(width, 0.0);
    if (m_trackWidth != limited) {
        m_trackWidth = limited;
        emit marksChanged();
        emit playheadChanged();
    }
}

TimelineModel TimelineViewModel::model() const {
    return {{m_editor.duration(), m_trackWidth},
            m_editor.project().keyframes,
            m_editor.project().trimState,
            m_editor.videoSize().width};
}

double TimelineViewModel::playheadX() const {
    return TimelineGeometry{m_editor.duration(), m_trackWidth}.x(m_editor.currentTime());
}

void TimelineViewModel::press(int lane, double x, double y) {
    m_gestures.press(model(), laneOf(lane), {x, y});
    emit marksChanged();
}

void TimelineViewModel::move(double x, double y) {
    m_gestures.move(model(), {x, y});
    emit marksChanged();
}

void TimelineViewModel::release(double x, double y) {
    m_gestures.release(model(), {x, y});
    emit marksChanged();
}

void TimelineViewModel::cancel() {
    m_gestures.cancel();
    emit marksChanged();
}

TimelineViewModel::Pointer TimelineViewModel::pointerAt(int lane, double x, double y) const {
    switch (pointerOver(timelineHit(model(), laneOf(lane), {x, y}))) {
    case TimelinePointer::resizeLeftRight:
        return ResizeLeftRight;
    case TimelinePointer::openHand:
        return OpenHand;
    case TimelinePointer::arrow:
        break;
    }
    return Arrow;
}

QString TimelineViewModel::openMenu(int lane, double x, double y) {
    m_menuHit = timelineHit(model(), laneOf(lane), {x, y});
    m_menuCut = laneOf(lane) == TimelineLane::upper ? cutAt(model(), x) : std::nullopt;
    if (m_menuCut) {
        return "cut";
    }
    return m_menuHit.kind == TimelineHit::Kind::curvePoint ? "curvePoint" : "";
}

void TimelineViewModel::restoreSection() {
    if (m_menuCut) {
        m_editor.removeCut(*m_menuCut);
        m_menuCut.reset();
    }
}

void TimelineViewModel::deletePoint() {
    if (m_menuHit.kind == TimelineHit::Kind::curvePoint) {
        m_editor.deleteZoomCurvePoint(m_menuHit.keyframe, m_menuHit.point);
        m_menuHit = {};
    }
}

} // namespace tavi
