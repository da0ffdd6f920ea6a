#pragma once

#include "platform/pipewire/FakeSource.h"

#include <atomic>
#include <cstdint>
#include <spa/param/video/raw.h>
#include <string>
#include <vector>

namespace tavi::test {

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

    /// From now on the border between the halves goes from left to right once in kSweep of the host
    /// clock. Only for formats of four bytes a pixel.
    static constexpr std::int64_t kSweep = 2'000'000'000; // nanoseconds
    void sweep() { m_isSweeping = true; }
    /// Delivers nothing meanwhile.
    void freeze(bool isFrozen) { m_isFrozen = isFrozen; }
    /// The time of the picture that was taken last, host nanoseconds.
    std::int64_t lastPicture() const { return m_lastPicture; }
    /// How many it took so far.
    int pictures() const { return m_pictures; }

private:
    static void state(void* data, pw_stream_state, pw_stream_state now, const char*);
    static void parameter(void* data, std::uint32_t id, const spa_pod* pod);
    static void process(void* data);
    static void tick(void* data, std::uint64_t);
    void moveBorder(std::int64_t time);

    std::vector<FakeMode> m_modes;
    FakeMode m_mode; ///< In use.
    std::vector<std::uint8_t> m_picture;
    spa_source* m_timer = nullptr;
    std::atomic<bool> m_isFrozen = false;
    std::atomic<bool> m_isSweeping = false;
    std::atomic<std::int64_t> m_lastPicture = 0;
    std::atomic<int> m_pictures = 0;
};

} // namespace tavi::test
