#pragma once

#include "editor/EditorViewModel.h"

#include <QObject>
#include <QString>

namespace tavi {

/// The second tab of the inspector: the generation of zooms, and the keyframe that is selected.
/// Thread: main. The editor outlives it.
class ZoomTabViewModel : public QObject {
    Q_OBJECT
    Q_PROPERTY(double intensity READ intensity WRITE setIntensity NOTIFY intensityChanged)
    Q_PROPERTY(QString intensityText READ intensityText NOTIFY intensityChanged)
    Q_PROPERTY(bool hasKeyframes READ hasKeyframes NOTIFY keyframeChanged)
    Q_PROPERTY(QString resultText READ resultText NOTIFY resultChanged)
    Q_PROPERTY(bool hasSelection READ hasSelection NOTIFY keyframeChanged)
    Q_PROPERTY(QString title READ title NOTIFY keyframeChanged)
    Q_PROPERTY(QString startText READ startText NOTIFY keyframeChanged)
    Q_PROPERTY(QString endText READ endText NOTIFY keyframeChanged)
    Q_PROPERTY(double speed READ speed WRITE setSpeed NOTIFY keyframeChanged)
    Q_PROPERTY(QString speedText READ speedText NOTIFY keyframeChanged)
    Q_PROPERTY(int easing READ easing WRITE setEasing NOTIFY keyframeChanged)
    Q_PROPERTY(QStringList easings READ easings CONSTANT)
    Q_PROPERTY(QStringList details READ details NOTIFY keyframeChanged)

public:
    explicit ZoomTabViewModel(EditorViewModel& editor, QObject* parent = nullptr);

    double intensity() const; ///< 0 to 1 in tenths.
    void setIntensity(double intensity);
    QString intensityText() const;
    bool hasKeyframes() const { return !m_editor.project().keyframes.empty(); }
    QString resultText() const; ///< Of the latest generation; empty without keyframes of it.

    // Of the selected keyframe; empty or 0 without one.
    bool hasSelection() const { return selected() != nullptr; }
    QString title() const; ///< "KEYFRAME 2": its place from 1.
    QString startText() const;
    QString endText() const;
    double speed() const; ///< Seconds of its ramps, 0.1 to 2.
    void setSpeed(double seconds);
    QString speedText() const;
    int easing() const; ///< Index into easings().
    void setEasing(int index);
    QStringList easings() const;
    QStringList details() const; ///< Width, height, x and y of its rectangle, whole pixels.

    Q_INVOKABLE void deleteKeyframe();

signals:
    void intensityChanged();
    void keyframeChanged();
    void resultChanged();

private:
    const ZoomKeyframe* selected() const;

    EditorViewModel& m_editor;
};

} // namespace tavi
