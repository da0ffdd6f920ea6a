#include "platform/pipewire/PlaybackStream.h"

#include "platform/pipewire/DeviceCapture.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <spa/param/audio/format-utils.h>
#include <spa/pod/builder.h>
#include <utility>

namespace tavi {

namespace {

/// What the graph asks for at a time: 11 ms, so that the first portion is in time for a start that
/// is announced 50 ms ahead.
constexpr const char* kLatency = "512/48000";

constexpr std::size_t kMomentBytes = sizeof(float) * kPlayedChannels;

spa_audio_info_raw playedFormat() {
    spa_audio_info_raw info{};
    info.format = SPA_AUDIO_FORMAT_F32;
    info.rate = kPlayedRate;
    info.channels = kPlayedChannels;
    info.position[0] = SPA_AUDIO_CHANNEL_FL;
    info.position[1] = SPA_AUDIO_CHANNEL_FR;
    return info;
}

} // namespace

/// What the library calls: from C, with the stream as data.
struct PlaybackStream::Callbacks {
    static void process(void* data) { static_cast<PlaybackStream*>(data)->process(); }

    static constexpr pw_stream_events kStream{.version = PW_VERSION_STREAM_EVENTS,
                                              .process = process};
};

PlaybackStream::PlaybackStream(std::shared_ptr<SoundSource> source)
    : m_source(std::move(source)),
      m_graph("pw-sound", *this) {
    m_graph.connect(); // Where nobody answers it is tried again, and nothing is heard until then.
    m_graph.perform([this] { defaultsChanged(); });
}

PlaybackStream::~PlaybackStream() {
    m_graph.perform([this] { closeStream(); });
    m_graph.stop();
}

void PlaybackStream::setActive(bool isActive) {
    m_graph.perform([this, isActive] {
        if (std::exchange(m_isActive, isActive) != isActive && m_stream != nullptr) {
            pw_stream_set_active(m_stream, isActive);
        }
    });
}

/// Comes with every new connection too, when all is known of it.
void PlaybackStream::defaultsChanged() {
    if (m_graph.isReady() && m_stream == nullptr) {
        openStream();
    }
}

/// A stream that was refused for want of a speaker is worth another try.
void PlaybackStream::nodeAdded(const PipeWireNode& node) {
    const bool isSpeaker = node.mediaClass.starts_with("Audio/Sink");
    if (isSpeaker && m_stream != nullptr &&
        pw_stream_get_state(m_stream, nullptr) == PW_STREAM_STATE_ERROR) {
        closeStream();
        openStream();
    }
}

void PlaybackStream::connectionLost() {
    closeStream();
}

void PlaybackStream::openStream() {
    m_stream = pw_stream_new(m_graph.core(), "tavlin",
                             pw_properties_new(PW_KEY_MEDIA_TYPE, "Audio", PW_KEY_MEDIA_CATEGORY,
                                               "Playback", PW_KEY_MEDIA_ROLE, "Movie",
                                               PW_KEY_MEDIA_NAME, "Preview", PW_KEY_NODE_NAME,
                                               "tavlin", PW_KEY_NODE_LATENCY, kLatency, nullptr));
    if (m_stream == nullptr) {
        return;
    }
    m_streamHook = {};
    pw_stream_add_listener(m_stream, &m_streamHook, &Callbacks::kStream, this);
    std::array<std::uint8_t, 1024> memory{};
    spa_pod_builder builder{};
    spa_pod_builder_init(&builder, memory.data(), memory.size());
    spa_audio_info_raw info = playedFormat();
    std::array<const spa_pod*, 1> formats{
        spa_format_audio_raw_build(&builder, SPA_PARAM_EnumFormat, &info)};
    const int active = m_isActive ? 0 : PW_STREAM_FLAG_INACTIVE;
    pw_stream_connect(m_stream, PW_DIRECTION_OUTPUT, PW_ID_ANY,
                      static_cast<pw_stream_flags>(PW_STREAM_FLAG_AUTOCONNECT |
                                                   PW_STREAM_FLAG_MAP_BUFFERS |
                                                   PW_STREAM_FLAG_RT_PROCESS | active),
                      formats.data(), formats.size());
}

void PlaybackStream::closeStream() {
    if (m_stream != nullptr) {
        pw_stream_destroy(m_stream); // Its data thread is done with it and with us after that.
        m_stream = nullptr;
    }
}

/// When the first moment of the buffer that is filled now will be heard, in host nanoseconds. It
/// is asked for in the cycle of the graph that plays it.
std::int64_t PlaybackStream::heardAt() const noexcept {
    pw_time time{};
    if (pw_stream_get_time_n(m_stream, &time, sizeof time) < 0 || time.now <= 0 ||
        time.rate.denom == 0) {
        return hostNanoseconds();
    }
    const double way = static_cast<double>(time.delay) * time.rate.num / time.rate.denom;
    const double waiting = static_cast<double>(time.buffered + time.queued) / kPlayedRate;
    return time.now + std::llround((way + waiting) * 1e9);
}

void PlaybackStream::process() noexcept {
    pw_buffer* buffer = pw_stream_dequeue_buffer(m_stream);
    if (buffer == nullptr) {
        return;
    }
    spa_data& data = buffer->buffer->datas[0];
    if (data.data != nullptr) {
        std::size_t frames = data.maxsize / kMomentBytes;
        frames = buffer->requested > 0 ? std::min<std::size_t>(frames, buffer->requested) : frames;
        m_source->fill({static_cast<float*>(data.data), frames * kPlayedChannels}, heardAt());
        data.chunk->offset = 0;
        data.chunk->stride = static_cast<std::int32_t>(kMomentBytes);
        data.chunk->size = static_cast<std::uint32_t>(frames * kMomentBytes);
        buffer->size = frames;
    }
    pw_stream_queue_buffer(m_stream, buffer);
}

} // namespace tavi
