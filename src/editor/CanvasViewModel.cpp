#include "editor/CanvasViewModel.h"

#include "media/PixelBufferPool.h"

#include <QPointer>

#include <cmath>
#include <mutex>
#include <optional>
#include <utility>

namespace tavi {

namespace {

/// The options of a project: what a picture depends on besides the log, which is long.
std::shared_ptr<const EditProject> sceneOf(const EditProject& project) {
    auto scene = std::make_shared<EditProject>();
    scene->keyframes = project.keyframes;
    scene->outputSettings = project.outputSettings;
    scene->cursorSettings = project.cursorSettings;
    scene->appearanceSettings = project.appearanceSettings;
    scene->cameraSettings = project.cameraSettings;
    return scene;
}

/// Free pictures of the canvas that are used again: fresh memory of that size costs more than to
/// compose in it. One is shown and one on its way there.
constexpr std::size_t kKeptPictures = 2;

int evenPixels(double length) {
    return static_cast<int>(std::floor(length / 2)) * 2;
}

} // namespace

struct CanvasViewModel::Work {
    std::mutex mutex; ///< The composer is the background's, but for a click's question.
    PreviewComposer composer;
    std::optional<PixelBufferPool> pictures; ///< Of the size that is composed.
};

CanvasViewModel::CanvasViewModel(EditorViewModel& editor, Executor& main, Executor& background,
                                 const Clock& clock, QObject* parent)
    : QObject(parent),
      m_editor(editor),
      m_main(main),
      m_background(background),
      m_clock(clock),
      m_crosshair(editor, [this](QPointF place) { addPoint(place); }),
      m_scene(sceneOf(editor.project())),
      m_work(std::make_shared<Work>()) {
    connect(&editor, &EditorViewModel::projectChanged, this, &CanvasViewModel::projectMayBeOther);
    connect(&editor, &EditorViewModel::videoSizeChanged, this, [this] {
        takeLog();
        frameMayBeOther();
    });
    connect(&editor, &EditorViewModel::currentTimeChanged, this, &CanvasViewModel::compose);
    connect(&editor, &EditorViewModel::canvasModeChanged, this, &CanvasViewModel::compose);
    connect(&editor, &EditorViewModel::isPlayingChanged, this, &CanvasViewModel::compose);
    takeLog();
    editor.playback().player().setPictureObserver([this] { compose(); });
    if (MediaPlayer* camera = editor.playback().cameraPlayer()) {
        camera->setPictureObserver([this] {
            if (!m_editor.isPlaying()) { // else the playhead brings it along
                compose();
            }
        });
    }
}

CanvasViewModel::~CanvasViewModel() {
    m_editor.playback().player().setPictureObserver({});
    if (MediaPlayer* camera = m_editor.playback().cameraPlayer()) {
        camera->setPictureObserver({});
    }
}

void CanvasViewModel::takeLog() {
    const std::lock_guard lock(m_work->mutex);
    m_work->composer.setLog(m_editor.project(), m_editor.videoSize());
}

void CanvasViewModel::setSize(QSizeF size) {
    if (m_size != size) {
        m_size = size;
        frameMayBeOther();
    }
}

void CanvasViewModel::setPixelRatio(double ratio) {
    if (m_pixelRatio != ratio && ratio > 0) {
        m_pixelRatio = ratio;
        frameMayBeOther();
    }
}

void CanvasViewModel::frameMayBeOther() {
    const CanvasGeometry geometry =
        canvasGeometry({m_size.width(), m_size.height()}, m_editor.outputSize());
    if (m_geometry != geometry) {
        m_geometry = geometry;
        emit frameChanged();
    }
    emit contentChanged();
    compose();
}

void CanvasViewModel::projectMayBeOther() {
    const bool wasAnimated = isAnimated();
    m_scene = sceneOf(m_editor.project());
    if (wasAnimated != isAnimated()) {
        emit isAnimatedChanged();
    }
    frameMayBeOther();
}

FrameSize CanvasViewModel::frameSize() const {
    return {evenPixels(m_geometry.frame.width * m_pixelRatio),
            evenPixels(m_geometry.frame.height * m_pixelRatio)};
}

/// Put on whole pixels of the device, so that the picture is shown as it was composed.
QRectF CanvasViewModel::frame() const {
    const FrameSize pixels = frameSize();
    const auto onPixel = [this](double v) { return std::round(v * m_pixelRatio) / m_pixelRatio; };
    return {onPixel(m_geometry.frame.x), onPixel(m_geometry.frame.y), pixels.width / m_pixelRatio,
            pixels.height / m_pixelRatio};
}

QRectF CanvasViewModel::content() const {
    const QRectF all = frame();
    const double x = all.width() * m_scene->appearanceSettings.padding;
    const double y = all.height() * m_scene->appearanceSettings.padding;
    return all.adjusted(x, y, -x, -y);
}

QVariant CanvasViewModel::picture() const {
    return QVariant::fromValue(m_picture);
}

bool CanvasViewModel::isAnimated() const {
    const AppearanceSettings& look = m_scene->appearanceSettings;
    return look.animateBackground && look.backgroundStyle == BackgroundStyle::wallpaper;
}

void CanvasViewModel::tick() {
    compose();
}

void CanvasViewModel::tap(double x, double y) {
    Point point;
    {
        const std::lock_guard lock(m_work->mutex);
        point = m_work->composer.videoPointAt({x * m_pixelRatio, y * m_pixelRatio});
    }
    m_editor.addWaypoint(point.x, point.y);
}

/// `place` is a share of the content.
void CanvasViewModel::addPoint(QPointF place) {
    const QRectF room = content().translated(-frame().topLeft());
    tap(room.x() + place.x() * room.width(), room.y() + place.y() * room.height());
}

void CanvasViewModel::compose() {
    const FrameSize size = frameSize();
    if (size.width < 2 || size.height < 2) {
        return;
    }
    if (m_isComposing) {
        m_isStale = true;
        return;
    }
    m_isComposing = true;
    m_isStale = false;
    const EditorPlayback& playback = m_editor.playback();
    const bool hasBubble = playback.hasCamera() && m_scene->cameraSettings.enabled;
    PreviewMoment moment{playback.player().currentPicture(),
                         hasBubble ? playback.cameraPlayer()->currentPicture() : nullptr,
                         m_editor.currentTime(), m_clock.now().sinceReference,
                         m_editor.canvasMode()};
    // `self` is looked at on the main thread only.
    m_background.post([self = QPointer(this), &main = m_main, work = m_work, scene = m_scene,
                       videoSize = m_editor.videoSize(), size, ratio = m_pixelRatio,
                       moment = std::move(moment)] {
        std::shared_ptr<PixelBuffer> picture;
        {
            const std::lock_guard lock(work->mutex);
            if (!work->pictures || work->composer.frameSize() != size) {
                work->pictures.emplace(size.width, size.height, kKeptPictures);
            }
            picture = work->pictures->make();
            work->composer.setScene(*scene, videoSize, size, ratio);
            work->composer.compose(moment, *picture);
        }
        main.post([self, picture = PixelBufferPtr(std::move(picture))] {
            if (self) {
                self->composed(picture);
            }
        });
    });
}

void CanvasViewModel::composed(PixelBufferPtr picture) {
    m_picture = std::move(picture);
    m_isComposing = false;
    emit pictureChanged();
    if (m_isStale) {
        compose();
    }
}

} // namespace tavi
