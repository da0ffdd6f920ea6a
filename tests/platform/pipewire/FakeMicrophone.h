#pragma once

#include "platform/pipewire/FakeSource.h"

#include <atomic>
#include <cstdint>
#include <spa/node/io.h>
#include <spa/param/audio/raw.h>
#include <string>

namespace tavi::test {

struct FakeSound {
    std::uint32_t format = SPA_AUDIO_FORMAT_S16;
    std::uint32_t rate = 48000;
    std::uint32_t channels = 1;
    double frequency = 440; ///< Of the first channel, Hz; that of the next is twice as high, ...
    double clockError = 0;  ///< By which share the device's clock is too fast.
    bool isBeeping = false; ///< Only the first kBeep of each second of the host clock is heard.

    static constexpr double kAmplitude = 0.5;
    static constexpr std::int64_t kBeep = 50'000'000; // nanoseconds
};

/// A microphone that hears a tone, and knows when it heard each sample of it.
///
/// Like a sound card it has a clock of its own and keeps what was heard until the graph takes it:
/// a slow machine gets the sound late, not never.
class FakeMicrophone : private FakeSource {
public:
    FakeMicrophone(const std::string& name, const std::string& description, FakeSound sound);
    ~FakeMicrophone();

    /// Hears nothing meanwhile.
    void mute(bool isMuted) { m_isMuted = isMuted; }
    /// When a tone that was muted was first heard again, host nanoseconds; 0: it was not.
    std::int64_t firstHeard() const { return m_firstHeard; }

private:
    struct Callbacks;

    void announceLatency();
    void start();
    void tick();
    void process();
    void fill(std::uint8_t* to, std::uint32_t frames);
    double valueAt(std::int64_t time, std::uint32_t channel) const;
    void wakeAt(std::int64_t time);
    double framesUntil(std::int64_t time) const;
    std::int64_t timeOf(std::uint64_t frame) const;

    FakeSound m_sound;
    spa_source* m_timer = nullptr;
    spa_io_position* m_graph = nullptr; ///< What the graph wants; null while it wants nothing.
    bool m_isRunning = false;
    std::int64_t m_cycleStart = 0; ///< Of a cycle under way, host nanoseconds; 0: there is none.
    std::int64_t m_origin = 0;     ///< When the first frame was heard, host nanoseconds.
    double m_due = 0;              ///< When the next portion is whole, host nanoseconds.
    std::uint64_t m_ticks = 0;     ///< Of the graph's clock.
    std::uint64_t m_position = 0;  ///< Frames since the origin.
    std::atomic<bool> m_isMuted = false;
    std::atomic<std::int64_t> m_firstHeard = 0;
};

} // namespace tavi::test
