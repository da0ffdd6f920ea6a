#include "editor/TimelineStopsViewModel.h"

#include "editor/EditorText.h"
#include "editor/TimelineMoves.h"
#include "editor/TrimEdits.h"

#include <QRectF>

#include <algorithm>
#include <cmath>
#include <utility>

namespace tavi {

namespace {

using Kind = TimelineHit::Kind;

constexpr double kNudge = 0.1; ///< Levels of zoom.

QString time(double seconds) {
    return QString::fromStdString(timeText(seconds));
}

template<typename List, typename Id>
auto find(const List& list, const Id& id) {
    using Item = typename List::value_type;
    const auto found = std::ranges::find(list, id, &Item::id);
    return found == list.end() ? nullptr : &*found;
}

} // namespace

TimelineStopsViewModel::TimelineStopsViewModel(EditorViewModel& editor,
                                               std::function<TimelineModel()> model,
                                               QObject* parent)
    : QAbstractListModel(parent),
      m_editor(editor),
      m_model(std::move(model)) {}

int TimelineStopsViewModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(m_stops.size());
}

QVariant TimelineStopsViewModel::data(const QModelIndex& index, int role) const {
    if (!index.isValid() || index.row() >= rowCount()) {
        return {};
    }
    const TimelineStop& stop = m_stops[static_cast<std::size_t>(index.row())];
    switch (role) {
    case NameRole:
        return name(stop);
    case HintRole:
        return hint(stop);
    case LaneRole:
        return stop.lane == TimelineLane::upper ? 0 : 1;
    case PlaceRole:
        return QRectF(stop.place.x, stop.place.y, stop.place.width, stop.place.height);
    default:
        return {};
    }
}

QHash<int, QByteArray> TimelineStopsViewModel::roleNames() const {
    return {{NameRole, "name"}, {HintRole, "hint"}, {LaneRole, "lane"}, {PlaceRole, "place"}};
}

const ZoomKeyframe* TimelineStopsViewModel::keyframeOf(const TimelineStop& stop) const {
    return find(m_editor.project().keyframes, stop.hit.keyframe);
}

const ZoomCurvePoint* TimelineStopsViewModel::pointOf(const TimelineStop& stop) const {
    const ZoomKeyframe* keyframe = keyframeOf(stop);
    return keyframe ? find(keyframe->zoomCurve, stop.hit.point) : nullptr;
}

const TimeRange* TimelineStopsViewModel::cutOf(const TimelineStop& stop) const {
    return stop.cut ? find(m_editor.project().trimState.cutSegments, *stop.cut) : nullptr;
}

QString TimelineStopsViewModel::name(const TimelineStop& stop) const {
    const TrimState& trim = m_editor.project().trimState;
    if (const TimeRange* cut = cutOf(stop)) {
        return tr("Cut from %1 to %2").arg(time(cut->start), time(cut->end));
    }
    switch (stop.hit.kind) {
    case Kind::trimIn:
        return tr("Start of the film, %1").arg(time(trim.inPoint));
    case Kind::trimOut:
        return tr("End of the film, %1").arg(time(TrimEdits::end(trim, m_editor.duration())));
    default:
        return keyframeName(stop);
    }
}

QString TimelineStopsViewModel::keyframeName(const TimelineStop& stop) const {
    const ZoomKeyframe* keyframe = keyframeOf(stop);
    if (!keyframe) {
        return {};
    }
    const auto place = QString::number(keyframe - m_editor.project().keyframes.data() + 1);
    switch (stop.hit.kind) {
    case Kind::body:
        return tr("Keyframe %1, from %2 to %3")
            .arg(place, time(keyframe->timestamp), time(keyframe->endTime));
    case Kind::leftEdge:
        return tr("Start of keyframe %1, %2").arg(place, time(keyframe->timestamp));
    case Kind::rightEdge:
        return tr("End of keyframe %1, %2").arg(place, time(keyframe->endTime));
    case Kind::curvePoint:
        if (const ZoomCurvePoint* point = pointOf(stop)) {
            return tr("Zoom of %1 at %2")
                .arg(QString::number(point->zoomLevel, 'f', 1), time(point->time));
        }
        return {};
    default:
        return tr("Curve of keyframe %1").arg(place);
    }
}

QString TimelineStopsViewModel::hint(const TimelineStop& stop) const {
    if (stop.cut) {
        return tr("Return goes there, Delete restores it");
    }
    switch (stop.hit.kind) {
    case Kind::body:
        return tr("Return selects it, Delete removes it");
    case Kind::curve:
        return tr("Return adds a point at the playhead");
    case Kind::curvePoint:
        return tr("Up and Down zoom, Return moves it to the playhead, Delete removes it");
    default:
        return tr("Return moves it to the playhead");
    }
}

void TimelineStopsViewModel::activate(int row) {
    const TimelineStop stop = m_stops.at(static_cast<std::size_t>(row));
    if (const TimeRange* cut = cutOf(stop)) {
        m_editor.seek(cut->start);
        return;
    }
    switch (stop.hit.kind) {
    case Kind::trimIn:
        m_editor.setTrimIn(m_editor.currentTime());
        break;
    case Kind::trimOut:
        m_editor.setTrimOut(m_editor.currentTime());
        break;
    case Kind::body:
        m_editor.selectKeyframe(stop.hit.keyframe);
        break;
    default:
        updateKeyframe(stop);
    }
}

/// Puts a part of a keyframe where the playhead stands.
void TimelineStopsViewModel::updateKeyframe(const TimelineStop& stop) {
    const ZoomKeyframe* keyframe = keyframeOf(stop);
    const double now = m_editor.currentTime();
    if (!keyframe) {
        return;
    }
    if (stop.hit.kind == Kind::leftEdge) {
        m_editor.updateKeyframe(TimelineMoves::withStart(*keyframe, now));
    } else if (stop.hit.kind == Kind::rightEdge) {
        m_editor.updateKeyframe(TimelineMoves::withEnd(*keyframe, now, m_editor.duration()));
    } else if (const ZoomCurvePoint* point = pointOf(stop)) {
        m_editor.updateZoomCurvePoint(
            keyframe->id,
            TimelineMoves::withinRamps(*keyframe, {point->id, now, point->zoomLevel}));
    } else {
        addPoint(*keyframe);
    }
}

/// At the level that the curve has there already.
void TimelineStopsViewModel::addPoint(const ZoomKeyframe& keyframe) {
    const double now = m_editor.currentTime();
    if (TimelineMoves::isBetweenRamps(keyframe, now)) {
        const double level = TimelineMarks::shownLevel(keyframe, now, m_editor.videoSize().width);
        m_editor.addZoomCurvePoint(
            keyframe.id,
            {Uuid::make(), now, std::clamp(level, 1.0, TimelineGeometry::kCurveMaxZoom)});
    }
}

void TimelineStopsViewModel::nudge(int row, int tenths) {
    const TimelineStop stop = m_stops.at(static_cast<std::size_t>(row));
    if (const ZoomCurvePoint* point = pointOf(stop)) {
        const double level = std::round(point->zoomLevel / kNudge + tenths) / 10;
        m_editor.updateZoomCurvePoint(
            stop.hit.keyframe,
            {point->id, point->time, std::clamp(level, 1.0, TimelineGeometry::kCurveMaxZoom)});
    }
}

void TimelineStopsViewModel::remove(int row) {
    const TimelineStop stop = m_stops.at(static_cast<std::size_t>(row));
    if (stop.cut) {
        m_editor.removeCut(*stop.cut);
    } else if (stop.hit.kind == Kind::curvePoint) {
        m_editor.deleteZoomCurvePoint(stop.hit.keyframe, stop.hit.point);
    } else if (const auto* keyframe = keyframeOf(stop); keyframe && stop.hit.kind == Kind::body) {
        m_editor.deleteKeyframe(*keyframe);
    }
}

void TimelineStopsViewModel::refresh() {
    const auto stops = timelineStops(m_model(), m_editor.selectedKeyframeID());
    reconcile(stops);
    for (int row = 0; row < rowCount(); ++row) {
        const auto i = static_cast<std::size_t>(row);
        m_stops[i] = stops[i];
    }
    if (rowCount() > 0) {
        emit dataChanged(index(0), index(rowCount() - 1));
    }
}

/// Rows go, come and move one by one, so that what stays keeps its delegate and the focus.
void TimelineStopsViewModel::reconcile(const std::vector<TimelineStop>& stops) {
    const auto isIn = [](const auto& list, const TimelineStop& stop) {
        return std::ranges::any_of(list, [&](const auto& other) { return other.isSame(stop); });
    };
    for (int row = rowCount() - 1; row >= 0; --row) {
        if (!isIn(stops, m_stops[static_cast<std::size_t>(row)])) {
            beginRemoveRows({}, row, row);
            m_stops.erase(m_stops.begin() + row);
            endRemoveRows();
        }
    }
    for (std::size_t i = 0; i < stops.size(); ++i) {
        const auto at = m_stops.begin() + static_cast<std::ptrdiff_t>(i);
        const auto row = static_cast<int>(i);
        const auto found = std::find_if(
            at, m_stops.end(), [&](const TimelineStop& stop) { return stop.isSame(stops[i]); });
        if (found == m_stops.end()) {
            beginInsertRows({}, row, row);
            m_stops.insert(at, stops[i]);
            endInsertRows();
        } else if (found != at) {
            const auto from = static_cast<int>(found - m_stops.begin());
            beginMoveRows({}, from, from, {}, row);
            std::rotate(at, found, found + 1);
            endMoveRows();
        }
    }
}

} // namespace tavi
