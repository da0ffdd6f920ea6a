#pragma once

#include "editor/EditorViewModel.h"
#include "editor/TimelineStops.h"

#include <QAbstractListModel>

#include <functional>
#include <vector>

namespace tavi {

/// The timeline for the keyboard and assistive technology: one row for each thing that can be
/// reached, and what can be done with it. The playhead, which the arrow keys move, takes the
/// pointer's part: things are put where it stands.
/// Thread: main. The editor outlives it.
class TimelineStopsViewModel : public QAbstractListModel {
    Q_OBJECT

public:
    enum Role {
        NameRole = Qt::UserRole, ///< What it is and where it stands.
        HintRole,                ///< What the keys do.
        LaneRole,                ///< 0: the upper one.
        PlaceRole,               ///< QRectF, points from the upper left corner of the lane's track.
    };

    /// `model` tells the timeline as it is at the moment of the call.
    TimelineStopsViewModel(EditorViewModel& editor, std::function<TimelineModel()> model,
                           QObject* parent = nullptr);

    int rowCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QHash<int, QByteArray> roleNames() const override;

    /// Selects a keyframe, shows a cut, adds a point to a curve, and puts everything else where
    /// the playhead stands.
    Q_INVOKABLE void activate(int row);
    /// Raises or lowers the level of a point by tenths.
    Q_INVOKABLE void nudge(int row, int tenths);
    /// Deletes a keyframe or a point, restores a cut.
    Q_INVOKABLE void remove(int row);

    /// The timeline may be another.
    void refresh();

private:
    const ZoomKeyframe* keyframeOf(const TimelineStop& stop) const;
    const ZoomCurvePoint* pointOf(const TimelineStop& stop) const;
    const TimeRange* cutOf(const TimelineStop& stop) const;
    QString name(const TimelineStop& stop) const;
    QString keyframeName(const TimelineStop& stop) const;
    QString hint(const TimelineStop& stop) const;
    void updateKeyframe(const TimelineStop& stop);
    void addPoint(const ZoomKeyframe& keyframe);
    void reconcile(const std::vector<TimelineStop>& stops);

    EditorViewModel& m_editor;
    std::function<TimelineModel()> m_model;
    std::vector<TimelineStop> m_stops;
};

} // namespace tavi
