#include "editor/EditorViewModel.h"

#include "editor/KeyframeEdits.h"
#include "editor/TrimEdits.h"
#include "project/RecordingFolder.h"

#include <QPointer>

#include <algorithm>
#include <utility>

namespace tavi {

namespace {

constexpr double kAutosaveDelay = 0.5;  ///< Seconds after the last change.
constexpr double kFrameStep = 1.0 / 30; ///< Seconds of an arrow key.
constexpr double kBigStep = 1.0;        ///< Seconds of an arrow key with Shift.

/// Up to here (seconds) the camera's file plays as it is: less than a frame.
constexpr double kNoticeableDelay = 0.01;

} // namespace

EditorViewModel::EditorViewModel(const std::filesystem::path& folder, EditorPorts ports,
                                 QObject* parent)
    : QObject(parent),
      m_folder(folder),
      m_ports(std::move(ports)),
      m_store(folder, m_ports.recordingsDirectory),
      m_project(openProject(folder, m_ports.recordingsDirectory)),
      m_autoZoomViewModel(m_ports.main, m_ports.background),
      m_playback({m_ports.players, m_ports.clock,
                  [this]() -> const TrimState& { return m_project.trimState; }},
                 folder, playbackObservers()) {
    if (m_playback.hasCamera()) {
        // Kept on purpose: also for a take that was saved with its camera off.
        m_project.cameraSettings.enabled = true;
    }
    loadVideoAsset();
    loadRecordingMetadata(m_project, folder, m_ports.readImage);
    if (m_playback.hasCamera() && m_project.cameraStartDelay > kNoticeableDelay) {
        m_playback.awaitCamera();
        prepareCameraOffset();
    }
    autosaveLater(); // Kept on purpose: an opened take is saved once, edited or not.
}

EditorPlayback::Observers EditorViewModel::playbackObservers() {
    return {[this] { emit currentTimeChanged(); }, [this] { emit isPlayingChanged(); },
            [this] { emit isCameraReadyChanged(); }};
}

/// Calls `then` later, with null for a file that can't be opened.
void EditorViewModel::openAsset(const char* file, std::function<void(const Asset*)> then) {
    // `self` is looked at on the main thread only.
    m_ports.background.post([self = QPointer(this), path = m_folder / file, &media = m_ports.media,
                             &main = m_ports.main, then = std::move(then)] {
        main.post([self, then, asset = media.openAsset(path)] {
            if (self) {
                then(asset ? &*asset : nullptr);
            }
        });
    });
}

void EditorViewModel::loadVideoAsset() {
    openAsset(take::kVideo, [this](const Asset* asset) {
        if (asset == nullptr) {
            m_isVideoUnreadable = true;
            return;
        }
        m_duration = asset->duration.seconds();
        m_playback.setDuration(m_duration);
        emit durationChanged();
        emit keptDurationChanged();
        // Kept on purpose: zooms of older versions are completed for the width above, before
        // the video's own is known.
        normalizeKeyframes();
        if (!asset->videoTracks.empty()) {
            m_videoSize = asset->videoTracks.front().naturalSize;
            emit videoSizeChanged();
            emit outputSizeChanged();
        }
    });
}

void EditorViewModel::prepareCameraOffset() {
    const MediaTime start = MediaTime::fromSeconds(m_project.cameraStartDelay);
    openAsset(take::kCamera, [this, start](const Asset* asset) {
        if (asset != nullptr && !asset->videoTracks.empty()) {
            m_playback.cameraIsReady(
                {asset->path, DelayedTrack{asset->videoTracks.front(), asset->duration, start}});
        }
    });
}

void EditorViewModel::normalizeKeyframes() {
    if (KeyframeEdits::normalize(m_project.keyframes, m_duration, m_videoSize.width)) {
        projectWasChanged();
        persistProject();
    }
}

Size EditorViewModel::outputSize() const {
    const OutputSettings& settings = m_project.outputSettings;
    return resolvedOutputSize(settings.resolution, settings.autoAspectRatio, m_videoSize);
}

double EditorViewModel::outputAspectRatio() const {
    const Size size = outputSize();
    return size.width / size.height;
}

double EditorViewModel::keptDuration() const {
    return totalLength(keptRanges(m_project.trimState, m_duration));
}

void EditorViewModel::setCanvasMode(CanvasMode mode) {
    if (m_canvasMode != mode) {
        m_canvasMode = mode;
        emit canvasModeChanged();
    }
}

void EditorViewModel::setAutoZoomSettings(const AutoZoomSettings& settings) {
    if (m_autoZoomSettings != settings) {
        m_autoZoomSettings = settings;
        emit autoZoomSettingsChanged();
    }
}

void EditorViewModel::changeProject(const std::function<void(EditProject&)>& change) {
    change(m_project);
    projectWasChanged();
}

void EditorViewModel::projectWasChanged() {
    autosaveLater();
    emit projectChanged();
    emit outputSizeChanged();
    emit keptDurationChanged();
}

void EditorViewModel::autosaveLater() {
    m_autosave = m_ports.timers.repeat(kAutosaveDelay, [this] {
        const auto once = std::move(m_autosave);
        persistProject();
    });
}

void EditorViewModel::projectWasEdited() {
    projectWasChanged();
    persistProject();
}

void EditorViewModel::addKeyframe() {
    if (KeyframeEdits::addKeyframe(m_project.keyframes, currentTime(), m_duration, m_videoSize)) {
        projectWasEdited();
    }
}

void EditorViewModel::updateKeyframe(const ZoomKeyframe& keyframe) {
    if (KeyframeEdits::updateKeyframe(m_project.keyframes, keyframe)) {
        projectWasEdited();
    }
}

void EditorViewModel::deleteKeyframe(const ZoomKeyframe& keyframe) {
    const Uuid id = keyframe.id; // the argument may be one of those that are removed
    std::erase_if(m_project.keyframes,
                  [id](const ZoomKeyframe& stored) { return stored.id == id; });
    if (m_selectedKeyframeID == id) {
        setSelection({});
    }
    projectWasEdited();
}

void EditorViewModel::selectKeyframe(std::optional<Uuid> id) {
    setSelection(id);
    const auto found = std::ranges::find(m_project.keyframes, id, &ZoomKeyframe::id);
    if (found != m_project.keyframes.end()) {
        seek(found->timestamp);
    }
}

void EditorViewModel::addWaypoint(double centerX, double centerY) {
    if (m_selectedKeyframeID &&
        KeyframeEdits::addWaypoint(m_project.keyframes, *m_selectedKeyframeID,
                                   {currentTime(), centerX, centerY})) {
        projectWasEdited();
    }
}

void EditorViewModel::addZoomCurvePoint(Uuid keyframe, const ZoomCurvePoint& point) {
    if (KeyframeEdits::addZoomCurvePoint(m_project.keyframes, keyframe, point)) {
        projectWasEdited();
    }
}

void EditorViewModel::updateZoomCurvePoint(Uuid keyframe, const ZoomCurvePoint& point) {
    if (KeyframeEdits::updateZoomCurvePoint(m_project.keyframes, keyframe, point)) {
        projectWasChanged();
    }
}

void EditorViewModel::deleteZoomCurvePoint(Uuid keyframe, Uuid point) {
    if (KeyframeEdits::deleteZoomCurvePoint(m_project.keyframes, keyframe, point)) {
        projectWasEdited();
    }
}

void EditorViewModel::generateKeyframes() {
    const auto inputs = UnifiedAutoZoom::prepareInputs(m_project, m_videoSize, m_duration,
                                                       m_autoZoomSettings.aggressiveness);
    m_autoZoomViewModel.generate(m_project.cursorEvents, inputs,
                                 [this](std::vector<ZoomKeyframe> keyframes) {
                                     m_project.keyframes = std::move(keyframes);
                                     setSelection({});
                                     projectWasEdited();
                                 });
}

void EditorViewModel::clearKeyframes() {
    m_project.keyframes.clear();
    setSelection({});
    projectWasEdited();
}

void EditorViewModel::setTrimIn(double time) {
    TrimEdits::setTrimIn(m_project.trimState, time);
    projectWasEdited();
}

void EditorViewModel::setTrimOut(double time) {
    if (TrimEdits::setTrimOut(m_project.trimState, time, m_duration)) {
        projectWasEdited();
    }
}

void EditorViewModel::toggleCut() {
    if (!m_cutStartMarker) {
        setCutStart(currentTime());
        return;
    }
    if (TrimEdits::addCut(m_project.trimState, *m_cutStartMarker, currentTime())) {
        projectWasEdited();
    }
    cancelCut();
}

void EditorViewModel::cancelCut() {
    setCutStart({});
}

void EditorViewModel::removeCut(Uuid id) {
    std::erase_if(m_project.trimState.cutSegments,
                  [id](const TimeRange& cut) { return cut.id == id; });
    projectWasEdited();
}

void EditorViewModel::resetTrims() {
    m_project.trimState = {};
    cancelCut();
    projectWasEdited();
}

bool EditorViewModel::handleKey(int key, int modifiers) {
    const bool isBig = (modifiers & Qt::ShiftModifier) != 0;
    const double length = isBig ? kBigStep : kFrameStep;
    switch (key) {
    case Qt::Key_Space:
        later([this] { togglePlayback(); });
        return true;
    case Qt::Key_B:
        if ((modifiers & Qt::ControlModifier) == 0) {
            return false;
        }
        later([this] { toggleCut(); });
        return true;
    case Qt::Key_Escape:
        later([this] { escape(); });
        return true;
    case Qt::Key_Left:
        later([this, length] { step(-length); });
        return true;
    case Qt::Key_Right:
        later([this, length] { step(length); });
        return true;
    default:
        return false;
    }
}

void EditorViewModel::later(std::function<void()> action) {
    m_ports.main.post([self = QPointer(this), action = std::move(action)] {
        if (self) {
            action();
        }
    });
}

void EditorViewModel::escape() {
    if (isMarkingCut()) {
        cancelCut();
    } else {
        setSelection({});
    }
}

void EditorViewModel::step(double seconds) {
    if (isPlaying()) {
        togglePlayback();
    }
    const double time = currentTime() + seconds;
    seek(seconds < 0 ? std::max(0.0, time) : std::min(m_duration, time));
}

void EditorViewModel::setSelection(std::optional<Uuid> id) {
    if (m_selectedKeyframeID != id) {
        m_selectedKeyframeID = id;
        emit selectedKeyframeIDChanged();
    }
}

void EditorViewModel::setCutStart(std::optional<double> time) {
    if (m_cutStartMarker != time) {
        m_cutStartMarker = time;
        emit cutMarkingChanged();
    }
}

} // namespace tavi
