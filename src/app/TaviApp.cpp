#include "app/TaviApp.h"

#include "app/NotificationItem.h"
#include "app/OneRecorder.h"
#include "app/PathText.h"

#include <utility>

namespace tavi {

TaviApp::TaviApp(TaviAppPorts ports, const PackageConfiguration& package,
                 const ProgramVersion& version, const QLocale& locale)
    : m_makeRecording(std::move(ports.makeRecording)),
      m_makeEditor(std::move(ports.makeEditor)),
      m_inputMonitoring(ports.inputMonitoring),
      m_lockFolder(std::move(ports.recorderLockFolder)),
      m_updaterController(std::move(ports.updater), package, version.version),
      m_settingsManager(ports.app.recordingsDirectory),
      m_appViewModel(ports.app),
      m_notificationViewModel(builtInNotifications(package.changelogUrl), version.version,
                              ports.defaults, ports.app.workspace),
      m_homeViewModel(m_appViewModel, locale),
      m_settingsViewModel({ports.app.workspace, ports.app.main, ports.app.background},
                          ports.app.recordingsDirectory, version, locale),
      m_thumbnails(ports.images, ports.app.main) {
    connect(&m_appViewModel, &AppViewModel::recordingScreenWillOpen, this,
            &TaviApp::openRecordingScreen);
    connect(&m_appViewModel, &AppViewModel::currentModeChanged, this,
            &TaviApp::closeRecordingScreen);
    connect(&m_appViewModel, &AppViewModel::editorWillOpen, this, &TaviApp::openEditor);
    connect(&m_appViewModel, &AppViewModel::currentModeChanged, this, &TaviApp::closeEditor);
    connect(&m_appViewModel, &AppViewModel::recordingsChanged, &m_thumbnails,
            &TakeThumbnails::retryFailures);
    connect(&m_homeViewModel, &HomeViewModel::recordingGone, &m_thumbnails, &TakeThumbnails::drop);
    connect(&m_settingsViewModel, &SettingsViewModel::checkForUpdatesAsked, &m_updaterController,
            &UpdaterController::checkForUpdates);
    connect(&m_updaterController, &UpdaterController::told, &m_appViewModel,
            &AppViewModel::setNoticeText);
    connect(&m_appViewModel, &AppViewModel::noticeChanged, this, &TaviApp::noticeChanged);
    m_updaterController.startUpdater();
}

TaviApp::~TaviApp() = default;

void TaviApp::closeRecordingScreen() {
    if (m_recordingViewModel && m_appViewModel.currentMode() != AppMode::recording()) {
        // The screen goes with the mode, a moment from now; its view model behind it.
        m_appViewModel.setRecordingViewModel(nullptr);
        m_recordingViewModel.release()->deleteLater();
    }
}

void TaviApp::openEditor(const QString& folder) {
    auto opened = m_makeEditor(pathOf(folder));
    std::swap(m_editorScreen, opened);
    emit editorScreenChanged();
    if (opened) {
        opened.release()->deleteLater(); // its screen shows it a moment longer
    }
}

void TaviApp::closeEditor() {
    if (m_editorScreen && m_appViewModel.currentMode().screen != AppMode::Screen::editing) {
        m_editorScreen.release()->deleteLater();
    }
}

void TaviApp::openRecordingScreen() {
    m_recordingViewModel = m_makeRecording();
    RecordingViewModel* model = m_recordingViewModel.get();
    if (model == nullptr) {
        m_appViewModel.setNoticeText(tr("The pointer of this desktop can't be followed, so nothing "
                                        "can be recorded here."));
        QMetaObject::invokeMethod(
            &m_appViewModel, [this] { m_appViewModel.leaveRecording(); }, Qt::QueuedConnection);
        return;
    }
    m_appViewModel.setRecordingViewModel(model);
    new OneRecorder(*model, m_lockFolder,
                    [this](const std::string& reason) { m_appViewModel.setNotice(reason); });
    connect(model, &RecordingViewModel::isStartingChanged, this,
            [this, model] { m_appViewModel.recordingStartChanged(*model); });
    connect(model, &RecordingViewModel::recordingStarted, this,
            [this, model] { m_appViewModel.beginRecording(*model); });
    connect(model, &RecordingViewModel::recordingStopped, this, [this](const QString& folder) {
        if (!folder.isEmpty()) {
            m_appViewModel.openFinishedTake(pathOf(folder));
        }
    });
    connect(model, &RecordingViewModel::isRecordingChanged, this,
            [this, model] { tellFailureOf(*model); });
    connect(model, &RecordingViewModel::recordingEnded, this, &TaviApp::takeEndedByItself);
    emit recordingViewModelChanged();
}

/// What became of a take that ended: its file may have failed at the last moment only.
void TaviApp::tellFailureOf(const RecordingViewModel& model) {
    if (!model.isRecording() && !model.failureString().isEmpty()) {
        m_appViewModel.setNoticeText(model.failureString());
        m_tellsOfTake = true;
    }
}

/// A take that failed may have left nothing to edit: who has read why is back in the library.
void TaviApp::noticeChanged() {
    const bool isRead = std::exchange(m_tellsOfTake, false) && m_appViewModel.notice().empty();
    if (isRead && m_editorScreen && m_editorScreen->editor()->isVideoUnreadable()) {
        m_appViewModel.leaveEditor();
    }
}

void TaviApp::takeEndedByItself(const QString& folder) {
    m_appViewModel.finishRecording(folder.isEmpty() ? std::nullopt : std::optional(pathOf(folder)));
}

void TaviApp::openTake(const std::filesystem::path& folder) {
    if (m_editorScreen && m_editorScreen->exportState() == QLatin1String("exporting")) {
        m_appViewModel.setNoticeText(
            tr("An export is running. Open the other recording when it is done."));
    } else {
        m_appViewModel.openTake(folder);
    }
}

void TaviApp::stopTake() {
    if (RecordingStatusBarService* item = m_appViewModel.statusBarService()) {
        item->stopRecording();
    } else if (m_recordingViewModel && m_recordingViewModel->isRecording()) {
        m_recordingViewModel->stop();
    }
}

} // namespace tavi
