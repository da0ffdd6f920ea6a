#include "platform/pipewire/PipeWireSessions.h"

#include "platform/pipewire/CameraCapture.h"
#include "platform/pipewire/MicrophoneCapture.h"

#include <atomic>
#include <cassert>

namespace tavi {

namespace {

class Input final : public CaptureDeviceInput {
public:
    /// One of both is null.
    Input(const void* session, std::unique_ptr<MicrophoneCapture> microphone,
          std::unique_ptr<CameraCapture> camera)
        : m_session(session),
          m_microphone(std::move(microphone)),
          m_camera(std::move(camera)) {}

    const CaptureDevice& device() const override {
        return m_camera ? m_camera->device() : m_microphone->device();
    }
    Size pictureSize() const override { return m_camera ? m_camera->pictureSize() : Size{}; }

    const void* session() const { return m_session; }
    MicrophoneCapture* microphone() const { return m_microphone.get(); }
    CameraCapture* camera() const { return m_camera.get(); }

private:
    const void* m_session; ///< That made it; for comparison only.
    std::unique_ptr<MicrophoneCapture> m_microphone;
    std::unique_ptr<CameraCapture> m_camera;
};

class AudioOutput final : public CaptureAudioOutput {
public:
    explicit AudioOutput(const MicrophoneCapture& microphone) : m_microphone(microphone) {}

    AudioSettings recommendedAudioSettings() const override {
        constexpr AudioSampleFormat kUnknown{16, 1, 48000};
        return recommendedMovieAudio(m_microphone.format().value_or(kUnknown));
    }

private:
    const MicrophoneCapture& m_microphone;
};

/// Where the samples of a kind go.
struct Route {
    SerialQueue* queue = nullptr;
    std::shared_ptr<const CaptureSession::Handler> handler; ///< Shared with blocks that wait.
};

DeviceCapture::Sink sinkOf(const Route& route) {
    return [route](CaptureSample sample) {
        route.queue->post(
            [handler = route.handler, sample = std::move(sample)] { (*handler)(sample); });
    };
}

class PipeWireSession final : public CaptureSession {
public:
    ~PipeWireSession() override { stopRunning(); }

    Result<std::unique_ptr<CaptureDeviceInput>, CaptureDeviceError>
    makeDeviceInput(const CaptureDevice& device) override {
        std::unique_ptr<MicrophoneCapture> microphone;
        std::unique_ptr<CameraCapture> camera;
        DeviceCapture* capture = nullptr;
        if (device.kind == CaptureDeviceKind::camera) {
            camera = std::make_unique<CameraCapture>(device);
            capture = camera.get();
        } else {
            microphone = std::make_unique<MicrophoneCapture>(device);
            capture = microphone.get();
        }
        if (const auto opened = capture->open(); !opened) {
            return fail(opened.error());
        }
        return std::make_unique<Input>(this, std::move(microphone), std::move(camera));
    }

    bool canAddInput(const CaptureDeviceInput& input) const override {
        const auto* ours = dynamic_cast<const Input*>(&input);
        return ours != nullptr && ours->session() == this && !m_isRunning &&
               (ours->camera() != nullptr ? !m_camera : !m_microphone);
    }

    const CaptureDeviceInput& addInput(std::unique_ptr<CaptureDeviceInput> input) override {
        assert(canAddInput(*input));
        std::unique_ptr<Input> ours(static_cast<Input*>(input.release()));
        auto& place = ours->camera() != nullptr ? m_camera : m_microphone;
        place = std::move(ours);
        return *place;
    }

    bool canAddOutput(CaptureSampleKind kind) const override {
        if (m_isRunning) {
            return false;
        }
        return kind == CaptureSampleKind::picture ? m_camera && m_pictures.queue == nullptr
                                                  : m_microphone && m_sound.queue == nullptr;
    }

    CaptureAudioOutput& addAudioOutput(SerialQueue& queue, Handler handler) override {
        assert(canAddOutput(CaptureSampleKind::sound));
        m_sound = {&queue, std::make_shared<const Handler>(std::move(handler))};
        m_audioOutput = std::make_unique<AudioOutput>(*m_microphone->microphone());
        return *m_audioOutput;
    }

    void addVideoOutput(SerialQueue& queue, Handler handler) override {
        assert(canAddOutput(CaptureSampleKind::picture));
        m_pictures = {&queue, std::make_shared<const Handler>(std::move(handler))};
    }

    bool setVideoMirrored(bool isMirrored) override {
        if (m_pictures.queue == nullptr) {
            return false;
        }
        m_camera->camera()->setMirroring(isMirrored ? Mirroring::on : Mirroring::off);
        return true;
    }

    void startRunning() override {
        if (m_isRunning) {
            return;
        }
        m_isRunning = true;
        if (m_sound.queue != nullptr) {
            m_microphone->microphone()->start(sinkOf(m_sound));
        }
        if (m_pictures.queue != nullptr) {
            m_camera->camera()->start(sinkOf(m_pictures));
        }
    }

    void stopRunning() override {
        if (!m_isRunning) {
            return;
        }
        m_isRunning = false;
        if (m_sound.queue != nullptr) {
            m_microphone->microphone()->stop();
        }
        if (m_pictures.queue != nullptr) {
            m_camera->camera()->stop();
        }
    }

    bool isRunning() const override { return m_isRunning; }

    std::optional<CaptureDeviceError> interruption() const override {
        std::optional<CaptureDeviceError> found;
        if (m_microphone) {
            found = m_microphone->microphone()->interruption();
        }
        return found || !m_camera ? found : m_camera->camera()->interruption();
    }

private:
    std::atomic<bool> m_isRunning = false;
    std::unique_ptr<Input> m_microphone;
    std::unique_ptr<Input> m_camera;
    Route m_sound;
    Route m_pictures;
    std::unique_ptr<AudioOutput> m_audioOutput;
};

} // namespace

std::unique_ptr<CaptureSession> PipeWireSessions::makeSession(CapturePreset) {
    return std::make_unique<PipeWireSession>(); // a camera's size is the medium one anyway
}

} // namespace tavi
