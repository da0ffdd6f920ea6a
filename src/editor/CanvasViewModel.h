#pragma once

#include "editor/CanvasGeometry.h"
#include "editor/CrosshairViewModel.h"
#include "editor/EditorViewModel.h"
#include "editor/PreviewComposer.h"

#include <QObject>
#include <QRectF>
#include <QSizeF>
#include <QVariant>

#include <memory>

namespace tavi {

/// The picture on the editor's canvas: composed in the background for each change of playhead,
/// video picture or options. While one is being composed, changes are remembered and not queued:
/// what is composed next is the newest.
/// Thread: main. The editor and its executors outlive it.
class CanvasViewModel : public QObject {
    Q_OBJECT
    /// Points.
    Q_PROPERTY(QSizeF size READ size WRITE setSize NOTIFY frameChanged)
    Q_PROPERTY(double pixelRatio READ pixelRatio WRITE setPixelRatio NOTIFY frameChanged)
    /// Where the picture stands on the canvas, in points from its upper left corner.
    Q_PROPERTY(QRectF frame READ frame NOTIFY frameChanged)
    /// The part of the canvas that the padding leaves to the video.
    Q_PROPERTY(QRectF content READ content NOTIFY contentChanged)
    /// A PixelBufferPtr of `frame`'s device pixels; null before the first is composed.
    Q_PROPERTY(QVariant picture READ picture NOTIFY pictureChanged)
    /// True while the background moves by itself: then tick() is wanted 30 times a second.
    Q_PROPERTY(bool isAnimated READ isAnimated NOTIFY isAnimatedChanged)
    Q_PROPERTY(tavi::CrosshairViewModel* crosshair READ crosshair CONSTANT)

public:
    CanvasViewModel(EditorViewModel& editor, Executor& main, Executor& background,
                    const Clock& clock, QObject* parent = nullptr);
    ~CanvasViewModel() override;

    QSizeF size() const { return m_size; }
    void setSize(QSizeF size);
    double pixelRatio() const { return m_pixelRatio; }
    void setPixelRatio(double ratio);
    QRectF frame() const;
    QRectF content() const;
    QVariant picture() const;
    const PixelBufferPtr& pixels() const { return m_picture; }
    bool isAnimated() const;
    CrosshairViewModel* crosshair() { return &m_crosshair; }

    /// The next picture of a moving background.
    Q_INVOKABLE void tick();

    /// A click at a place of the frame (points from its upper left corner): a point of the
    /// selected keyframe's pan.
    Q_INVOKABLE void tap(double x, double y);

signals:
    void frameChanged();
    void contentChanged();
    void pictureChanged();
    void isAnimatedChanged();

private:
    /// What the background works on: one picture at a time.
    struct Work;

    FrameSize frameSize() const;
    void takeLog();
    void frameMayBeOther();
    void projectMayBeOther();
    void compose();
    void composed(PixelBufferPtr picture);
    void addPoint(QPointF place);

    EditorViewModel& m_editor;
    Executor& m_main;
    Executor& m_background;
    const Clock& m_clock;
    CrosshairViewModel m_crosshair;
    QSizeF m_size;
    double m_pixelRatio = 1;
    CanvasGeometry m_geometry;
    std::shared_ptr<const EditProject> m_scene; ///< The options, without the log.
    std::shared_ptr<Work> m_work;
    PixelBufferPtr m_picture;
    bool m_isComposing = false;
    bool m_isStale = false; ///< Something changed while a picture was being composed.
};

} // namespace tavi
