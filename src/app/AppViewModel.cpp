#include "app/AppViewModel.h"

#include "app/PathText.h"
#include "base/MessageText.h"

#include <QCoro/QCoroTask>

#include <algorithm>
#include <utility>

namespace tavi {

AppViewModel::AppViewModel(AppPorts ports, QObject* parent)
    : QObject(parent),
      m_ports(std::move(ports)) {
    startUp();
}

AppViewModel::~AppViewModel() = default;

void AppViewModel::startUp() {
    checkPermission([this](bool isPermitted) {
        m_splash = m_ports.timers.repeat(kSplashSeconds, [this, isPermitted] {
            m_splash.reset();
            route(isPermitted);
        });
    });
}

/// Calls `next` on the main thread, later.
void AppViewModel::checkPermission(std::function<void(bool)> next) {
    const auto answer = [this, alive = std::weak_ptr(m_alive), next = std::move(next)](bool yes) {
        m_ports.main.post([alive, next, yes] {
            if (!alive.expired()) {
                next(yes);
            }
        });
    };
    if (m_ports.permission.preflight()) {
        answer(true);
        return;
    }
    // Kept on purpose: some systems say no at first and let the screen be read all the same.
    m_ports.background.post(
        [&content = m_ports.content, answer] { answer(content.content().has_value()); });
}

void AppViewModel::route(bool isPermitted) {
    if (!isPermitted) {
        setCurrentMode(AppMode::permission());
        return;
    }
    goHome();
    if (const auto take = std::exchange(m_takeToOpen, std::nullopt)) {
        edit(*take);
    }
}

void AppViewModel::recheckPermission() {
    checkPermission([this](bool isPermitted) { route(isPermitted); });
}

void AppViewModel::requestPermission() {
    m_ports.permission.request([this, alive = std::weak_ptr(m_alive)](bool isGranted) {
        m_ports.main.post([this, alive, isGranted] {
            if (alive.expired()) {
                return;
            }
            if (isGranted) {
                recheckPermission();
            } else {
                m_ports.workspace.openUrl(kScreenCaptureSettingsUrl);
            }
        });
    });
}

void AppViewModel::sceneBecameActive() {
    if (m_currentMode == AppMode::permission()) {
        recheckPermission();
    }
}

void AppViewModel::setCurrentMode(AppMode mode) {
    if (m_currentMode != mode) {
        if (mode == AppMode::recording()) {
            emit recordingScreenWillOpen();
        } else if (mode.screen == AppMode::Screen::editing) {
            emit editorWillOpen(textOf(mode.url));
        }
        m_currentMode = std::move(mode);
        emit currentModeChanged();
    }
}

void AppViewModel::goHome() {
    setCurrentMode(AppMode::home());
    loadRecordings();
}

void AppViewModel::newRecording() {
    setCurrentMode(AppMode::recording());
}

void AppViewModel::leaveRecording() {
    if (!m_recording) {
        goHome();
        return;
    }
    m_recording->cancelCountdown();
    if (m_recording->isRecording()) {
        QCoro::connect(m_recording->stopRecording(), this,
                       [this](const auto&) { finishRecording(std::nullopt); });
    } else {
        goHome();
    }
}

void AppViewModel::openRecording(const QUrl& url) {
    edit(pathOf(url.toLocalFile()));
}

/// Opens a take, or tells why not.
void AppViewModel::edit(const std::filesystem::path& folder) {
    const auto found = findRecording(folder);
    if (found) {
        setCurrentMode(AppMode::editing(folder));
        return;
    }
    setNotice(translated(found.error().message()).toStdString());
    if (m_currentMode == AppMode::home()) {
        loadRecordings();
    }
}

void AppViewModel::leaveEditor() {
    goHome();
}

void AppViewModel::openTake(const std::filesystem::path& folder) {
    switch (m_currentMode.screen) {
    case AppMode::Screen::splash:
    case AppMode::Screen::permission:
        m_takeToOpen = folder;
        return;
    case AppMode::Screen::recording:
        return;
    case AppMode::Screen::home:
    case AppMode::Screen::editing:
        edit(folder);
    }
}

void AppViewModel::setShowSettings(bool show) {
    if (m_showSettings != show) {
        m_showSettings = show;
        emit showSettingsChanged();
    }
}

void AppViewModel::setNotice(std::string notice) {
    if (m_notice != notice) {
        m_notice = std::move(notice);
        emit noticeChanged();
    }
}

void AppViewModel::loadRecordings() {
    m_recordings =
        scanRecordings(m_ports.recordingsDirectory, m_ports.clock.now(), m_ports.recover);
    emit recordingsChanged();
}

Result<void, RecordingFileError> AppViewModel::deleteRecording(const RecordingItem& item) {
    auto removed = removeRecording(item.url);
    if (removed) {
        loadRecordings();
    }
    return removed;
}

Result<void, RecordingFileError>
AppViewModel::deleteRecordings(std::span<const RecordingItem> items) {
    Result<void, RecordingFileError> result;
    for (const RecordingItem& item : items) {
        auto removed = removeRecording(item.url);
        if (!removed && result) {
            result = std::move(removed);
        }
    }
    loadRecordings();
    return result;
}

Result<void, RecordingFileError> AppViewModel::renameRecording(const RecordingItem& item,
                                                               const std::string& newName) {
    auto moved = moveRecording(item.url, item.url.parent_path() / newName);
    if (moved) {
        loadRecordings();
    }
    return moved;
}

void AppViewModel::reveal(const QString& path) {
    m_ports.workspace.reveal(pathOf(path));
}

ApplicationWindow* AppViewModel::windowToMiniaturize() {
    if (ApplicationWindow* key = m_ports.windows.keyWindow()) {
        return key;
    }
    const auto windows = m_ports.windows.windows();
    return windows.empty() ? nullptr : windows.front();
}

void AppViewModel::miniaturizeWindow() {
    if (ApplicationWindow* window = m_isWindowAway ? nullptr : windowToMiniaturize()) {
        window->miniaturize();
        m_isWindowAway = true;
    }
}

void AppViewModel::bringWindowBack() {
    m_isWindowAway = false;
    const auto windows = m_ports.windows.windows();
    const auto hidden = std::find_if(windows.begin(), windows.end(),
                                     [](const auto* window) { return window->isMiniaturized(); });
    if (hidden != windows.end()) {
        (*hidden)->deminiaturize();
    }
    m_ports.windows.activateIgnoringOtherApps();
}

void AppViewModel::recordingStartChanged(const RecordingViewModel& viewModel) {
    if (viewModel.isStarting()) {
        if (viewModel.captureMode() == CaptureMode::display) {
            miniaturizeWindow();
        }
    } else if (m_isWindowAway && !viewModel.isRecording()) {
        bringWindowBack();
    }
}

void AppViewModel::beginRecording(RecordingViewModel& viewModel) {
    miniaturizeWindow();
    m_statusBarService = std::make_unique<RecordingStatusBarService>(m_ports.statusBar);
    m_statusBarService->start(m_ports.clock.now(), [self = QPointer(this), &main = m_ports.main,
                                                    recording = QPointer(&viewModel)] {
        main.post([self, recording] {
            if (self) {
                self->stopFromStatusItem(recording);
            }
        });
    });
}

void AppViewModel::stopFromStatusItem(QPointer<RecordingViewModel> viewModel) {
    if (!viewModel) {
        finishRecording(std::nullopt);
        return;
    }
    QCoro::connect(
        viewModel->stopRecording(), this,
        [this](const std::optional<std::filesystem::path>& url) { finishRecording(url); });
}

void AppViewModel::finishRecording(const std::optional<std::filesystem::path>& url) {
    if (m_statusBarService) {
        m_statusBarService->stop();
    }
    m_statusBarService.reset();
    bringWindowBack();
    if (url) {
        setCurrentMode(AppMode::editing(*url));
    } else {
        goHome();
    }
}

void AppViewModel::openFinishedTake(const std::filesystem::path& folder) {
    setCurrentMode(AppMode::editing(folder));
}

QString AppViewModel::currentModeName() const {
    switch (m_currentMode.screen) {
    case AppMode::Screen::splash:
        return QStringLiteral("splash");
    case AppMode::Screen::permission:
        return QStringLiteral("permission");
    case AppMode::Screen::home:
        return QStringLiteral("home");
    case AppMode::Screen::recording:
        return QStringLiteral("recording");
    case AppMode::Screen::editing:
        return QStringLiteral("editing");
    }
    return {};
}

QString AppViewModel::editingPath() const {
    return textOf(m_currentMode.url);
}

QString AppViewModel::editingName() const {
    return QString::fromStdString(nameOf(m_currentMode.url));
}

} // namespace tavi
