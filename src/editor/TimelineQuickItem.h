#pragma once

#include "editor/TimelineViewModel.h"

#include <QColor>
#include <QQuickPaintedItem>

namespace tavi {

/// Paints one layer of the timeline's marks, over the whole timeline. The playhead, the hover line
/// and the played part are items of their own between the layers, so that nothing is painted
/// while the take plays.
/// Thread: main; paint() while the main thread waits.
class TimelineQuickItem : public QQuickPaintedItem {
    Q_OBJECT
    QML_NAMED_ELEMENT(TimelineLayer)
    Q_PROPERTY(
        tavi::TimelineViewModel* timeline READ timeline WRITE setTimeline NOTIFY timelineChanged)
    Q_PROPERTY(Layer part MEMBER m_layer NOTIFY lookChanged)
    Q_PROPERTY(QColor background MEMBER m_background NOTIFY lookChanged)
    Q_PROPERTY(QColor surface MEMBER m_surface NOTIFY lookChanged)
    Q_PROPERTY(QColor accent MEMBER m_accent NOTIFY lookChanged)
    Q_PROPERTY(QColor danger MEMBER m_danger NOTIFY lookChanged)
    Q_PROPERTY(QColor secondaryText MEMBER m_secondaryText NOTIFY lookChanged)
    Q_PROPERTY(QString family MEMBER m_family NOTIFY lookChanged)

public:
    enum Layer {
        Ground,   ///< Ruler, what the trim leaves out, cuts, curves.
        Marks,    ///< Keyframes and curve points.
        Playhead, ///< The playhead alone, at the middle of its own width.
        Handles,  ///< The trim's handles.
    };
    Q_ENUM(Layer)

    explicit TimelineQuickItem(QQuickItem* parent = nullptr);

    TimelineViewModel* timeline() const { return m_timeline; }
    void setTimeline(TimelineViewModel* timeline);

    void paint(QPainter* painter) override;

signals:
    void timelineChanged();
    void lookChanged();

private:
    void paintRuler(QPainter& painter) const;
    void paintTrim(QPainter& painter) const;
    void paintCut(QPainter& painter, const TimelineSpan& span) const;
    void paintPendingCut(QPainter& painter) const;
    void paintRamps(QPainter& painter, const ZoomKeyframe& keyframe) const;
    void paintBody(QPainter& painter, const ZoomKeyframe& keyframe) const;
    void paintEdges(QPainter& painter, const ZoomKeyframe& keyframe) const;
    void paintEdge(QPainter& painter, double x, bool isDragged) const;
    void paintCurve(QPainter& painter, const ZoomKeyframe& keyframe) const;
    void paintCurvePoints(QPainter& painter, const ZoomKeyframe& keyframe) const;
    void paintPlayhead(QPainter& painter) const;
    void paintTrimHandle(QPainter& painter, double x, bool isDragged, bool isTrimmed) const;

    TimelineViewModel* m_timeline = nullptr;
    Layer m_layer = Ground;
    QColor m_background;
    QColor m_surface;
    QColor m_accent;
    QColor m_danger;
    QColor m_secondaryText;
    QString m_family;
};

/// Makes the items of this folder known to QML; once, before the first engine loads its screens.
void registerEditorItems();

} // namespace tavi
