#pragma once

#include "editor/EditorViewModel.h"

#include <QObject>
#include <QPointF>
#include <QString>

#include <functional>

namespace tavi {

/// The keyboard's pointer on the canvas. press() begins to point, the arrow keys move the crosshair
/// over the video's part of the canvas, press() again adds a point to the selected keyframe's pan.
/// Pointing ends with end(), or when nothing could be added any more.
/// Thread: main. The editor outlives it.
class CrosshairViewModel : public QObject {
    Q_OBJECT
    Q_PROPERTY(bool isPointing READ isPointing NOTIFY changed)
    /// Shares of the video's part of the canvas, from its upper left corner: 0 to 1.
    Q_PROPERTY(QPointF place READ place NOTIFY changed)
    /// What the keys do, and where the crosshair stands.
    Q_PROPERTY(QString hint READ hint NOTIFY changed)

public:
    /// `add` is called with the place of a new point.
    CrosshairViewModel(EditorViewModel& editor, std::function<void(QPointF)> add,
                       QObject* parent = nullptr);

    bool isPointing() const { return m_isPointing; }
    QPointF place() const { return m_place; }
    QString hint() const;

    /// Whether a point would be taken: the playhead stands in the selected keyframe.
    bool canPoint() const;

    Q_INVOKABLE void press();
    /// Steps to the right and down; big ones are ten times as long.
    Q_INVOKABLE void move(int right, int down, bool isBig);
    Q_INVOKABLE void end();

signals:
    void changed();

private:
    void editorChanged();

    EditorViewModel& m_editor;
    std::function<void(QPointF)> m_add;
    QPointF m_place{0.5, 0.5};
    bool m_isPointing = false;
    bool m_couldPoint = false;
};

} // namespace tavi
