#pragma once

#include "platform/pipewire/CameraFormat.h"
#include "platform/pipewire/CameraPicture.h"
#include "platform/pipewire/DeviceCapture.h"

#include <atomic>

namespace tavi {

/// The pictures of a camera, at the size that was chosen when it was opened.
class CameraCapture final : public DeviceCapture {
public:
    explicit CameraCapture(CaptureDevice device) : DeviceCapture(std::move(device), "pw-camera") {}
    ~CameraCapture() override { close(); }

    /// After open(): of every picture that comes. Any thread.
    Size pictureSize() const { return {m_width.load() * 1.0, m_height.load() * 1.0}; }

    /// Any thread, from the next picture on.
    void setMirroring(Mirroring mirroring) { m_mirroring = mirroring; }

private:
    bool describe(const Parameters& parameters) override;
    void parametersChanged(const Parameters&) override {}
    StreamPlan plan() override;
    bool formatAgreed(pw_stream& stream, const spa_pod& format) override;
    bool onlyNewestCounts() const override { return true; }
    std::optional<CaptureSample> read(pw_stream& stream, const spa_buffer& buffer) override;

    std::int64_t timeOf(pw_stream& stream, const spa_buffer& buffer);
    PixelBufferPtr pictureOf(const spa_buffer& buffer);

    std::atomic<int> m_width = 0; ///< Even; 0 before the camera was opened.
    std::atomic<int> m_height = 0;
    std::atomic<Mirroring> m_mirroring = Mirroring::off;

    // Of the connection's thread.
    CameraFormat m_format;    ///< What is asked for.
    CameraPicture m_delivery; ///< What was agreed upon: a picture without bytes.
    std::int64_t m_last = 0;  ///< Time of the last picture, host nanoseconds.
};

} // namespace tavi
