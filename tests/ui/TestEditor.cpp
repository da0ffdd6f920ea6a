#include "TestEditor.h"

#include "TestPictures.h"
#include "project/RecordingMetadataJson.h"
#include "project/TakeLoader.h"

#include <QImage>

#include <cmath>
#include <cstring>

namespace tavi::test {

namespace {

constexpr double kLength = 42; ///< Seconds.
constexpr Size kVideo{1280, 720};

class NoPanel final : public SavePanel {
public:
    void chooseFile(const std::string&, Answer answer) override { answer({}); }
};

class NoViewer final : public FileViewer {
public:
    void select(const std::filesystem::path&) override {}
};

PixelBufferPtr videoPicture() {
    const QImage image = TestPictures().screen(0).scaled(
        QSize(static_cast<int>(kVideo.width), static_cast<int>(kVideo.height)),
        Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
    const QImage bgra = image.convertToFormat(QImage::Format_ARGB32_Premultiplied);
    auto picture = std::make_shared<PixelBuffer>(bgra.width(), bgra.height());
    for (int y = 0; y < bgra.height(); ++y)
        std::memcpy(picture->row(y), bgra.constScanLine(y), static_cast<size_t>(bgra.width()) * 4);
    return picture;
}

ZoomKeyframe keyframe(double start, double end, double level) {
    ZoomKeyframe made;
    made.timestamp = start;
    made.endTime = end;
    made.transitionDuration = 0.8;
    made.rect = {300, 200, kVideo.width / level, kVideo.height / level};
    made.zoomCurve = {{Uuid::make(), start + 1, level}, {Uuid::make(), end - 1, level * 1.3}};
    return made;
}

EditProject madeUpProject() {
    EditProject project;
    project.recordingPath = "file:///Recording/";
    project.appearanceSettings.backgroundStyle = BackgroundStyle::gradient;
    project.appearanceSettings.padding = 0.06;
    project.appearanceSettings.shadowEnabled = true;
    project.keyframes = {keyframe(3, 8, 2), keyframe(10.5, 14, 1.6), keyframe(19, 27, 2.4),
                         keyframe(33, 36.5, 3)};
    project.trimState = {1.5, 39, {{Uuid::make(), 28.5, 31.5}}};
    return project;
}

RecordingMetadata madeUpLog() {
    RecordingMetadata metadata;
    metadata.duration = kLength;
    metadata.screenWidth = static_cast<int>(kVideo.width);
    metadata.screenHeight = static_cast<int>(kVideo.height);
    for (double t = 0; t < kLength; t += 0.05)
        metadata.cursorEvents.push_back(
            {t, 640 + 300 * std::sin(t / 3), 360 + 150 * std::cos(t / 4), CursorEventType::move});
    return metadata;
}

} // namespace

/// Does at once what is for the background.
class TestEditor::Background final : public Executor {
public:
    void post(std::function<void()> block) override { block(); }
};

TestEditor::TestEditor(QObject* parent)
    : QObject(parent),
      m_background(std::make_unique<Background>()) {}

TestEditor::~TestEditor() = default;

QObject* TestEditor::screen() {
    if (m_screen)
        return m_screen.get();
    writeTake();
    static NoPanel panel;
    static NoViewer viewer;
    m_screen = std::make_unique<EditorScreenViewModel>(
        m_library.path(),
        EditorPorts{m_players, m_media, [](const auto&) { return nullptr; }, m_clock, m_main,
                    *m_background, m_timers, m_library.path()},
        std::make_unique<ExportViewModel>(
            ExportViewModel::Ports{nullptr, m_clock, panel, viewer, m_main}));
    for (const auto& [name, player] : m_players.made) {
        player->picture = videoPicture();
    }
    moveTo(5);
    return m_screen.get();
}

void TestEditor::writeTake() {
    saveProject(madeUpProject(), m_library.path());
    writeTextFile(m_library / "metadata.json", encodeRecordingMetadata(madeUpLog()).value());
    if (m_hasCamera)
        writeTextFile(m_library / "camera.mov", "");
    m_media.known["video.mov"] = FakeAssets::asset(kLength, kVideo);
}

void TestEditor::select(int keyframe) {
    const auto& keyframes = m_screen->editor()->project().keyframes;
    m_screen->editor()->selectKeyframe(keyframes.at(static_cast<size_t>(keyframe)).id);
}

void TestEditor::setLook(const QString& style, double padding) {
    m_screen->editor()->changeProject([&](EditProject& project) {
        project.appearanceSettings.padding = padding;
        project.appearanceSettings.backgroundStyle =
            fromRawValue<BackgroundStyle>(style.toStdString()).value();
    });
}

void TestEditor::moveTo(double seconds) {
    m_screen->editor()->seek(seconds);
}

} // namespace tavi::test
