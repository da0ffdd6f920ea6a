#include "app/program/LiveSystem.h"

#include "app/program/ScreenChoice.h"
#include "capture/HelperPath.h"
#include "capture/InputAccess.h"
#include "capture/TakeRecovery.h"
#include "platform/x11/X11Compositor.h"
#include "project/RecordingFolder.h"
#include "render/YuvConverter.h"
#include "ui/Icon.h"

#include <QColor>
#include <QGuiApplication>
#include <QPixmap>
#include <QStandardPaths>

#include <iostream>

namespace tavi {

namespace {

/// Desktops let a window fade or fly for a quarter of a second.
constexpr std::chrono::milliseconds kMinimizing{400};

const QColor kSystemRed(255, 59, 48);

/// The application's package: beside an installed program, or in a build tree.
std::filesystem::path packageFolder() {
    const auto program = runningExecutableFolder();
    const auto installed = (program / ".." / "lib" / "tavlin").lexically_normal();
    std::error_code error;
    return std::filesystem::is_directory(installed, error)
               ? installed
               : (program / ".." / "package").lexically_normal();
}

std::filesystem::path updatesFolder() {
    const QString cache = QStandardPaths::writableLocation(QStandardPaths::GenericCacheLocation);
    return std::filesystem::path(cache.toStdString()) / "tavlin" / "updates";
}

QIcon recordingIcon(const std::string& symbolName) {
    QIcon icon;
    for (const int pixels : {16, 22, 24, 32, 44, 48, 64}) {
        icon.addPixmap(
            QPixmap::fromImage(iconImage(QString::fromStdString(symbolName), pixels, kSystemRed)));
    }
    return icon;
}

/// Wayland's compositors always are; what runs below one has an X server too.
bool isSeeThrough() {
    return QGuiApplication::platformName() == QLatin1String("wayland") || isX11Composited();
}

/// Shows finished films in the desktop's file manager.
class WorkspaceViewer final : public FileViewer {
public:
    explicit WorkspaceViewer(Workspace& workspace) : m_workspace(workspace) {}
    void select(const std::filesystem::path& file) override { m_workspace.reveal(file); }

private:
    Workspace& m_workspace;
};

} // namespace

LiveSystem::LiveSystem(QQmlEngine& engine)
    : m_packageFolder(packageFolder()),
      m_package(readPackageConfiguration(m_packageFolder)),
      m_workspace(m_packageFolder / "help"),
      m_statusItems(recordingIcon),
      m_panels(engine, &m_surfaces, isSeeThrough),
      m_defaults(SettingsDefaults::standardFile()),
      m_colours(std::make_shared<YuvConverter>()),
      m_screen(openScreenSystem(m_main, m_colours)),
      m_permission(m_screen->content()),
      m_media(m_colours),
      m_images(m_colours),
      m_players(m_main, m_colours, m_sound),
      m_fileViewer(std::make_unique<WorkspaceViewer>(m_workspace)),
      m_inputMonitoring({m_launcher, m_timers, m_main,
                         [] { return helperExecutablePath(runningExecutableFolder()); },
                         processExists,
                         [this](const std::string& url) { m_workspace.openUrl(url); },
                         m_screen->seesClicks() ? std::string() : inputAccessAdvice().command}) {}

TaviAppPorts LiveSystem::ports() {
    return {{m_permission,
             m_screen->content(),
             m_windows,
             m_workspace,
             {m_statusItems, m_clock, m_timers},
             m_clock,
             m_timers,
             m_main,
             m_background,
             recordingsDirectory(),
             [this](const std::filesystem::path& folder) {
                 return TakeRecovery(m_media, m_imageFiles).recover(folder);
             }},
            [this] { return makeRecording(); },
            [this](const std::filesystem::path& folder) { return makeEditor(folder); },
            m_inputMonitoring,
            m_images,
            m_defaults,
            {m_downloads, m_signatures, m_timers, m_main, m_background, updatesFolder()},
            {}};
}

std::unique_ptr<RecordingViewModel> LiveSystem::makeRecording() {
    const auto pointer = m_screen->pointer();
    if (!pointer) {
        std::cerr << pointer.error().description() << "\n";
        return nullptr;
    }
    if (!m_devices) {
        m_devices = std::make_unique<PipeWireDevices>(m_main);
    }
    return std::make_unique<RecordingViewModel>(RecordingViewModel::Ports{
        m_screen->content(),
        m_screen->screenshots(),
        m_devices.get(),
        {m_screen->streams(),
         m_media,
         m_imageFiles,
         {pointer->monitors, pointer->location, pointer->images, m_launcher, m_clock, m_main,
          &m_inputMonitoring, helperExecutablePath(runningExecutableFolder()),
          helperArguments(!m_screen->seesClicks())},
         &m_sessions},
        {m_panels, m_screen->frames(), m_timers},
        [] { return recordingsDirectory(); },
        std::cout,
        "tavlin",
        CountdownOverlayService::kStartValue,
        m_screen->consent(),
        &m_wakeLocks,
        m_screen->cursorMode(),
        kMinimizing});
}

std::unique_ptr<EditorScreenViewModel> LiveSystem::makeEditor(const std::filesystem::path& folder) {
    const auto readImage = [this](const std::filesystem::path& path) {
        return m_imageFiles.readPng(path).value_or(nullptr);
    };
    const auto makeExport = [this] {
        return std::make_unique<VideoExportService>(m_media, m_clock);
    };
    return std::make_unique<EditorScreenViewModel>(
        folder,
        EditorPorts{m_players, m_media, readImage, m_clock, m_main, m_editing, m_timers,
                    recordingsDirectory()},
        std::make_unique<ExportViewModel>(
            ExportViewModel::Ports{makeExport, m_clock, m_savePanel, *m_fileViewer, m_main}));
}

} // namespace tavi
