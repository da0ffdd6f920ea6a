#pragma once

#include "app/AppViewModel.h"
#include "app/HomeViewModel.h"
#include "app/NotificationViewModel.h"
#include "app/PackageConfiguration.h"
#include "app/SettingsManager.h"
#include "app/SettingsViewModel.h"
#include "app/TakeThumbnails.h"
#include "app/UpdaterController.h"
#include "app/UserDefaults.h"
#include "capture/InputMonitoringService.h"
#include "capture/RecordingViewModel.h"
#include "editor/EditorScreenViewModel.h"

#include <QLocale>
#include <QObject>

#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace tavi {

/// What the program stands on. All outlive it.
struct TaviAppPorts {
    AppPorts app;
    /// Makes the view model of one recording screen; null where nothing can be recorded.
    std::function<std::unique_ptr<RecordingViewModel>()> makeRecording;
    /// Opens a take in an editor.
    std::function<std::unique_ptr<EditorScreenViewModel>(const std::filesystem::path&)> makeEditor;
    InputMonitoringService& inputMonitoring;
    ImageGenerator& images;
    UserDefaults& defaults;
    UpdaterController::Ports updater;
    std::filesystem::path recorderLockFolder; ///< Empty: the user's own.
};

/// Everything that lives as long as the process, and the recording screen's view model, which
/// lives as long as that screen. Thread: main.
class TaviApp : public QObject {
    Q_OBJECT
    Q_PROPERTY(tavi::AppViewModel* appViewModel READ appViewModel CONSTANT)
    Q_PROPERTY(tavi::SettingsManager* settingsManager READ settingsManager CONSTANT)
    Q_PROPERTY(
        tavi::NotificationViewModel* notificationViewModel READ notificationViewModel CONSTANT)
    Q_PROPERTY(tavi::HomeViewModel* homeViewModel READ homeViewModel CONSTANT)
    Q_PROPERTY(tavi::SettingsViewModel* settingsViewModel READ settingsViewModel CONSTANT)
    Q_PROPERTY(tavi::TakeThumbnails* thumbnails READ thumbnails CONSTANT)
    Q_PROPERTY(tavi::UpdaterController* updaterController READ updaterController CONSTANT)
    Q_PROPERTY(tavi::InputMonitoringService* inputMonitoring READ inputMonitoring CONSTANT)
    /// Changes only when a recording screen opens; a screen that closes may still look at its own.
    Q_PROPERTY(tavi::RecordingViewModel* recordingViewModel READ recordingViewModel NOTIFY
                   recordingViewModelChanged)
    /// The open take; changes only when one is opened, likewise.
    Q_PROPERTY(
        tavi::EditorScreenViewModel* editorScreen READ editorScreen NOTIFY editorScreenChanged)

public:
    TaviApp(TaviAppPorts ports, const PackageConfiguration& package, const ProgramVersion& version,
            const QLocale& locale = QLocale());
    ~TaviApp() override;

    AppViewModel* appViewModel() { return &m_appViewModel; }
    SettingsManager* settingsManager() { return &m_settingsManager; }
    NotificationViewModel* notificationViewModel() { return &m_notificationViewModel; }
    HomeViewModel* homeViewModel() { return &m_homeViewModel; }
    SettingsViewModel* settingsViewModel() { return &m_settingsViewModel; }
    TakeThumbnails* thumbnails() { return &m_thumbnails; }
    UpdaterController* updaterController() { return &m_updaterController; }
    InputMonitoringService* inputMonitoring() { return &m_inputMonitoring; }
    RecordingViewModel* recordingViewModel() { return m_recordingViewModel.get(); }
    EditorScreenViewModel* editorScreen() { return m_editorScreen.get(); }

    /// Opens a take from outside. While a film is made of the open one, that stays, and a notice
    /// says so.
    void openTake(const std::filesystem::path& folder);

    /// Ends the running take as a click on the status item would; nothing without one.
    void stopTake();

signals:
    void recordingViewModelChanged();
    void editorScreenChanged();

private:
    void openEditor(const QString& folder);
    void closeEditor();
    void openRecordingScreen();
    void closeRecordingScreen();
    void tellFailureOf(const RecordingViewModel& model);
    void noticeChanged();
    void takeEndedByItself(const QString& folder);

    std::function<std::unique_ptr<RecordingViewModel>()> m_makeRecording;
    std::function<std::unique_ptr<EditorScreenViewModel>(const std::filesystem::path&)>
        m_makeEditor;
    InputMonitoringService& m_inputMonitoring;
    std::filesystem::path m_lockFolder;
    UpdaterController m_updaterController;
    SettingsManager m_settingsManager;
    AppViewModel m_appViewModel;
    NotificationViewModel m_notificationViewModel;
    HomeViewModel m_homeViewModel;
    SettingsViewModel m_settingsViewModel;
    TakeThumbnails m_thumbnails;
    std::unique_ptr<EditorScreenViewModel> m_editorScreen;
    bool m_tellsOfTake = false; ///< The notice says why a take failed.
    std::unique_ptr<RecordingViewModel> m_recordingViewModel; ///< Goes first, and saves its take.
};

} // namespace tavi
