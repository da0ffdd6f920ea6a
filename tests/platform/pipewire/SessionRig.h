#pragma once

#include "capture/CaptureSession.h"
#include "platform/pipewire/PipeWireSessions.h"
#include "platform/pipewire/PipeWireTestServer.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <mutex>
#include <vector>

namespace tavi::test {

inline CaptureDevice microphone(const std::string& id) {
    return {id, "Microphone " + id, CaptureDeviceKind::microphone};
}

inline CaptureDevice camera(const std::string& id) {
    return {id, "Camera " + id, CaptureDeviceKind::camera};
}

/// A session of real devices and all it delivered.
class SessionRig {
public:
    ~SessionRig() { m_session->stopRunning(); }

    CaptureSession& session() { return *m_session; }

    /// Puts the device and its output into the session.
    void add(const CaptureDevice& device) {
        auto input = m_session->makeDeviceInput(device);
        ASSERT_TRUE(input) << input.error().description();
        ASSERT_TRUE(m_session->canAddInput(**input));
        const auto& added = m_session->addInput(std::move(*input));
        const auto take = [this](const CaptureSample& sample) {
            const std::lock_guard lock(m_mutex);
            m_samples.push_back(sample);
        };
        if (device.kind == CaptureDeviceKind::camera) {
            m_pictureSize = added.pictureSize();
            ASSERT_TRUE(m_session->canAddOutput(CaptureSampleKind::picture));
            m_session->addVideoOutput(m_queue, take);
        } else {
            ASSERT_TRUE(m_session->canAddOutput(CaptureSampleKind::sound));
            m_audioOutput = &m_session->addAudioOutput(m_queue, take);
        }
    }

    Size pictureSize() const { return m_pictureSize; }
    const CaptureAudioOutput& audioOutput() const { return *m_audioOutput; }

    std::vector<CaptureSample> samples() const {
        const std::lock_guard lock(m_mutex);
        return m_samples;
    }
    std::size_t count() const {
        const std::lock_guard lock(m_mutex);
        return m_samples.size();
    }
    void clear() {
        const std::lock_guard lock(m_mutex);
        m_samples.clear();
    }

    bool waitForCount(std::size_t count) const {
        return waitFor([&] { return this->count() >= count; });
    }
    bool waitForInterruption(CaptureDeviceError::Kind kind) const {
        return waitFor([&] {
            const auto found = m_session->interruption();
            return found && found->kind == kind;
        });
    }

private:
    SerialQueue m_queue{"test"};
    PipeWireSessions m_sessions;
    std::unique_ptr<CaptureSession> m_session = m_sessions.makeSession(CapturePreset::medium);
    CaptureAudioOutput* m_audioOutput = nullptr;
    Size m_pictureSize;
    mutable std::mutex m_mutex;
    std::vector<CaptureSample> m_samples;
};

} // namespace tavi::test
