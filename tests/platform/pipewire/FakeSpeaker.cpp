#include "platform/pipewire/FakeSpeaker.h"

#include "platform/pipewire/DeviceCapture.h"
#include "platform/pipewire/PipeWireTestServer.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstdlib>
#include <spa/param/audio/format-utils.h>
#include <spa/pod/builder.h>

namespace tavi::test {

namespace {

constexpr std::uint32_t kRate = 48000;
constexpr float kLoud = 0.1F;

bool runs(const std::string& command) {
    return std::system((command + " >/dev/null 2>&1").c_str()) == 0;
}

} // namespace

struct FakeSpeaker::Callbacks {
    static void process(void* data) { static_cast<FakeSpeaker*>(data)->process(); }

    static constexpr pw_stream_events kEvents{.version = PW_VERSION_STREAM_EVENTS,
                                              .process = process};
};

FakeSpeaker::FakeSpeaker(const std::string& name) : m_name(name) {
    EXPECT_TRUE(runs(
        "pw-cli create-node adapter '{ factory.name=support.null-audio-sink node.name=" + name +
        " media.class=Audio/Sink audio.rate=48000 audio.position=[FL FR] "
        "object.linger=true priority.session=2000 }'"));
    // The client that lists has to come to its end: all it tells is read.
    EXPECT_TRUE(waitFor([&] { return runs("test -n \"$(pw-link -i | grep " + name + ")\""); }))
        << "no speaker";
    pw_init(nullptr, nullptr);
    m_loop = pw_thread_loop_new("fake-speaker", nullptr);
    m_stream = pw_stream_new_simple(
        pw_thread_loop_get_loop(m_loop), "monitor",
        pw_properties_new(PW_KEY_MEDIA_TYPE, "Audio", PW_KEY_MEDIA_CATEGORY, "Capture",
                          PW_KEY_STREAM_CAPTURE_SINK, "true", "target.object", name.c_str(),
                          PW_KEY_NODE_NAME, ("monitor-" + name).c_str(), nullptr),
        &Callbacks::kEvents, this);
    std::array<std::uint8_t, 1024> memory{};
    spa_pod_builder builder{};
    spa_pod_builder_init(&builder, memory.data(), memory.size());
    spa_audio_info_raw info{};
    info.format = SPA_AUDIO_FORMAT_F32;
    info.rate = kRate;
    info.channels = 2;
    std::array<const spa_pod*, 1> formats{
        spa_format_audio_raw_build(&builder, SPA_PARAM_EnumFormat, &info)};
    const auto flags = static_cast<pw_stream_flags>(
        PW_STREAM_FLAG_AUTOCONNECT | PW_STREAM_FLAG_MAP_BUFFERS | PW_STREAM_FLAG_RT_PROCESS);
    EXPECT_GE(pw_stream_connect(m_stream, PW_DIRECTION_INPUT, PW_ID_ANY, flags, formats.data(), 1),
              0);
    pw_thread_loop_start(m_loop);
    EXPECT_TRUE(waitFor([this] { return recordedTo() > 0; })) << "the monitor is not recorded";
}

FakeSpeaker::~FakeSpeaker() {
    pw_thread_loop_stop(m_loop);
    pw_stream_destroy(m_stream);
    pw_thread_loop_destroy(m_loop);
    runs("pw-cli destroy " + m_name);
}

void FakeSpeaker::process() {
    pw_buffer* buffer = pw_stream_dequeue_buffer(m_stream);
    if (buffer == nullptr) {
        return;
    }
    const spa_data& data = buffer->buffer->datas[0];
    const std::size_t frames = data.chunk->size / (2 * sizeof(float));
    const auto* samples = static_cast<const float*>(data.data) + data.chunk->offset / sizeof(float);
    pw_time time{};
    pw_stream_get_time_n(m_stream, &time, sizeof time);
    // The monitor of what drives the graph gives what was played in the cycle before.
    const auto cycle = static_cast<std::int64_t>(frames) * 1'000'000'000 / kRate;
    Portion portion{time.now - cycle, {}};
    for (std::size_t n = 0; n < frames; ++n) {
        portion.left.push_back(samples[2 * n]);
    }
    pw_stream_queue_buffer(m_stream, buffer);
    const std::lock_guard lock(m_mutex);
    m_portions.push_back(std::move(portion));
}

template<class Visit>
void FakeSpeaker::eachMoment(const Visit& visit) const {
    const std::lock_guard lock(m_mutex);
    for (const Portion& portion : m_portions) {
        for (std::size_t n = 0; n < portion.left.size(); ++n) {
            visit(static_cast<double>(portion.host) * 1e-9 + static_cast<double>(n) / kRate,
                  portion.left[n]);
        }
    }
}

std::vector<double> FakeSpeaker::onsets(double silence) const {
    std::vector<double> found;
    double lastLoud = 0;
    eachMoment([&](double host, float value) {
        if (std::abs(value) > kLoud) {
            if (host - lastLoud > silence) {
                found.push_back(host);
            }
            lastLoud = host;
        }
    });
    return found;
}

float FakeSpeaker::loudest(double from, double to) const {
    float loudest = 0;
    eachMoment([&](double host, float value) {
        if (host >= from && host < to) {
            loudest = std::max(loudest, std::abs(value));
        }
    });
    return loudest;
}

double FakeSpeaker::recordedTo() const {
    const std::lock_guard lock(m_mutex);
    return m_portions.empty() ? 0 : static_cast<double>(m_portions.back().host) * 1e-9;
}

} // namespace tavi::test
