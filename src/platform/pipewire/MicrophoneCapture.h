#pragma once

#include "platform/pipewire/DeviceCapture.h"
#include "platform/pipewire/SampleClock.h"

#include <spa/param/audio/raw.h>

namespace tavi {

/// The sound of a microphone, as floats at the device's own rate and channels.
class MicrophoneCapture final : public DeviceCapture {
public:
    static constexpr int kMaximumChannels = 8; ///< Of more, the first ones are taken.

    explicit MicrophoneCapture(CaptureDevice device)
        : DeviceCapture(std::move(device), "pw-microphone") {}
    ~MicrophoneCapture() override { close(); }

    /// How the device delivers, absent while it isn't known. Any thread.
    std::optional<AudioSampleFormat> format() const;

private:
    bool describe(const Parameters& parameters) override;
    void parametersChanged(const Parameters& parameters) override;
    StreamPlan plan() override;
    bool formatAgreed(pw_stream& stream, const spa_pod& format) override;
    bool onlyNewestCounts() const override { return false; }
    std::optional<CaptureSample> read(pw_stream& stream, const spa_buffer& buffer) override;

    void askForBuffers(pw_stream& stream) const;
    std::int64_t startOf(pw_stream& stream, std::size_t frames) const;
    void setFormat(const spa_audio_info_raw& info);

    // Of the connection's thread.
    spa_audio_info_raw m_deviceInfo{}; ///< What the device delivers, or would by itself.
    int m_rate = 0;                    ///< Of the stream; 0 before a format was agreed upon.
    int m_channels = 0;
    SampleClock m_clock;

    mutable std::mutex m_formatMutex;
    std::optional<AudioSampleFormat> m_format; ///< By its mutex.
};

/// Bits of one sample of a format of SPA (SPA_AUDIO_FORMAT_*), without padding; 0: unknown.
std::uint32_t bitsPerChannel(std::uint32_t format);

} // namespace tavi
