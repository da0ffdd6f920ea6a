#pragma once

#include "editor/EditorViewModel.h"
#include "editor/TimelineGestures.h"
#include "editor/TimelineStopsViewModel.h"

#include <QObject>
#include <QString>

#include <optional>

namespace tavi {

/// The timeline of an open take: where its playhead is, what the pointer does on it, and what is
/// under the pointer. Its marks are drawn from model().
/// Thread: main. Places are points from the upper left corner of a lane's track. The editor
/// outlives it.
class TimelineViewModel : public QObject {
    Q_OBJECT
    Q_PROPERTY(double trackWidth READ trackWidth WRITE setTrackWidth NOTIFY marksChanged)
    Q_PROPERTY(bool hasContent READ hasContent NOTIFY marksChanged)
    Q_PROPERTY(double playheadX READ playheadX NOTIFY playheadChanged)
    Q_PROPERTY(tavi::TimelineStopsViewModel* stops READ stops CONSTANT)

public:
    enum Pointer { Arrow, ResizeLeftRight, OpenHand };
    Q_ENUM(Pointer)

    explicit TimelineViewModel(EditorViewModel& editor, QObject* parent = nullptr);

    double trackWidth() const { return m_trackWidth; }
    void setTrackWidth(double width);
    bool hasContent() const { return m_editor.duration() > 0; }
    double playheadX() const;

    TimelineModel model() const;
    TimelineStopsViewModel* stops() { return &m_stops; }
    const EditorViewModel& editor() const { return m_editor; }
    const TimelineGestures& gestures() const { return m_gestures; }

    // The pointer, with its button down. `lane` is 0 for the upper and 1 for the lower one.
    Q_INVOKABLE void press(int lane, double x, double y);
    Q_INVOKABLE void move(double x, double y);
    Q_INVOKABLE void release(double x, double y);
    Q_INVOKABLE void cancel();

    /// The shape of the pointer at a place.
    Q_INVOKABLE tavi::TimelineViewModel::Pointer pointerAt(int lane, double x, double y) const;

    /// What a menu at this place is about: "cut", "curvePoint" or nothing. The commands
    /// below are for the last one asked for.
    Q_INVOKABLE QString openMenu(int lane, double x, double y);
    Q_INVOKABLE void restoreSection();
    Q_INVOKABLE void deletePoint();

signals:
    void marksChanged(); ///< Everything but the playhead.
    void playheadChanged();

private:
    TimelineGestures::Callbacks callbacks();

    EditorViewModel& m_editor;
    TimelineGestures m_gestures;
    TimelineStopsViewModel m_stops;
    double m_trackWidth = 0;
    std::optional<Uuid> m_menuCut;
    TimelineHit m_menuHit;
};

} // namespace tavi
