#pragma once

#include "base/MessageText.h"
#include "capture/CaptureMode.h"
#include "capture/CountdownOverlayService.h"
#include "capture/CursorMode.h"
#include "capture/Screenshots.h"
#include "capture/SourceConsent.h"
#include "capture/TakeRecorder.h"
#include "capture/WakeLock.h"

#include <QCoro/QCoroTask>
#include <QObject>
#include <QString>
#include <QVariantList>
#include <QVariantMap>

#include <chrono>
#include <filesystem>
#include <functional>
#include <iosfwd>
#include <map>
#include <memory>
#include <optional>
#include <stop_token>
#include <string>
#include <vector>

namespace tavi {

/// Conducts takes for a screen: lists what can be recorded, keeps the microphone warm, counts
/// down, starts and stops the take, and leaves a finished folder.
///
/// States: idle -> counting down -> starting -> recording -> stopping -> idle. A take that can't
///         go on (the disk is full, the display is gone, the window was closed) stops by itself
///         and is saved.
/// Thread: main. What blocks runs on a queue of the model's own, and the calls that wait for it
///         are tasks; a task of a model that is gone ends without a result.
/// The destructor ends a countdown; it saves a take that runs, for which it may block.
class RecordingViewModel : public QObject {
    Q_OBJECT
    // The fields of a row stand beside the function that makes it.
    Q_PROPERTY(QVariantList availableDisplays READ displayRows NOTIFY availableDisplaysChanged)
    Q_PROPERTY(QVariantList availableWindows READ windowRows NOTIFY availableWindowsChanged)
    Q_PROPERTY(QVariantList availableCameras READ cameraRows NOTIFY availableCamerasChanged)
    Q_PROPERTY(
        QVariantList availableMicrophones READ microphoneRows NOTIFY availableMicrophonesChanged)
    Q_PROPERTY(QVariantMap windowThumbnails READ windowPictures NOTIFY windowThumbnailsChanged)
    Q_PROPERTY(QVariantMap displayThumbnails READ displayPictures NOTIFY displayThumbnailsChanged)
    Q_PROPERTY(
        QString captureMode READ captureModeName WRITE setCaptureModeName NOTIFY captureModeChanged)
    Q_PROPERTY(int selectedDisplayIndex READ selectedDisplayIndex WRITE setSelectedDisplayIndex
                   NOTIFY selectedDisplayIndexChanged)
    Q_PROPERTY(int selectedWindowIndex READ selectedWindowIndex WRITE setSelectedWindowIndex NOTIFY
                   selectedWindowIndexChanged)
    Q_PROPERTY(int selectedCameraIndex READ selectedCameraIndex WRITE setSelectedCameraIndex NOTIFY
                   selectedCameraIndexChanged)
    Q_PROPERTY(int selectedMicrophoneIndex READ selectedMicrophoneIndex WRITE
                   setSelectedMicrophoneIndex NOTIFY selectedMicrophoneIndexChanged)
    Q_PROPERTY(bool isCameraEnabled READ isCameraEnabled WRITE setIsCameraEnabled NOTIFY
                   isCameraEnabledChanged)
    Q_PROPERTY(bool isAudioEnabled READ isAudioEnabled WRITE setIsAudioEnabled NOTIFY
                   isAudioEnabledChanged)
    Q_PROPERTY(bool isCameraAvailable READ isCameraAvailable NOTIFY availableCamerasChanged)
    Q_PROPERTY(bool isRecording READ isRecording NOTIFY isRecordingChanged)
    Q_PROPERTY(bool isCountingDown READ isCountingDown NOTIFY isCountingDownChanged)
    Q_PROPERTY(bool isAsking READ isAsking NOTIFY isAskingChanged)
    Q_PROPERTY(bool isStarting READ isStarting NOTIFY isStartingChanged)
    Q_PROPERTY(bool isStopping READ isStopping NOTIFY isStoppingChanged)
    Q_PROPERTY(int countdownValue READ countdownValue NOTIFY countdownValueChanged)
    Q_PROPERTY(double elapsedTime READ elapsedTime NOTIFY elapsedTimeChanged)
    Q_PROPERTY(QString pointerWarning READ pointerWarning CONSTANT)
    Q_PROPERTY(QString failureText READ failureString NOTIFY failureTextChanged)
    Q_PROPERTY(QString interruptionText READ interruptionString NOTIFY interruptionTextChanged)

public:
    /// What the model stands on; all outlive it.
    struct Ports {
        ShareableContentSource& content;
        Screenshots* screenshots = nullptr; ///< Null: lists without pictures.
        CaptureDevices* devices = nullptr;  ///< Null: no cameras and no microphones.
        TakePorts take;
        CountdownOverlayService::Ports overlay;
        /// Where takes go; asked at each start.
        std::function<std::filesystem::path()> library;
        /// What was not shown to the user is printed here.
        std::ostream& messages;
        /// The desktop entry by which the program's own windows are known; empty: by none.
        std::string applicationId;
        int countdownSeconds = CountdownOverlayService::kStartValue;
        SourceConsent* consent = nullptr; ///< Null: nobody is asked before a take.
        WakeLocks* wakeLocks = nullptr;   ///< Null: the desktop may fall asleep during a take.
        /// What this desktop lets a take know of the pointer.
        CursorMode cursorMode = CursorMode::metadata;
        /// How long a window that is minimized when isStarting turns true may take to be off the
        /// screen, with its animation; a display's take begins after that.
        std::chrono::milliseconds minimizing{0};
    };

    explicit RecordingViewModel(Ports ports, QObject* parent = nullptr);
    ~RecordingViewModel() override;

    const std::vector<Display>& availableDisplays() const { return m_availableDisplays; }
    const std::vector<Window>& availableWindows() const { return m_availableWindows; }
    const std::vector<CaptureDevice>& availableCameras() const { return m_availableCameras; }
    const std::vector<CaptureDevice>& availableMicrophones() const {
        return m_availableMicrophones;
    }
    /// By the index of the window; one that could not be taken is missing.
    const std::map<int, PixelBufferPtr>& windowThumbnails() const { return m_windowThumbnails; }
    /// By the index of the display.
    const std::map<int, PixelBufferPtr>& displayThumbnails() const { return m_displayThumbnails; }

    CaptureMode captureMode() const { return m_captureMode; }
    int selectedDisplayIndex() const { return m_selectedDisplayIndex; }
    int selectedWindowIndex() const { return m_selectedWindowIndex; }
    int selectedCameraIndex() const { return m_selectedCameraIndex; }
    int selectedMicrophoneIndex() const { return m_selectedMicrophoneIndex; }
    bool isCameraEnabled() const { return m_isCameraEnabled; }
    bool isAudioEnabled() const { return m_isAudioEnabled; }
    bool isCameraAvailable() const { return !m_availableCameras.empty(); }

    void setCaptureMode(CaptureMode mode);
    void setSelectedDisplayIndex(int index);
    void setSelectedWindowIndex(int index);
    void setSelectedCameraIndex(int index);
    /// The owner calls restartAudioWarmUp() afterwards.
    void setSelectedMicrophoneIndex(int index);
    void setIsCameraEnabled(bool isEnabled);
    /// The owner calls restartAudioWarmUp() afterwards.
    void setIsAudioEnabled(bool isEnabled);

    bool isRecording() const { return m_isRecording; }       ///< Also while stopping.
    bool isCountingDown() const { return m_isCountingDown; } ///< Also while asking before it.
    /// The desktop asks its user what may be recorded, before the countdown or the start.
    bool isAsking() const { return m_isAsking; }
    bool isStarting() const { return m_isStarting; }
    bool isStopping() const { return m_isStopping; }

    /// The seconds left of a countdown, counting the current one; 0 without one.
    int countdownValue() const;

    /// Seconds since the first frame, at the last tick.
    double elapsedTime() const { return m_elapsedTime; }

    /// Why there are no sources, the last start failed or the take ended by itself; absent while
    /// all is well.
    const std::optional<CaptureError>& failure() const { return m_failure; }
    /// The same for the user; empty while all is well.
    std::string failureText() const { return m_failure ? m_failure->description() : ""; }

    /// Why the camera or the microphone sends nothing now, for the user; empty while all is well.
    std::string interruptionText() const { return m_interruption.english(); }

    /// The folder of the last take that was saved; empty before the first.
    const std::filesystem::path& folder() const { return m_folder; }

    /// True once the selected microphone runs and its format is known, so that a take that
    /// starts now has sound. Nothing tells of the change.
    bool isMicrophoneReady() const;

    /// What was wrong with the last warm-up, for the user; empty when nothing was.
    const std::string& microphoneError() const { return m_microphoneError; }

    /// Fills the lists, takes the small pictures and warms the microphone up.
    QCoro::Task<> loadSources();

    /// Warms the selected microphone up, or none, instead of the one that is warm.
    Q_INVOKABLE void restartAudioWarmUp();

    /// The same; done when the microphone is open, or at once while another one is being opened,
    /// which this one then follows.
    QCoro::Task<> warmUpAudio();

    /// Counts down over the selected source and starts the take; then, if there is one, calls
    /// `onStarted`. Nothing unless idle and the selected index is in the list. Where the desktop
    /// asks its user first, a refusal ends it without a word.
    void startCountdown(std::function<void()> onStarted);

    /// Ends a countdown, and the desktop's question before it.
    Q_INVOKABLE void cancelCountdown();

    /// Starts the take at once. What goes wrong is told by failureText().
    QCoro::Task<> startRecording();

    /// Ends the take and completes its files. Its folder; absent when no take runs. Asked while
    /// the take is stopping, it waits for the same folder.
    QCoro::Task<std::optional<std::filesystem::path>> stopRecording();

    /// Brings elapsedTime() up to date between two ticks.
    void tick();

    /// For screens: loadSources().
    Q_INVOKABLE void load();
    /// For screens: startCountdown(), with recordingStarted() as what follows.
    Q_INVOKABLE void record();
    /// For screens: stopRecording(), whose folder recordingStopped() tells.
    Q_INVOKABLE void stop();

    QVariantList displayRows() const; ///< name ("Display 1"), output, width, height, isMain.
    QVariantList windowRows() const;  ///< windowId, appName (or "Unknown"), title, width, height.
    QVariantList cameraRows() const;  ///< id, name.
    QVariantList microphoneRows() const; ///< id, name.
    /// Index, as text, to PixelBufferPtr.
    QVariantMap windowPictures() const;
    QVariantMap displayPictures() const;
    /// What a take on this desktop can't do with the pointer; empty where it can do everything.
    QString pointerWarning() const;
    QString captureModeName() const; ///< The raw value.
    void setCaptureModeName(const QString& name);
    QString failureString() const {
        return m_failure ? translated(m_failure->message()) : QString();
    }
    QString interruptionString() const { return translated(m_interruption); }

signals:
    void availableDisplaysChanged();
    void availableWindowsChanged();
    void availableCamerasChanged();
    void availableMicrophonesChanged();
    void windowThumbnailsChanged();
    void displayThumbnailsChanged();
    void captureModeChanged();
    void selectedDisplayIndexChanged();
    void selectedWindowIndexChanged();
    void selectedCameraIndexChanged();
    void selectedMicrophoneIndexChanged();
    void isCameraEnabledChanged();
    void isAudioEnabledChanged();
    void isRecordingChanged();
    void isCountingDownChanged();
    void isAskingChanged();
    void isStartingChanged();
    void isStoppingChanged();
    void countdownValueChanged();
    void elapsedTimeChanged();
    void failureTextChanged();
    void interruptionTextChanged();

    /// After record(), when the take runs.
    void recordingStarted();
    /// After stop(). The folder's path, empty when no take ran.
    void recordingStopped(const QString& folder);
    /// The take ended by itself and is saved; failureText() says why.
    void recordingEnded(const QString& folder);

private:
    struct Alive {};

    /// Changes a field and tells so, if its value is another one.
    template<typename T>
    void publish(T& field, T value, void (RecordingViewModel::*changed)());

    void setFailure(const std::optional<CaptureError>& failure);
    QCoro::Task<bool> mayUse(CaptureDeviceKind kind);
    QCoro::Task<> loadThumbnails();
    std::vector<CaptureDevice> devicesOf(CaptureDeviceKind kind);
    QCoro::Task<> openMicrophones();
    std::optional<CaptureDevice> selectedMicrophone() const;

    std::optional<TakeSource> selectedSource() const;
    QCoro::Task<> askThenCountDown(ScreenFilter filter, std::function<void()> onStarted);
    QCoro::Task<bool> askForConsent(ScreenFilter filter);
    void releaseConsent();
    void countDown(std::function<void()> onStarted);
    void finishCountdown(std::function<void()> onStarted);
    QCoro::Task<> startThenCall(std::function<void()> onStarted);
    QCoro::Task<> startTake(TakeSource source);
    QCoro::Task<std::vector<std::uint32_t>> ownWindows();
    void lendDevices();
    void takeDevicesBack();
    void watchTake();
    QCoro::Task<> endByItself();
    QCoro::Task<> stopThenTell();
    void reset();

    Ports m_ports;
    std::shared_ptr<Alive> m_alive = std::make_shared<Alive>(); ///< Held weakly by tasks.

    std::vector<Display> m_availableDisplays;
    std::vector<Window> m_availableWindows;
    std::vector<CaptureDevice> m_availableCameras;
    std::vector<CaptureDevice> m_availableMicrophones;
    std::map<int, PixelBufferPtr> m_windowThumbnails;
    std::map<int, PixelBufferPtr> m_displayThumbnails;
    CaptureMode m_captureMode = CaptureMode::display;
    int m_selectedDisplayIndex = 0;
    int m_selectedWindowIndex = 0;
    int m_selectedCameraIndex = 0;
    int m_selectedMicrophoneIndex = 0;
    bool m_isCameraEnabled = false;
    bool m_isAudioEnabled = true;
    bool m_isRecording = false;
    bool m_isCountingDown = false;
    bool m_isAsking = false;
    bool m_isStarting = false;
    bool m_isStopping = false;
    double m_elapsedTime = 0;
    std::optional<CaptureError> m_failure;
    Message m_interruption;
    std::string m_microphoneError;
    std::filesystem::path m_folder;

    std::unique_ptr<CountdownOverlayService> m_countdownOverlayService;
    std::unique_ptr<AudioCaptureService> m_audioWarmUpService;   ///< Preparing or ready.
    std::unique_ptr<AudioCaptureService> m_openingWarmUpService; ///< While its device is opened.
    bool m_isWarmUpWanted = false;                               ///< Asked for since.
    int m_warmUpRequests = 0;
    std::unique_ptr<TakeRecorder> m_recorder;
    std::unique_ptr<WakeLock> m_wakeLock; ///< While a take runs.
    TakeDevices m_takeDevices;            ///< Lent to the recorder while it starts.
    int m_lentWarmUp = 0;                 ///< Which request the lent warm-up came from.
    std::unique_ptr<Timers::Timer> m_timer;
    std::vector<std::function<void(bool)>> m_stopWaiters;

    std::stop_source m_question; ///< Of the desktop, to end it.

    SerialQueue m_loader{"com.tavi.sources"};
    SerialQueue m_worker{"com.tavi.take"};
};

} // namespace tavi

Q_DECLARE_METATYPE(tavi::PixelBufferPtr)
