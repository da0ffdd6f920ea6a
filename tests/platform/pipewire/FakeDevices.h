#pragma once

#include <atomic>
#include <cstdint>
#include <pipewire/pipewire.h>
#include <spa/param/audio/raw.h>
#include <spa/param/video/raw.h>
#include <string>
#include <vector>

namespace tavi::test {

/// A source of the test's own on the daemon, on a thread of its own; unplugged at the end.
class FakeSource {
protected:
    FakeSource(const pw_stream_events& events, pw_properties* properties);
    ~FakeSource();
    FakeSource(const FakeSource&) = delete;
    FakeSource& operator=(const FakeSource&) = delete;

    void connect(pw_stream_flags flags, std::vector<const spa_pod*> formats);
    void stop(); ///< No callback comes any more.

    pw_thread_loop* m_loop;
    pw_stream* m_stream = nullptr;
};

struct FakeSound {
    std::uint32_t format = SPA_AUDIO_FORMAT_S16;
    std::uint32_t rate = 48000;
    std::uint32_t channels = 1;
    double frequency = 440; ///< Of the first channel, Hz; that of the next is twice as high, ...

    static constexpr double kAmplitude = 0.5;
};

/// A microphone that hears a tone.
class FakeMicrophone : private FakeSource {
public:
    FakeMicrophone(const std::string& name, const std::string& description, FakeSound sound);
    ~FakeMicrophone() { stop(); }

    /// Hears nothing meanwhile.
    void mute(bool isMuted) { m_isMuted = isMuted; }
    /// When a tone that was muted was first heard again, host nanoseconds; 0: it was not.
    std::int64_t firstHeard() const { return m_firstHeard; }

private:
    static void process(void* data);
    void fill(std::uint8_t* to, std::uint32_t frames);

    FakeSound m_sound;
    std::uint64_t m_position = 0;
    std::atomic<bool> m_isMuted = false;
    std::atomic<std::int64_t> m_firstHeard = 0;
};

/// What a camera can deliver; the format SPA_VIDEO_FORMAT_ENCODED stands for JPEG pictures.
struct FakeMode {
    std::uint32_t format = SPA_VIDEO_FORMAT_BGRx;
    int width = 640;
    int height = 480;
    int rate = 30; ///< Pictures a second.
};

/// A camera that sees two plain halves, each 0xRRGGBB.
class FakeCamera : private FakeSource {
public:
    static constexpr std::uint32_t kLeft = 0xC83C28;
    static constexpr std::uint32_t kRight = 0x2850B4;

    FakeCamera(const std::string& name, const std::string& description,
               std::vector<FakeMode> modes);
    ~FakeCamera();

    /// Delivers nothing meanwhile.
    void freeze(bool isFrozen) { m_isFrozen = isFrozen; }
    /// The time of the picture that was taken last, host nanoseconds.
    std::int64_t lastPicture() const { return m_lastPicture; }

private:
    static void state(void* data, pw_stream_state, pw_stream_state now, const char*);
    static void parameter(void* data, std::uint32_t id, const spa_pod* pod);
    static void process(void* data);
    static void tick(void* data, std::uint64_t);

    std::vector<FakeMode> m_modes;
    FakeMode m_mode; ///< In use.
    std::vector<std::uint8_t> m_picture;
    spa_source* m_timer = nullptr;
    std::atomic<bool> m_isFrozen = false;
    std::atomic<std::int64_t> m_lastPicture = 0;
};

} // namespace tavi::test
