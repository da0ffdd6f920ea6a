#pragma once

#include "app/AppMode.h"
#include "app/ApplicationWindows.h"
#include "app/RecordingFiles.h"
#include "app/RecordingLibrary.h"
#include "app/ScreenPermission.h"
#include "app/Workspace.h"
#include "base/Clock.h"
#include "base/Executor.h"
#include "base/Timers.h"
#include "capture/RecordingStatusBarService.h"
#include "capture/RecordingViewModel.h"
#include "capture/ShareableContent.h"

#include <QObject>
#include <QPointer>
#include <QUrl>

#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace tavi {

/// What the root state stands on. All outlive it.
struct AppPorts {
    ScreenPermission& permission;
    ShareableContentSource& content; ///< Asked in the background.
    ApplicationWindows& windows;
    Workspace& workspace;
    RecordingStatusBarService::Ports statusBar;
    const Clock& clock;
    Timers& timers;
    Executor& main;
    Executor& background; ///< For questions that may take a while.
    std::filesystem::path recordingsDirectory;
    RecoverTake recover; ///< Empty: takes whose recorder died stay as they are.
};

/// The root of the program's state: which screen shows, the library, and the hand-over of the
/// window while a take runs.
///
/// Start: `splash`; the permission is looked up, then the splash stays for kSplashSeconds more,
///        then comes `home` or `permission`.
/// Errors: those of delete and rename go to the caller; all else leaves an empty library or the
///         mode `permission`.
/// Thread: main.
class AppViewModel : public QObject {
    Q_OBJECT
    /// "splash", "permission", "home", "recording" or "editing".
    Q_PROPERTY(QString currentMode READ currentModeName NOTIFY currentModeChanged)
    /// The open take's folder and its name; empty unless editing.
    Q_PROPERTY(QString editingPath READ editingPath NOTIFY currentModeChanged)
    Q_PROPERTY(QString editingName READ editingName NOTIFY currentModeChanged)
    Q_PROPERTY(bool showSettings READ showSettings WRITE setShowSettings NOTIFY showSettingsChanged)
    /// Something that the user must know, such as why a take ended by itself; empty else.
    Q_PROPERTY(QString notice READ noticeText WRITE setNoticeText NOTIFY noticeChanged)

public:
    static constexpr double kSplashSeconds = 1.5;

    explicit AppViewModel(AppPorts ports, QObject* parent = nullptr);
    ~AppViewModel() override;

    const AppMode& currentMode() const { return m_currentMode; }
    const std::vector<RecordingItem>& recordings() const { return m_recordings; }
    bool showSettings() const { return m_showSettings; }
    void setShowSettings(bool show);
    const std::string& notice() const { return m_notice; }
    void setNotice(std::string notice);

    /// There from beginRecording() to finishRecording().
    RecordingStatusBarService* statusBarService() const { return m_statusBarService.get(); }

    /// Rescans the library.
    Q_INVOKABLE void loadRecordings();

    /// Looks the permission up and goes to `home` or `permission`, a moment later.
    Q_INVOKABLE void recheckPermission();

    /// Asks for the permission: when it is given as recheckPermission(), else by opening the
    /// system's settings.
    Q_INVOKABLE void requestPermission();

    /// Removes a take; the library is rescanned only when that went well.
    Result<void, RecordingFileError> deleteRecording(const RecordingItem& item);

    /// Removes takes in order, going on past failures, and rescans. The first failure.
    Result<void, RecordingFileError> deleteRecordings(std::span<const RecordingItem> items);

    /// Moves a take to another name beside it; the library is rescanned only when that went well.
    Result<void, RecordingFileError> renameRecording(const RecordingItem& item,
                                                     const std::string& newName);

    /// A start of a take has begun or is over. While a display's take starts, the window is
    /// miniaturized, so that no picture shows it; it comes back when there is no take then.
    void recordingStartChanged(const RecordingViewModel& viewModel);

    /// Capture has started: miniaturizes the window, unless it is already, and shows the status
    /// item, whose click ends the take of `viewModel`.
    void beginRecording(RecordingViewModel& viewModel);

    /// Capture has ended: brings the window back and goes to the take, or home without one.
    void finishRecording(const std::optional<std::filesystem::path>& url);

    /// The recording screen ended the take itself.
    /// Kept on purpose: status item and window are left as they are.
    void openFinishedTake(const std::filesystem::path& folder);

    /// The window came to the front: looks the permission up again while it is missing.
    void sceneBecameActive();

    /// From `home` to the recording screen, and the other way round without a take.
    Q_INVOKABLE void newRecording();
    /// Ends a countdown of the recording screen; a take that runs is saved first.
    Q_INVOKABLE void leaveRecording();

    /// From `home` to a take of the library. One that is not there any more is told, and goes from
    /// the library.
    Q_INVOKABLE void openRecording(const QUrl& url);
    Q_INVOKABLE void leaveEditor();

    /// Opens a take from outside: at once, or after the splash or the permission screen. Nothing
    /// while the recording screen shows. A folder without a take is told.
    void openTake(const std::filesystem::path& folder);

    /// The recording screen's view model; the screen shows it while the mode is `recording`.
    void setRecordingViewModel(RecordingViewModel* viewModel) { m_recording = viewModel; }

    /// Shows a file or folder in the desktop's file manager.
    Q_INVOKABLE void reveal(const QString& path);

    QString currentModeName() const;
    QString editingPath() const;
    QString editingName() const;
    QString noticeText() const { return QString::fromStdString(m_notice); }
    void setNoticeText(const QString& text) { setNotice(text.toStdString()); }

signals:
    /// Before the mode changes to recording, so that the screen finds its view model.
    void recordingScreenWillOpen();
    void editorWillOpen(const QString& folder);
    void currentModeChanged();
    void recordingsChanged();
    void showSettingsChanged();
    void noticeChanged();

private:
    struct Alive {};

    void startUp();
    void checkPermission(std::function<void(bool)> next);
    void route(bool isPermitted);
    void setCurrentMode(AppMode mode);
    void goHome();
    void edit(const std::filesystem::path& folder);
    ApplicationWindow* windowToMiniaturize();
    void miniaturizeWindow();
    void bringWindowBack();
    void stopFromStatusItem(QPointer<RecordingViewModel> viewModel);

    AppPorts m_ports;
    std::shared_ptr<Alive> m_alive = std::make_shared<Alive>(); ///< Held weakly by blocks.
    AppMode m_currentMode;
    std::vector<RecordingItem> m_recordings;
    bool m_showSettings = false;
    std::string m_notice;
    std::unique_ptr<RecordingStatusBarService> m_statusBarService;
    bool m_isWindowAway = false; ///< Miniaturized for a take.
    std::unique_ptr<Timers::Timer> m_splash;
    QPointer<RecordingViewModel> m_recording;
    std::optional<std::filesystem::path> m_takeToOpen; ///< Once the splash is over.
};

} // namespace tavi
