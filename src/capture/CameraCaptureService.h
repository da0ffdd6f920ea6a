#pragma once

#include "base/Clock.h"
#include "base/SerialQueue.h"
#include "capture/AtomicTime.h"
#include "capture/CameraError.h"
#include "capture/CaptureSession.h"
#include "media/MediaLibrary.h"

#include <atomic>
#include <filesystem>
#include <memory>
#include <optional>

namespace tavi {

/// A microphone that joins the camera's session, and where its sound goes.
struct CameraMicrophone {
    CaptureDevice device;
    AudioWriterInput& externalAudioInput; ///< Of the screen's writer; lives until stopCapture().
    /// Sound of another bit depth is dropped; 0 accepts every one.
    std::uint32_t stableBitsPerChannel = 0;
};

/// Records a camera into a file of its own, `camera.mov`, as in a mirror; its time
/// zero is the camera's first picture. A microphone that runs at the same time runs in
/// the camera's session, and its sound goes into the screen's file.
///
/// States: idle -> capturing (startCapture returned) -> started (first picture) ->
/// stopped; a service serves one take.
/// Threads: one controlling thread; samples are handled on "com.tavi.camera".
/// The destructor stops the session and cancels a file that was not stopped.
class CameraCaptureService {
public:
    static constexpr std::int64_t kAverageBitRate = 2'000'000; ///< Bits per second.
    static constexpr int kExpectedFrameRate = 30;

    /// The ports outlive the service.
    CameraCaptureService(CaptureSessions& sessions, MediaLibrary& media, const Clock& clock);
    ~CameraCaptureService();

    CameraCaptureService(const CameraCaptureService&) = delete;
    CameraCaptureService& operator=(const CameraCaptureService&) = delete;

    /// Starts writing `outputURL`. Errors: a device that can't be opened, a file
    /// that can't be made; nothing runs then.
    Result<void, CameraError> startCapture(const CaptureDevice& camera,
                                           const std::filesystem::path& outputURL,
                                           const std::optional<CameraMicrophone>& microphone);

    /// Ends both; blocks until the camera's file is complete. Failures are swallowed. No sample
    /// reaches the screen's writer after it returns.
    void stopCapture();

    /// The host clock at the first picture; absent before it. Any thread.
    std::optional<MediaTime> firstSampleHostTime() const { return m_firstSampleHostTime.load(); }

    /// Whether a microphone joined the session.
    bool hasAudio() const { return m_hasAudio; }

    /// Why a device sends nothing now; absent while all is well.
    std::optional<CaptureDeviceError> interruption() const;

private:
    struct OpenFile {
        std::unique_ptr<AssetWriter> writer;
        VideoWriterInput* input = nullptr;
    };

    Result<const CaptureDeviceInput*, CameraError>
    addCamera(CaptureSession& session, const CaptureDevice& camera, SerialQueue& queue);
    Result<void, CameraError> addMicrophone(CaptureSession& session,
                                            const CameraMicrophone& microphone, SerialQueue& queue);
    Result<OpenFile, CameraError> openFile(const std::filesystem::path& path,
                                           Size pictureSize) const;
    void abandon();
    void handleSample(const CaptureSample& sample);
    void handlePicture(const CaptureSample& sample);
    void handleSound(const CaptureSample& sample);

    CaptureSessions& m_sessions;
    MediaLibrary& m_media;
    const Clock& m_clock;

    std::unique_ptr<CaptureSession> m_captureSession;
    std::unique_ptr<SerialQueue> m_queue;
    std::unique_ptr<AssetWriter> m_assetWriter;
    VideoWriterInput* m_videoInput = nullptr;
    Size m_pictureSize;
    AudioWriterInput* m_externalAudioInput = nullptr;
    std::uint32_t m_stableBitsPerChannel = 0;
    bool m_hasAudio = false;

    std::atomic<bool> m_isCapturing = false;
    bool m_sessionStarted = false; ///< Camera queue.
    AtomicTime m_firstSampleHostTime;
};

} // namespace tavi
