#include "platform/pipewire/FakeMicrophone.h"

#include "platform/pipewire/DeviceCapture.h"
#include "platform/pipewire/FakeSamples.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <numbers>
#include <spa/param/audio/format-utils.h>
#include <spa/param/latency-utils.h>
#include <spa/pod/builder.h>

namespace tavi::test {

namespace {

constexpr double kSecond = 1e9; // nanoseconds

/// What the device keeps for a graph that is busy.
constexpr double kMemory = 2 * kSecond;

/// Until a cycle that is still under way is looked at again.
constexpr std::int64_t kPause = 1'000'000; // nanoseconds

/// A cycle that lasts longer has lost whom it waited for.
constexpr std::int64_t kLongestCycle = 300'000'000; // nanoseconds

/// As a sound card has it.
constexpr const char* kPriority = "2000";

} // namespace

/// What the library calls: from C, with the microphone as data.
struct FakeMicrophone::Callbacks {
    static FakeMicrophone& of(void* data) {
        return *static_cast<FakeMicrophone*>(static_cast<FakeSource*>(data));
    }

    static void state(void* data, pw_stream_state, pw_stream_state now, const char*) {
        auto& microphone = of(data);
        if (now == PW_STREAM_STATE_PAUSED) {
            microphone.announceLatency();
        }
        microphone.m_isRunning = now == PW_STREAM_STATE_STREAMING;
        microphone.start();
    }

    static void io(void* data, std::uint32_t id, void* area, std::uint32_t size) {
        if (id == SPA_IO_Position) {
            const bool isWhole = size >= sizeof(spa_io_position);
            of(data).m_graph = isWhole ? static_cast<spa_io_position*>(area) : nullptr;
        }
    }

    static void process(void* data) { of(data).process(); }
    static void done(void* data) { of(data).m_cycleStart = 0; }
    static void timer(void* data, std::uint64_t) { of(data).tick(); }

    static constexpr pw_stream_events kEvents{.version = PW_VERSION_STREAM_EVENTS,
                                              .state_changed = state,
                                              .io_changed = io,
                                              .process = process,
                                              .trigger_done = done};
};

FakeMicrophone::FakeMicrophone(const std::string& name, const std::string& description,
                               FakeSound sound)
    : FakeSource(Callbacks::kEvents,
                 pw_properties_new(PW_KEY_MEDIA_CLASS, "Audio/Source", PW_KEY_NODE_NAME,
                                   name.c_str(), PW_KEY_NODE_DESCRIPTION, description.c_str(),
                                   PW_KEY_PRIORITY_DRIVER, kPriority, nullptr)),
      m_sound(sound) {
    m_timer = pw_loop_add_timer(loop(), Callbacks::timer, this);
    std::array<std::uint8_t, 1024> memory{};
    spa_pod_builder builder{};
    spa_pod_builder_init(&builder, memory.data(), memory.size());
    spa_audio_info_raw info{};
    info.format = static_cast<spa_audio_format>(sound.format);
    info.rate = sound.rate;
    info.channels = sound.channels;
    connect({spa_format_audio_raw_build(&builder, SPA_PARAM_EnumFormat, &info)});
}

FakeMicrophone::~FakeMicrophone() {
    stop();
    pw_loop_destroy_source(loop(), m_timer);
}

/// The first sample of a portion was heard a portion before its cycle begins.
void FakeMicrophone::announceLatency() {
    std::array<std::uint8_t, 256> memory{};
    spa_pod_builder builder{};
    spa_pod_builder_init(&builder, memory.data(), memory.size());
    spa_latency_info latency{};
    latency.direction = SPA_DIRECTION_OUTPUT;
    latency.min_quantum = 1;
    latency.max_quantum = 1;
    std::array<const spa_pod*, 1> parameter{
        spa_latency_build(&builder, SPA_PARAM_Latency, &latency)};
    pw_stream_update_params(m_stream, parameter.data(), parameter.size());
}

void FakeMicrophone::start() {
    m_cycleStart = 0;
    m_ticks = 0;
    m_position = 0;
    m_origin = hostNanoseconds();
    m_due = static_cast<double>(m_origin);
    wakeAt(m_isRunning ? m_origin : 0);
}

void FakeMicrophone::wakeAt(std::int64_t time) {
    const auto second = static_cast<std::int64_t>(kSecond);
    timespec at{time / second, time % second};
    pw_loop_update_timer(loop(), m_timer, &at, nullptr, true);
}

void FakeMicrophone::tick() {
    const std::int64_t now = hostNanoseconds();
    const bool isUnderWay = m_cycleStart != 0 && now - m_cycleStart < kLongestCycle;
    if (!m_isRunning || m_graph == nullptr || isUnderWay) {
        wakeAt(now + kPause);
        return;
    }
    spa_io_clock& clock = m_graph->clock;
    const double length = static_cast<double>(clock.duration) * clock.rate.num / clock.rate.denom /
                          (1 + m_sound.clockError) * kSecond;
    if (m_ticks == 0) {
        m_due = static_cast<double>(m_origin) + length;
    } else if (static_cast<double>(now) - m_due > kMemory) {
        m_due = static_cast<double>(now);
    }
    if (m_due > static_cast<double>(now)) {
        wakeAt(std::llround(m_due));
        return;
    }
    m_ticks += clock.duration;
    clock.nsec = static_cast<std::uint64_t>(std::llround(m_due));
    clock.next_nsec = clock.nsec + static_cast<std::uint64_t>(std::llround(length));
    clock.position = m_ticks;
    clock.delay = 0;
    clock.rate_diff = 1 + m_sound.clockError;
    m_cycleStart = now;
    pw_stream_trigger_process(m_stream);
    m_due += length;
    wakeAt(std::max(std::llround(m_due), static_cast<long long>(now + 1)));
}

/// Frames that were heard until then.
double FakeMicrophone::framesUntil(std::int64_t time) const {
    return static_cast<double>(time - m_origin) / kSecond * m_sound.rate * (1 + m_sound.clockError);
}

std::int64_t FakeMicrophone::timeOf(std::uint64_t frame) const {
    return m_origin + std::llround(static_cast<double>(frame) * kSecond /
                                   (m_sound.rate * (1 + m_sound.clockError)));
}

void FakeMicrophone::process() {
    pw_buffer* buffer = pw_stream_dequeue_buffer(m_stream);
    if (buffer == nullptr || m_graph == nullptr) {
        return;
    }
    spa_data& out = buffer->buffer->datas[0];
    const std::uint32_t stride = bytesOfSample(m_sound.format) * m_sound.channels;
    std::uint32_t frames = out.maxsize / stride;
    if (buffer->requested > 0) {
        frames = std::min(frames, static_cast<std::uint32_t>(buffer->requested));
    }
    // A cycle that was lost is not made up for.
    constexpr double kTremble = 0.01; // seconds
    const double wanted =
        std::max(0.0, framesUntil(static_cast<std::int64_t>(m_graph->clock.nsec)) - frames);
    if (std::abs(wanted - static_cast<double>(m_position)) > kTremble * m_sound.rate) {
        m_position = static_cast<std::uint64_t>(std::llround(wanted));
    }
    fill(static_cast<std::uint8_t*>(out.data), frames);
    out.chunk->offset = 0;
    out.chunk->stride = static_cast<std::int32_t>(stride);
    out.chunk->size = frames * stride;
    pw_stream_queue_buffer(m_stream, buffer);
}

double FakeMicrophone::valueAt(std::int64_t time, std::uint32_t channel) const {
    if (m_isMuted ||
        (m_sound.isBeeping && time % static_cast<std::int64_t>(kSecond) >= FakeSound::kBeep)) {
        return 0;
    }
    const double turns = std::fmod(
        m_sound.frequency * (channel + 1) * static_cast<double>(m_position) / m_sound.rate, 1.0);
    return FakeSound::kAmplitude * std::sin(2 * std::numbers::pi * turns);
}

void FakeMicrophone::fill(std::uint8_t* to, std::uint32_t frames) {
    if (m_isMuted) {
        m_firstHeard = 0;
    } else if (m_firstHeard == 0) {
        m_firstHeard = timeOf(m_position);
    }
    for (std::uint32_t frame = 0; frame < frames; ++frame, ++m_position) {
        const std::int64_t time = timeOf(m_position);
        for (std::uint32_t channel = 0; channel < m_sound.channels; ++channel) {
            writeSample(m_sound.format, valueAt(time, channel), to);
            to += bytesOfSample(m_sound.format);
        }
    }
}

} // namespace tavi::test
