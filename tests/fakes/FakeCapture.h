#pragma once

#include "capture/CaptureSession.h"
#include "fakes/CallLog.h"

#include <algorithm>
#include <atomic>
#include <iterator>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace tavi {

inline const CaptureDevice kFakeMicrophone{"alsa.mic", "Desk Microphone",
                                           CaptureDeviceKind::microphone};
inline const CaptureDevice kFakeCamera{"v4l2.cam", "Lid Camera", CaptureDeviceKind::camera};

/// A list of devices that the test changes. Handlers run at once. Questions are noted
/// ("requestAccess camera", "devices camera").
class FakeCaptureDevices final : public CaptureDevices {
public:
    explicit FakeCaptureDevices(CallLog* log = nullptr) : m_log(log != nullptr ? *log : m_ownLog) {}

    void requestAccess(CaptureDeviceKind kind, std::function<void(bool)> handler) override {
        note("requestAccess", kind);
        handler(isAllowed && forbidden.count(kind) == 0);
    }
    Result<std::vector<CaptureDevice>, CaptureDeviceError>
    devices(CaptureDeviceKind kind) override {
        note("devices", kind);
        std::vector<CaptureDevice> found;
        std::copy_if(plugged.begin(), plugged.end(), std::back_inserter(found),
                     [kind](const CaptureDevice& device) { return device.kind == kind; });
        return found;
    }
    void setChangeHandler(std::function<void()> handler) override {
        m_handler = std::move(handler);
    }

    void change(std::vector<CaptureDevice> devices) {
        plugged = std::move(devices);
        if (m_handler) {
            m_handler();
        }
    }

    bool isAllowed = true;
    std::set<CaptureDeviceKind> forbidden;
    std::vector<CaptureDevice> plugged{kFakeMicrophone, kFakeCamera};

private:
    void note(const std::string& call, CaptureDeviceKind kind) {
        m_log.note(call + (kind == CaptureDeviceKind::camera ? " camera" : " microphone"));
    }

    CallLog m_ownLog;
    CallLog& m_log;
    std::function<void()> m_handler;
};

/// Devices whose samples the test sends. What is asked of a session is noted
/// with the id of the device ("addInput alsa.mic"); samples go to the session that runs.
class FakeCaptureSessions final : public CaptureSessions {
public:
    explicit FakeCaptureSessions(CallLog* log = nullptr)
        : m_log(log != nullptr ? *log : m_ownLog) {}

    std::unique_ptr<CaptureSession> makeSession(CapturePreset preset) override {
        note(preset == CapturePreset::medium ? "makeSession medium" : "makeSession");
        return std::make_unique<Session>(*this);
    }

    /// Queues a sample at the output of its kind; nothing when no session with one runs.
    void send(const CaptureSample& sample) {
        for (Session* session : m_sessions) {
            session->send(sample);
        }
    }

    /// Sound of 4 moments.
    void sendSound(std::uint32_t bits, double seconds = 1) {
        CaptureSample sample;
        sample.kind = CaptureSampleKind::sound;
        sample.presentationTime = MediaTime::fromSeconds(seconds, MediaTime::kNanoseconds);
        sample.sound = std::make_shared<AudioBuffer>(AudioBuffer{48000, 1, {0, 0, 0, 0}});
        sample.format = AudioSampleFormat{bits, 1, 48000};
        send(sample);
    }

    void sendPicture(double seconds, int width = 640, int height = 480) {
        CaptureSample sample;
        sample.kind = CaptureSampleKind::picture;
        sample.presentationTime = MediaTime::fromSeconds(seconds, MediaTime::kNanoseconds);
        sample.image = std::make_shared<PixelBuffer>(width, height);
        send(sample);
    }

    /// Waits until everything sent was handled.
    void settle() {
        for (Session* session : m_sessions) {
            session->settle();
        }
    }

    std::vector<std::string> calls() const { return m_log.calls(); }
    /// These two may be asked while another thread starts and stops sessions.
    std::size_t sessionCount() const {
        const std::lock_guard lock(m_mutex);
        return m_sessions.size();
    }
    bool isRunning() const {
        const std::lock_guard lock(m_mutex);
        return std::any_of(m_sessions.begin(), m_sessions.end(),
                           [](const Session* session) { return session->isRunning(); });
    }

    Size pictureSize{640, 480};
    std::map<std::string, CaptureDeviceError> deviceErrors; ///< By the device's id.
    std::set<std::string> refusedInputs;                    ///< Ids of devices.
    std::set<CaptureSampleKind> refusedOutputs;
    std::optional<CaptureDeviceError> interruption;
    std::vector<std::string> queueLabels; ///< Of the outputs added.
    bool isMirrored = false;
    AudioSettings recommendation{2, 48000, 96'000, true};
    /// Run inside startRunning() and stopRunning(), before they return.
    std::function<void()> whileStarting;
    std::function<void()> whileStopping;

private:
    class Input final : public CaptureDeviceInput {
    public:
        Input(CaptureDevice device, Size size) : m_device(std::move(device)), m_size(size) {}
        const CaptureDevice& device() const override { return m_device; }
        Size pictureSize() const override {
            return m_device.kind == CaptureDeviceKind::camera ? m_size : Size{};
        }

    private:
        CaptureDevice m_device;
        Size m_size;
    };

    class Session final : public CaptureSession, public CaptureAudioOutput {
    public:
        explicit Session(FakeCaptureSessions& owner) : m_owner(owner) {
            const std::lock_guard lock(owner.m_mutex);
            owner.m_sessions.push_back(this);
        }
        ~Session() override {
            const std::lock_guard lock(m_owner.m_mutex);
            std::erase(m_owner.m_sessions, this);
        }

        Result<std::unique_ptr<CaptureDeviceInput>, CaptureDeviceError>
        makeDeviceInput(const CaptureDevice& device) override {
            m_owner.note("makeDeviceInput " + device.id);
            const auto error = m_owner.deviceErrors.find(device.id);
            if (error != m_owner.deviceErrors.end()) {
                return fail(error->second);
            }
            return std::make_unique<Input>(device, m_owner.pictureSize);
        }
        bool canAddInput(const CaptureDeviceInput& input) const override {
            return m_owner.refusedInputs.count(input.device().id) == 0;
        }
        const CaptureDeviceInput& addInput(std::unique_ptr<CaptureDeviceInput> input) override {
            m_owner.note("addInput " + input->device().id);
            m_inputs.push_back(std::move(input));
            return *m_inputs.back();
        }
        bool canAddOutput(CaptureSampleKind kind) const override {
            return m_owner.refusedOutputs.count(kind) == 0;
        }
        CaptureAudioOutput& addAudioOutput(SerialQueue& queue, Handler handler) override {
            addOutput("addAudioOutput", CaptureSampleKind::sound, queue, std::move(handler));
            return *this;
        }
        void addVideoOutput(SerialQueue& queue, Handler handler) override {
            addOutput("addVideoOutput", CaptureSampleKind::picture, queue, std::move(handler));
        }
        bool setVideoMirrored(bool isMirrored) override {
            const bool hasPictures = m_outputs.count(CaptureSampleKind::picture) > 0;
            m_owner.isMirrored = isMirrored && hasPictures;
            return hasPictures;
        }
        void startRunning() override {
            m_owner.note("startRunning");
            m_isRunning = true;
            if (m_owner.whileStarting) {
                m_owner.whileStarting();
            }
        }
        void stopRunning() override {
            m_owner.note("stopRunning");
            if (m_owner.whileStopping) {
                m_owner.whileStopping();
            }
            m_isRunning = false;
        }
        bool isRunning() const override { return m_isRunning; }
        std::optional<CaptureDeviceError> interruption() const override {
            return m_owner.interruption;
        }
        AudioSettings recommendedAudioSettings() const override { return m_owner.recommendation; }

        void send(const CaptureSample& sample) {
            const auto output = m_outputs.find(sample.kind);
            if (m_isRunning && output != m_outputs.end()) {
                output->second.queue->post(
                    [handler = output->second.handler, sample] { handler(sample); });
            }
        }
        void settle() {
            for (const auto& [kind, output] : m_outputs) {
                output.queue->sync([] {});
            }
        }

    private:
        struct Output {
            SerialQueue* queue;
            Handler handler;
        };

        void addOutput(const char* call, CaptureSampleKind kind, SerialQueue& queue,
                       Handler handler) {
            m_owner.note(call);
            m_owner.queueLabels.push_back(queue.label());
            m_outputs.emplace(kind, Output{&queue, std::move(handler)});
        }

        FakeCaptureSessions& m_owner;
        std::vector<std::unique_ptr<CaptureDeviceInput>> m_inputs;
        std::map<CaptureSampleKind, Output> m_outputs;
        std::atomic<bool> m_isRunning = false;
    };

    void note(const std::string& call) { m_log.note(call); }

    CallLog m_ownLog;
    CallLog& m_log;
    mutable std::mutex m_mutex; ///< Of the next.
    std::vector<Session*> m_sessions;
};

} // namespace tavi
