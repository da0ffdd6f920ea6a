#pragma once

#include "base/AudioBuffer.h"
#include "base/Geometry.h"
#include "base/MediaTime.h"
#include "base/PixelBuffer.h"
#include "base/Result.h"
#include "base/SerialQueue.h"
#include "capture/CaptureDevices.h"
#include "media/AssetWriter.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>

namespace tavi {

/// How a microphone delivers its sound, before it was made floats.
struct AudioSampleFormat {
    std::uint32_t bitsPerChannel = 0; ///< Of one sample of one channel: 16, 24, 32, ...
    int channels = 0;
    int sampleRate = 0; ///< Hz.

    bool operator==(const AudioSampleFormat&) const = default;
};

enum class CaptureSampleKind { sound, picture };

/// A picture or a stretch of sound from a device.
struct CaptureSample {
    CaptureSampleKind kind = CaptureSampleKind::sound;
    /// Host clock (CLOCK_MONOTONIC): when the picture was taken, or the first moment of the
    /// sound was heard, as near as the system tells. Grows from sample to sample of a kind.
    MediaTime presentationTime;
    PixelBufferPtr image; ///< Of a picture: opaque, top row first; absent in a mere status.
    AudioBufferPtr sound; ///< Of sound: never empty, at the device's own rate and channels.
    std::optional<AudioSampleFormat> format; ///< Of sound: absent while it is not known.
    bool isValid = true; ///< False: the system marked the data as damaged; not to be used.
};

/// What a session asks of its camera.
enum class CapturePreset {
    none, ///< Nothing: a session of sound.
    /// Pictures of the size nearest to 640 x 480 at 30 or more a second: the size for a small
    /// picture in the film, and one that cameras deliver without compression.
    medium,
};

/// The way of one opened device into a session. Destroyed: the device is let go.
class CaptureDeviceInput {
public:
    virtual ~CaptureDeviceInput() = default;

    virtual const CaptureDevice& device() const = 0;

    /// Of a camera: width and height, in pixels and even, of every picture that will come.
    /// Known at once and unchanging: a camera that can't deliver just this after it was
    /// plugged in again delivers nothing. Of a microphone: 0 x 0.
    virtual Size pictureSize() const = 0;
};

/// The end of a session at which sound comes out.
class CaptureAudioOutput {
public:
    virtual ~CaptureAudioOutput() = default;

    /// How the sound that comes is best written into a QuickTime movie, for a live
    /// writer; see recommendedMovieAudio(). Before any sound came: for a format
    /// that the device announced, else for one channel at 48 kHz. Any thread.
    virtual AudioSettings recommendedAudioSettings() const = 0;
};

/// The settings for sound of `format` in a take's movie: one channel or two (more are mixed
/// down), 44.1 kHz for sound of just that rate and 48 kHz for all else, 128 kbit/s,
/// live.
AudioSettings recommendedMovieAudio(const AudioSampleFormat& format);

/// Devices that deliver samples: at most one microphone and one camera.
///
/// Order: inputs, then outputs, then startRunning(); nothing is added while it runs.
/// Samples arrive on the queue of their output, sound and pictures of one queue in the order in
/// which they were taken as far as the system tells. A device that vanishes, falls silent or
/// loses the media service sends nothing meanwhile: the session goes on with what is left of
/// it, interruption() tells, and samples come again, times continuing on the host clock, when the
/// device is back. No other device takes its place.
/// Threads: one controlling thread, never one of the outputs' queues; handlers run on their
/// queues. An adapter never waits for a queue while it holds what stopRunning() needs.
/// The destructor stops the session.
class CaptureSession {
public:
    using Handler = std::function<void(const CaptureSample&)>;

    virtual ~CaptureSession() = default;

    /// Opens a device for this session. Blocks for as long as the device takes to say what it
    /// delivers, two seconds at most. Errors: all kinds.
    virtual Result<std::unique_ptr<CaptureDeviceInput>, CaptureDeviceError>
    makeDeviceInput(const CaptureDevice& device) = 0;

    /// False when a device of its kind is in the session, or the input is of another session.
    virtual bool canAddInput(const CaptureDeviceInput& input) const = 0;

    /// Only what can be added. The input lives as long as the session.
    virtual const CaptureDeviceInput& addInput(std::unique_ptr<CaptureDeviceInput> input) = 0;

    /// False without an input of the kind, or when there is an output for it.
    virtual bool canAddOutput(CaptureSampleKind kind) const = 0;

    /// Sound of the microphone, 5 to 50 ms a sample, goes to `handler` on `queue`. The output
    /// lives as long as the session, `queue` longer.
    virtual CaptureAudioOutput& addAudioOutput(SerialQueue& queue, Handler handler) = 0;

    /// Pictures of the camera go to `handler` on `queue`, which outlives the session.
    virtual void addVideoOutput(SerialQueue& queue, Handler handler) = 0;

    /// Whether pictures are turned into their mirror image, left to right; at first they are
    /// not. False, and nothing happens, without an output for pictures.
    virtual bool setVideoMirrored(bool isMirrored) = 0;

    /// Lets samples come; does not wait for the first. What is wrong, interruption() tells.
    virtual void startRunning() = 0;

    /// No sample is queued after it returns; those queued before still reach their handlers.
    /// Nothing on a session that does not run.
    virtual void stopRunning() = 0;

    virtual bool isRunning() const = 0;

    /// Why a device of a running session sends nothing now; absent while all is well, and
    /// again once it is back. Any thread.
    virtual std::optional<CaptureDeviceError> interruption() const = 0;
};

/// Makes sessions.
class CaptureSessions {
public:
    virtual ~CaptureSessions() = default;

    /// A session without inputs. Never fails: what is wrong shows when a device is opened.
    virtual std::unique_ptr<CaptureSession> makeSession(CapturePreset preset) = 0;
};

} // namespace tavi
