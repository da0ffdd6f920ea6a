#pragma once

#include "capture/ScreenStream.h"
#include "fakes/CallLog.h"

#include <atomic>
#include <optional>

namespace tavi {

/// A screen whose samples the test sends. What is asked of it is noted ("makeStream",
/// "startCapture", "stopCapture").
class FakeScreenStreams final : public ScreenStreams {
public:
    explicit FakeScreenStreams(CallLog* log = nullptr) : m_log(log != nullptr ? *log : m_ownLog) {}

    bool hasAlpha(const ScreenFilter&) override { return givesAlpha; }

    Result<std::unique_ptr<ScreenStream>, CaptureError>
    makeStream(const ScreenFilter& filter, const ScreenStreamConfiguration& config) override {
        m_log.note("makeStream");
        lastFilter = filter;
        lastConfiguration = config;
        if (makeError) {
            return fail(*makeError);
        }
        return std::make_unique<Stream>(*this);
    }

    /// Sends a sample to the stream's queue; nothing when no stream is there.
    void send(const ScreenSample& sample) {
        if (m_queue != nullptr) {
            m_queue->post([handler = m_handler, sample] { handler(sample); });
        }
    }

    /// A sample at `seconds` with a picture of 2 x 2 pixels.
    void sendPicture(double seconds) {
        ScreenSample sample;
        sample.presentationTime = MediaTime::fromSeconds(seconds, MediaTime::kNanoseconds);
        sample.image = std::make_shared<PixelBuffer>(2, 2);
        send(sample);
    }

    /// Waits until everything sent was handled.
    void settle() {
        if (m_queue != nullptr) {
            m_queue->sync([] {});
        }
    }

    std::string queueLabel() const { return m_queue != nullptr ? m_queue->label() : ""; }
    bool isRunning() const { return m_isRunning; }

    ScreenFilter lastFilter;
    ScreenStreamConfiguration lastConfiguration;
    std::optional<CaptureError> makeError;
    std::optional<CaptureError> outputError;
    std::optional<CaptureError> startError;
    std::optional<CaptureError> stopError;
    std::optional<CaptureError> failure;
    bool givesAlpha = false;
    bool sendsFirstPictureAtStart = false;
    /// Runs inside stopCapture(), before it returns.
    std::function<void()> whileStopping;

private:
    class Stream final : public ScreenStream {
    public:
        explicit Stream(FakeScreenStreams& owner) : m_owner(owner) {}
        ~Stream() override {
            m_owner.m_queue = nullptr;
            m_owner.m_isRunning = false;
        }
        Result<void, CaptureError> addStreamOutput(SerialQueue& queue, Handler handler) override {
            if (m_owner.outputError) {
                return fail(*m_owner.outputError);
            }
            m_owner.m_queue = &queue;
            m_owner.m_handler = std::move(handler);
            return {};
        }
        Result<void, CaptureError> startCapture() override {
            m_owner.m_log.note("startCapture");
            if (m_owner.startError) {
                return fail(*m_owner.startError);
            }
            m_owner.m_isRunning = true;
            if (m_owner.sendsFirstPictureAtStart) {
                m_owner.sendPicture(1);
                m_owner.settle();
            }
            return {};
        }
        Result<void, CaptureError> stopCapture() override {
            m_owner.m_log.note("stopCapture");
            if (m_owner.whileStopping) {
                m_owner.whileStopping();
            }
            m_owner.m_isRunning = false;
            if (m_owner.stopError) {
                return fail(*m_owner.stopError);
            }
            return {};
        }
        std::optional<CaptureError> failure() const override { return m_owner.failure; }

    private:
        FakeScreenStreams& m_owner;
    };

    CallLog m_ownLog;
    CallLog& m_log;
    SerialQueue* m_queue = nullptr;
    ScreenStream::Handler m_handler;
    bool m_isRunning = false;
};

} // namespace tavi
