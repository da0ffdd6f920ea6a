#pragma once

#include "app/TaviApp.h"
#include "base/QueueExecutor.h"
#include "capture/PosixHelperLauncher.h"
#include "capture/ScreenSystem.h"
#include "platform/desktop/CountdownPanels.h"
#include "platform/desktop/DesktopSavePanel.h"
#include "platform/desktop/DesktopScreenPermission.h"
#include "platform/desktop/DesktopWorkspace.h"
#include "platform/desktop/HttpDownloads.h"
#include "platform/desktop/OpenSslSignatures.h"
#include "platform/desktop/QtApplicationWindows.h"
#include "platform/desktop/SettingsDefaults.h"
#include "platform/desktop/TrayStatusItems.h"
#include "platform/ffmpeg/FfmpegImageFiles.h"
#include "platform/ffmpeg/FfmpegImageGenerator.h"
#include "platform/ffmpeg/FfmpegMediaLibrary.h"
#include "platform/ffmpeg/FfmpegMediaPlayers.h"
#include "platform/pipewire/PipeWireDevices.h"
#include "platform/pipewire/PipeWireSessions.h"
#include "platform/pipewire/PipeWireSoundOutputs.h"
#include "platform/portal/DesktopWakeLocks.h"
#include "platform/qt/QtExecutor.h"
#include "platform/qt/QtTimers.h"
#include "platform/wayland/LayerSurfaces.h"

#include <filesystem>
#include <memory>

class QQmlEngine;

namespace tavi {

/// The running desktop behind every port of the application. Thread: main.
class LiveSystem {
public:
    /// `engine` shows the windows that adapters make, and outlives this.
    explicit LiveSystem(QQmlEngine& engine);

    TaviAppPorts ports();
    const PackageConfiguration& package() const { return m_package; }

private:
    std::unique_ptr<RecordingViewModel> makeRecording();
    std::unique_ptr<EditorScreenViewModel> makeEditor(const std::filesystem::path& folder);

    std::filesystem::path m_packageFolder;
    PackageConfiguration m_package;
    SystemClock m_clock;
    QtExecutor m_main;
    QtTimers m_timers;

    DesktopWorkspace m_workspace;
    QtApplicationWindows m_windows;
    TrayStatusItems m_statusItems;
    LayerSurfaces m_surfaces;
    CountdownPanels m_panels;
    SettingsDefaults m_defaults;
    DesktopWakeLocks m_wakeLocks;
    HttpDownloads m_downloads;
    OpenSslSignatures m_signatures;

    std::shared_ptr<const ColorConverter> m_colours;
    std::unique_ptr<ScreenSystem> m_screen;
    DesktopScreenPermission m_permission;

    FfmpegMediaLibrary m_media;
    FfmpegImageFiles m_imageFiles;
    FfmpegImageGenerator m_images;
    PipeWireSoundOutputs m_sound;
    FfmpegMediaPlayers m_players;
    DesktopSavePanel m_savePanel;
    std::unique_ptr<FileViewer> m_fileViewer;
    std::unique_ptr<PipeWireDevices> m_devices; ///< Made for the first recording screen.
    PipeWireSessions m_sessions;
    PosixHelperLauncher m_launcher;
    InputMonitoringService m_inputMonitoring;

    // These go first: their blocks look at the rest.
    QueueExecutor m_background{"com.tavi.app"};
    QueueExecutor m_editing{"com.tavi.editor"}; ///< What an open take shows and analyses.
};

} // namespace tavi
