#pragma once

#include "capture/AudioCaptureService.h"
#include "capture/CameraCaptureService.h"
#include "capture/CaptureSession.h"
#include "capture/CursorTrackingService.h"
#include "capture/LogJournal.h"
#include "capture/ScreenCaptureService.h"
#include "capture/ShareableContent.h"
#include "media/ImageGenerator.h"

#include <atomic>
#include <filesystem>
#include <memory>
#include <optional>

namespace tavi {

/// What one take stands on. All outlive the recorder.
struct TakePorts {
    ScreenStreams& streams;
    MediaLibrary& media;
    ImageFiles& imageFiles;
    CursorTrackingPorts tracking;
    CaptureSessions* captureSessions = nullptr; ///< Null: there are no cameras.
};

/// What a take shows: a display or one window. Takes either as it is.
struct TakeSource {
    ScreenFilter filter;
    Rect frame; ///< Global space, at the start of the take; its size is the video's.

    TakeSource(const Display& display)
        : filter(ScreenFilter::display(display.id)),
          frame(display.frame) {}
    TakeSource(const Window& window)
        : filter(ScreenFilter::window(window.id)),
          frame(window.frame) {}
};

/// What a take records besides the screen.
struct TakeDevices {
    std::optional<CaptureDevice> camera;
    std::optional<CaptureDevice> microphone; ///< The one that was warmed up.
    /// The take has sound only if this is ready when it starts. The take then
    /// takes it away, to record with it or to free the microphone for the camera's session; a
    /// warm-up that is not ready stays here as it is.
    std::unique_ptr<AudioCaptureService> audioWarmUpService;
};

/// Conducts one take: its folder, the order in which the services
/// start and stop, and the files beside the video.
///
/// States: idle -> recording -> stopped; a recorder serves one take.
/// Order: makeFolder(), startMedia(), startTracking(), then tick() every kTickInterval seconds,
/// and stopTracking(), finish() when `failure()` is there or the user asks. start() and stop()
/// are short for those before and behind.
/// Threads: main thread, except startMedia() and finish(), which block and may be called on
/// another one while the main thread calls nothing else of the recorder.
/// The destructor stops a take that runs, and saves it.
class TakeRecorder {
public:
    static constexpr double kTickInterval = 0.1; ///< Seconds.

    explicit TakeRecorder(TakePorts ports);
    ~TakeRecorder();

    TakeRecorder(const TakeRecorder&) = delete;
    TakeRecorder& operator=(const TakeRecorder&) = delete;

    /// Makes the take's folder in `library`. Where none can be made, startMedia() fails and says
    /// why.
    void makeFolder(const std::filesystem::path& library);

    /// Starts recording the source and the devices into the folder. Blocks while the
    /// encoders are chosen and the camera is opened. The pointer is to be logged where the
    /// source is now, also when a window is moved later; a display's log follows the display.
    ///
    /// Errors: a screen that can't be recorded leaves the folder empty.
    ///         Kept on purpose: a camera that can't be recorded does not stop the screen, which
    ///         goes on, for no take, until the recorder is destroyed.
    Result<void, CaptureError> startMedia(const TakeSource& source, TakeDevices& devices);

    /// Starts the log, after startMedia(). From now on there is a take.
    void startTracking();

    /// All of a start.
    Result<void, CaptureError> start(const TakeSource& source, const std::filesystem::path& library,
                                     TakeDevices& devices);

    /// The same without devices.
    Result<void, CaptureError> start(const TakeSource& source,
                                     const std::filesystem::path& library);

    /// Brings elapsedTime() up to date, and the journal of the take.
    void tick();

    /// Ends the log. The devices and the screen run on until finish().
    void stopTracking();

    /// Ends the take and completes its files; blocks until the video is whole.
    /// Returns its folder, absent when no take runs. A file that can't be
    /// written is missing afterwards; failure() tells of the video only. Without its
    /// metadata a take keeps its journal, from which TakeRecovery makes them.
    std::optional<std::filesystem::path> finish();

    /// All of a stop.
    std::optional<std::filesystem::path> stop();

    bool isRecording() const { return m_isRecording; }

    /// Seconds since the first frame at the last tick; 0 before it.
    double elapsedTime() const { return m_elapsedTime; }

    /// What ended the take from inside: the display server or the disk. The
    /// owner then calls stop(), which saves what there is.
    std::optional<CaptureError> failure() const;

    /// Why the camera or the microphone sends nothing now, which ends no take;
    /// absent while all is well.
    std::optional<CaptureDeviceError> interruption() const;

    std::uint64_t appendedFrames() const;
    std::uint64_t droppedFrames() const;

private:
    /// What the metadata tells of the devices.
    struct DeviceFacts {
        bool hasCamera = false;
        bool hasAudio = false;
        double cameraStartDelay = 0; ///< Seconds.
    };

    CaptureError toldRight(CaptureError error) const;
    Result<void, CaptureError> startScreen(const TakeSource& source,
                                           const std::optional<AudioSettings>& audioSettings);
    Result<void, CaptureError> startCamera(TakeDevices& devices);
    std::optional<CameraMicrophone> moveMicrophone(TakeDevices& devices);
    void startMicrophone(TakeDevices& devices);
    DeviceFacts deviceFacts() const;
    void stopDevices();
    std::optional<Date> recordingStartDate() const;
    RecordingMetadata metadata(const DeviceFacts& facts) const;
    void updateJournal(const DeviceFacts& facts);
    void abandonJournal();
    void completeFolder(const DeviceFacts& facts);
    bool writeMetadata(const DeviceFacts& facts) const;

    TakePorts m_ports;
    std::unique_ptr<CursorTrackingService> m_cursorTrackingService;
    std::unique_ptr<ScreenCaptureService> m_screenCaptureService;
    // Both write into the screen's file.
    std::unique_ptr<AudioCaptureService> m_audioCaptureService;
    std::unique_ptr<CameraCaptureService> m_cameraCaptureService;
    std::unique_ptr<LogJournal> m_journal; ///< Null where none can be kept.
    std::filesystem::path m_folder;
    std::error_code m_folderError; ///< Why there is no folder.
    bool m_isRecording = false;
    double m_elapsedTime = 0;
    int m_capturedWidth = 0;
    int m_capturedHeight = 0;
    std::atomic<double> m_recordingStartDate; ///< Seconds as in Date; NaN while absent.
};

} // namespace tavi
