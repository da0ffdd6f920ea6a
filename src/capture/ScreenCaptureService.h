#pragma once

#include "base/Clock.h"
#include "base/SerialQueue.h"
#include "capture/AtomicTime.h"
#include "capture/ScreenStream.h"
#include "media/MediaLibrary.h"

#include <atomic>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>

namespace tavi {

/// What a take's video is to hold besides opaque pictures.
struct ScreenCaptureOptions {
    /// The source may have transparent parts (a window). Where it has, the video has a track of
    /// their alpha.
    bool alpha = false;
    /// A track of sound; absent: none. It is always a live one.
    std::optional<AudioSettings> audioSettings;
};

/// Writes the frames of a screen stream into `video.mov`. Its first frame is
/// the take's time zero. The file's track of sound is fed by
/// the services of the microphone and the camera.
///
/// States: idle -> writing (startCapture returned) -> started (first frame) ->
/// stopped; a service serves one take.
/// Threads: one controlling thread; frames are handled on "com.tavi.capture".
/// What is read from elsewhere is atomic.
/// The destructor stops the stream and cancels a file that was not stopped.
class ScreenCaptureService {
public:
    static constexpr std::int64_t kAverageBitRate = 20'000'000; ///< Bits per second.
    static constexpr int kExpectedFrameRate = 60;

    /// The ports outlive the service.
    ScreenCaptureService(ScreenStreams& streams, MediaLibrary& media, const Clock& clock);
    ~ScreenCaptureService();

    ScreenCaptureService(const ScreenCaptureService&) = delete;
    ScreenCaptureService& operator=(const ScreenCaptureService&) = delete;

    /// Called once, on the capture queue, at the first frame; set before startCapture().
    std::function<void()> onSessionStarted;

    /// Called on the capture queue when the source is elsewhere than before
    /// (ScreenSample::movedTo); set before startCapture().
    std::function<void(const Rect&)> onSourceMoved;

    /// Starts writing `outputURL` from the source.
    ///
    /// Shapes: `width` x `height` is the source in pixels, with no scale factor.
    ///         The encoder takes even sizes only, so an odd one grows by one.
    /// Errors: a writer or a stream that can't start; nothing runs then.
    Result<void, CaptureError> startCapture(const ScreenFilter& filter, int width, int height,
                                            const std::filesystem::path& outputURL,
                                            const ScreenCaptureOptions& options = {});

    /// Ends the take's file; who feeds audioWriterInput() has stopped before. Blocks until it is
    /// complete. The last picture lasts until this call. Failures are swallowed, see failure().
    void stopCapture();

    bool sessionStarted() const { return m_sessionStarted; }

    /// The host clock at the first frame; absent before it and after stopCapture().
    std::optional<MediaTime> sessionStartTime() const { return m_sessionStartTime.load(); }

    /// Where sound goes; null without audio settings and after stopCapture().
    AudioWriterInput* audioWriterInput() const { return m_audioWriterInput; }

    /// What made the stream or the file fail; absent while all is well. Still
    /// there after stopCapture(). Controlling thread.
    std::optional<CaptureError> failure() const;

    /// Frames that the encoder had no room for. Any thread.
    std::uint64_t droppedFrames() const { return m_droppedFrames; }
    /// Frames that the encoder took. Any thread.
    std::uint64_t appendedFrames() const { return m_appendedFrames; }

private:
    Result<void, CaptureError> startWriter(int width, int height,
                                           const std::filesystem::path& outputURL,
                                           const ScreenCaptureOptions& options);
    Result<void, CaptureError> addInputs(AssetWriter& writer, int width, int height,
                                         const ScreenCaptureOptions& options);
    Result<void, CaptureError> startStream(const ScreenFilter& filter, int width, int height);
    void abandonStart();
    bool handleSample(const ScreenSample& sample);
    void startSession(MediaTime time);
    void finishFile(MediaTime end);

    ScreenStreams& m_streams;
    MediaLibrary& m_media;
    const Clock& m_clock;

    std::unique_ptr<ScreenStream> m_stream;
    std::unique_ptr<AssetWriter> m_assetWriter;
    VideoWriterInput* m_videoInput = nullptr;
    AudioWriterInput* m_audioWriterInput = nullptr;
    std::unique_ptr<SerialQueue> m_queue;
    std::optional<CaptureError> m_failure;

    std::atomic<bool> m_isCapturing = false;
    std::atomic<bool> m_sessionStarted = false;
    AtomicTime m_sessionStartTime;
    std::atomic<std::uint64_t> m_appendedFrames = 0;
    std::atomic<std::uint64_t> m_droppedFrames = 0;
};

} // namespace tavi
