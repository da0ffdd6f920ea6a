#pragma once

#include "autozoom/AutoZoomViewModel.h"
#include "base/Clock.h"
#include "base/Executor.h"
#include "base/Timers.h"
#include "editor/CanvasMode.h"
#include "editor/EditorPlayback.h"
#include "editor/ProjectStore.h"
#include "media/MediaLibrary.h"
#include "project/EditProject.h"
#include "project/TakeLoader.h"

#include <QObject>

#include <filesystem>
#include <functional>
#include <memory>
#include <optional>

namespace tavi {

/// What an editor stands on. All outlive it.
struct EditorPorts {
    MediaPlayers& players;
    MediaLibrary& media;
    ReadImage readImage; ///< Reads cursor images, at opening.
    const Clock& clock;
    Executor& main;
    Executor& background; ///< Opens media and runs the analysis.
    Timers& timers;
    std::filesystem::path recordingsDirectory; ///< Holds `settings.json`.
};

/// The open take: its edit, its players, the playhead, the selection, and every command on
/// them. There is no undo: each command is saved at once, or half a second after it where told so.
///
/// Opening reads `project.json`, `metadata.json` and the cursor images at once; the length and the
/// size of the video come a moment later.
/// Errors: none is shown. A file that can't be read leaves the defaults told at the fields; what
///         can't be written is tried again by the next save.
/// Thread: main. Times are seconds of source video, not of the trimmed film.
class EditorViewModel : public QObject {
    Q_OBJECT
    Q_PROPERTY(double currentTime READ currentTime NOTIFY currentTimeChanged)
    Q_PROPERTY(double duration READ duration NOTIFY durationChanged)
    Q_PROPERTY(bool isPlaying READ isPlaying NOTIFY isPlayingChanged)
    Q_PROPERTY(bool isMarkingCut READ isMarkingCut NOTIFY cutMarkingChanged)
    Q_PROPERTY(bool isCameraReady READ isCameraReady NOTIFY isCameraReadyChanged)
    Q_PROPERTY(double outputAspectRatio READ outputAspectRatio NOTIFY outputSizeChanged)
    Q_PROPERTY(double keptDuration READ keptDuration NOTIFY keptDurationChanged)

public:
    EditorViewModel(const std::filesystem::path& folder, EditorPorts ports,
                    QObject* parent = nullptr);

    const EditProject& project() const { return m_project; }
    double currentTime() const { return m_playback.currentTime(); }
    double duration() const { return m_duration; } ///< 0 until it is known.
    bool isPlaying() const { return m_playback.isPlaying(); }
    CanvasMode canvasMode() const { return m_canvasMode; }
    const std::optional<Uuid>& selectedKeyframeID() const { return m_selectedKeyframeID; }
    Size videoSize() const { return m_videoSize; } ///< 1920x1080 until it is known.

    /// True once the video turned out to be none that can be opened, which nobody is told.
    bool isVideoUnreadable() const { return m_isVideoUnreadable; }
    AutoZoomViewModel& autoZoomViewModel() { return m_autoZoomViewModel; }
    const AutoZoomViewModel& autoZoomViewModel() const { return m_autoZoomViewModel; }
    const AutoZoomSettings& autoZoomSettings() const { return m_autoZoomSettings; }
    bool isMarkingCut() const { return m_cutStartMarker.has_value(); }
    const std::optional<double>& cutStartMarker() const { return m_cutStartMarker; }

    /// False while the delayed item of the camera is made; nothing plays then. Kept on purpose:
    /// it stays false where that can't be made.
    bool isCameraReady() const { return m_playback.isCameraReady(); }

    /// The sizes below follow from the project's options and the video.
    Size outputSize() const;
    double outputAspectRatio() const;
    double keptDuration() const; ///< Seconds that survive trim and cuts.

    const EditorPlayback& playback() const { return m_playback; }

    void setCanvasMode(CanvasMode mode);
    void setAutoZoomSettings(const AutoZoomSettings& settings);

    /// Changes the project's options, or anything else of it; saved half a second
    /// after the last change.
    void changeProject(const std::function<void(EditProject&)>& change);

    /// Starts or pauses both players; see EditorPlayback.
    Q_INVOKABLE void togglePlayback() { m_playback.togglePlayback(); }

    /// Puts the playhead there at once; the pictures follow. Exact.
    Q_INVOKABLE void seek(double time) { m_playback.seek(time); }

    /// Writes `project.json` now, then persistDefaults().
    void persistProject() const { m_store.persistProject(m_project); }

    /// Makes the project's options the defaults of new takes.
    void persistDefaults() const { m_store.persistDefaults(m_project); }

    // Commands. Where nothing else is told the whole project is saved at once.

    /// A zoom of two seconds at the playhead; nothing where one is there already.
    Q_INVOKABLE void addKeyframe();

    /// Replaces the keyframe of that id, kept apart from its neighbours.
    void updateKeyframe(const ZoomKeyframe& keyframe);

    /// Kept on purpose: saves also where nothing has that id.
    void deleteKeyframe(const ZoomKeyframe& keyframe);

    /// Selects and seeks to its start; nothing is saved. An id that no keyframe has is
    /// selected all the same.
    void selectKeyframe(std::optional<Uuid> id);

    /// A point of the selected keyframe's pan at the playhead, in video pixels with y
    /// upwards; nothing where the playhead is outside of it.
    Q_INVOKABLE void addWaypoint(double centerX, double centerY);

    void addZoomCurvePoint(Uuid keyframe, const ZoomCurvePoint& point);
    void updateZoomCurvePoint(Uuid keyframe, const ZoomCurvePoint& point); ///< Saved later.
    void deleteZoomCurvePoint(Uuid keyframe, Uuid point);

    /// Replaces all keyframes by those of the analysis, when it is done; manual ones too.
    Q_INVOKABLE void generateKeyframes();

    Q_INVOKABLE void clearKeyframes();
    Q_INVOKABLE void setTrimIn(double time);
    Q_INVOKABLE void setTrimOut(double time);

    /// Begins a cut at the playhead, or ends it there.
    Q_INVOKABLE void toggleCut();
    Q_INVOKABLE void cancelCut(); ///< Forgets a cut that was begun; nothing is saved.
    void removeCut(Uuid id);
    Q_INVOKABLE void resetTrims();

    /// A key that was pressed while no text field has the focus: `key` is a Qt::Key, `modifiers`
    /// Qt::KeyboardModifiers, Ctrl standing for the command key. True where it is an editor's
    /// key; what it does is done a moment later.
    Q_INVOKABLE bool handleKey(int key, int modifiers);

signals:
    void projectChanged();
    void currentTimeChanged();
    void durationChanged();
    void isPlayingChanged();
    void canvasModeChanged();
    void selectedKeyframeIDChanged();
    void videoSizeChanged();
    void autoZoomSettingsChanged();
    void cutMarkingChanged();
    void isCameraReadyChanged();
    void outputSizeChanged();
    void keptDurationChanged();

private:
    EditorPlayback::Observers playbackObservers();
    void openAsset(const char* file, std::function<void(const Asset*)> then);
    void loadVideoAsset();
    void prepareCameraOffset();
    void normalizeKeyframes();
    void autosaveLater();
    void projectWasChanged(); ///< Saved later.
    void projectWasEdited();  ///< Saved at once.
    void setSelection(std::optional<Uuid> id);
    void setCutStart(std::optional<double> time);
    void later(std::function<void()> action);
    void escape();
    void step(double seconds);

    std::filesystem::path m_folder;
    EditorPorts m_ports;
    ProjectStore m_store;
    EditProject m_project;
    double m_duration = 0;
    CanvasMode m_canvasMode = CanvasMode::preview;
    std::optional<Uuid> m_selectedKeyframeID;
    Size m_videoSize{1920, 1080};
    bool m_isVideoUnreadable = false;
    AutoZoomViewModel m_autoZoomViewModel;
    AutoZoomSettings m_autoZoomSettings;
    std::optional<double> m_cutStartMarker;
    EditorPlayback m_playback;
    std::unique_ptr<Timers::Timer> m_autosave; ///< While a change waits to be saved.
};

} // namespace tavi
