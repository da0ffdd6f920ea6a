#include "platform/pipewire/FakeDevices.h"

#include "platform/pipewire/DeviceCapture.h"
#include "platform/pipewire/FakePicture.h"
#include "platform/pipewire/PipeWireTestServer.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <numbers>
#include <spa/param/audio/format-utils.h>
#include <spa/param/video/format-utils.h>
#include <spa/pod/builder.h>

namespace tavi::test {

namespace {

std::uint32_t bytesOfSample(std::uint32_t format) {
    switch (format) {
    case SPA_AUDIO_FORMAT_S16:
        return 2;
    case SPA_AUDIO_FORMAT_S24:
        return 3;
    default:
        return 4;
    }
}

void writeSample(std::uint32_t format, double value, std::uint8_t* to) {
    const auto scaled = [value](int bits) {
        return static_cast<std::int32_t>(std::lround(value * ((1LL << (bits - 1)) - 1)));
    };
    if (format == SPA_AUDIO_FORMAT_F32) {
        const auto sample = static_cast<float>(value);
        std::memcpy(to, &sample, sizeof sample);
        return;
    }
    const bool is24 = format == SPA_AUDIO_FORMAT_S24 || format == SPA_AUDIO_FORMAT_S24_32;
    const std::int32_t sample = scaled(is24 ? 24 : format == SPA_AUDIO_FORMAT_S16 ? 16 : 32);
    std::memcpy(to, &sample, bytesOfSample(format)); // little endian
}

} // namespace

FakeSource::FakeSource(const pw_stream_events& events, pw_properties* properties) {
    pw_init(nullptr, nullptr);
    m_loop = pw_thread_loop_new("fake-device", nullptr);
    const std::string name = pw_properties_get(properties, PW_KEY_NODE_NAME);
    m_stream = pw_stream_new_simple(pw_thread_loop_get_loop(m_loop), name.c_str(), properties,
                                    &events, this);
    EXPECT_NE(m_stream, nullptr) << "no connection";
}

FakeSource::~FakeSource() {
    stop();
    pw_thread_loop_destroy(m_loop);
}

void FakeSource::connect(pw_stream_flags flags, std::vector<const spa_pod*> formats) {
    EXPECT_GE(pw_stream_connect(m_stream, PW_DIRECTION_OUTPUT, PW_ID_ANY, flags, formats.data(),
                                static_cast<std::uint32_t>(formats.size())),
              0);
    pw_thread_loop_start(m_loop);
    EXPECT_TRUE(waitFor([this] {
        pw_thread_loop_lock(m_loop);
        const bool isThere = pw_stream_get_node_id(m_stream) != SPA_ID_INVALID;
        pw_thread_loop_unlock(m_loop);
        return isThere;
    })) << "the device does not appear";
}

void FakeSource::stop() {
    pw_thread_loop_stop(m_loop);
    if (m_stream != nullptr) {
        pw_stream_destroy(m_stream);
        m_stream = nullptr;
    }
}

FakeMicrophone::FakeMicrophone(const std::string& name, const std::string& description,
                               FakeSound sound)
    : FakeSource(
          []() -> const pw_stream_events& {
              static const pw_stream_events events{.version = PW_VERSION_STREAM_EVENTS,
                                                   .process = process};
              return events;
          }(),
          pw_properties_new(PW_KEY_MEDIA_CLASS, "Audio/Source", PW_KEY_NODE_NAME, name.c_str(),
                            PW_KEY_NODE_DESCRIPTION, description.c_str(), nullptr)),
      m_sound(sound) {
    std::array<std::uint8_t, 1024> memory{};
    spa_pod_builder builder{};
    spa_pod_builder_init(&builder, memory.data(), memory.size());
    spa_audio_info_raw info{};
    info.format = static_cast<spa_audio_format>(sound.format);
    info.rate = sound.rate;
    info.channels = sound.channels;
    connect(PW_STREAM_FLAG_MAP_BUFFERS,
            {spa_format_audio_raw_build(&builder, SPA_PARAM_EnumFormat, &info)});
}

void FakeMicrophone::process(void* data) {
    auto& microphone = *static_cast<FakeMicrophone*>(static_cast<FakeSource*>(data));
    pw_buffer* buffer = pw_stream_dequeue_buffer(microphone.m_stream);
    if (buffer == nullptr) {
        return;
    }
    spa_data& out = buffer->buffer->datas[0];
    const std::uint32_t stride =
        bytesOfSample(microphone.m_sound.format) * microphone.m_sound.channels;
    std::uint32_t frames = out.maxsize / stride;
    if (buffer->requested > 0) {
        frames = std::min(frames, static_cast<std::uint32_t>(buffer->requested));
    }
    microphone.fill(static_cast<std::uint8_t*>(out.data), frames);
    out.chunk->offset = 0;
    out.chunk->stride = static_cast<std::int32_t>(stride);
    out.chunk->size = frames * stride;
    pw_stream_queue_buffer(microphone.m_stream, buffer);
}

void FakeMicrophone::fill(std::uint8_t* to, std::uint32_t frames) {
    if (m_isMuted) {
        std::memset(to, 0, std::size_t{frames} * m_sound.channels * bytesOfSample(m_sound.format));
        m_firstHeard = 0;
        return;
    }
    if (m_firstHeard == 0) {
        m_firstHeard = hostNanoseconds();
    }
    for (std::uint32_t frame = 0; frame < frames; ++frame, ++m_position) {
        for (std::uint32_t channel = 0; channel < m_sound.channels; ++channel) {
            const double turns = std::fmod(m_sound.frequency * (channel + 1) *
                                               static_cast<double>(m_position) / m_sound.rate,
                                           1.0);
            writeSample(m_sound.format,
                        FakeSound::kAmplitude * std::sin(2 * std::numbers::pi * turns), to);
            to += bytesOfSample(m_sound.format);
        }
    }
}

FakeCamera::FakeCamera(const std::string& name, const std::string& description,
                       std::vector<FakeMode> modes)
    : FakeSource(
          []() -> const pw_stream_events& {
              static const pw_stream_events events{.version = PW_VERSION_STREAM_EVENTS,
                                                   .state_changed = state,
                                                   .param_changed = parameter,
                                                   .process = process};
              return events;
          }(),
          pw_properties_new(PW_KEY_MEDIA_CLASS, "Video/Source", PW_KEY_MEDIA_ROLE, "Camera",
                            PW_KEY_NODE_NAME, name.c_str(), PW_KEY_NODE_DESCRIPTION,
                            description.c_str(), nullptr)),
      m_modes(std::move(modes)) {
    m_timer = pw_loop_add_timer(pw_thread_loop_get_loop(m_loop), tick, this);
    std::array<std::uint8_t, 4096> memory{};
    spa_pod_builder builder{};
    spa_pod_builder_init(&builder, memory.data(), memory.size());
    std::vector<const spa_pod*> formats;
    for (const auto& mode : m_modes) {
        const spa_rectangle size{static_cast<std::uint32_t>(mode.width),
                                 static_cast<std::uint32_t>(mode.height)};
        const spa_fraction rate{static_cast<std::uint32_t>(mode.rate), 1};
        const bool isJpeg = mode.format == SPA_VIDEO_FORMAT_ENCODED;
        spa_pod_frame frame{};
        spa_pod_builder_push_object(&builder, &frame, SPA_TYPE_OBJECT_Format, SPA_PARAM_EnumFormat);
        spa_pod_builder_add(&builder, SPA_FORMAT_mediaType, SPA_POD_Id(SPA_MEDIA_TYPE_video),
                            SPA_FORMAT_mediaSubtype,
                            SPA_POD_Id(isJpeg ? SPA_MEDIA_SUBTYPE_mjpg : SPA_MEDIA_SUBTYPE_raw), 0);
        if (!isJpeg) {
            spa_pod_builder_add(&builder, SPA_FORMAT_VIDEO_format, SPA_POD_Id(mode.format), 0);
        }
        spa_pod_builder_add(&builder, SPA_FORMAT_VIDEO_size, SPA_POD_Rectangle(&size),
                            SPA_FORMAT_VIDEO_framerate, SPA_POD_Fraction(&rate), 0);
        formats.push_back(static_cast<const spa_pod*>(spa_pod_builder_pop(&builder, &frame)));
    }
    connect(static_cast<pw_stream_flags>(PW_STREAM_FLAG_DRIVER | PW_STREAM_FLAG_MAP_BUFFERS),
            formats);
}

FakeCamera::~FakeCamera() {
    stop();
    pw_loop_destroy_source(pw_thread_loop_get_loop(m_loop), m_timer);
}

void FakeCamera::state(void* data, pw_stream_state, pw_stream_state now, const char*) {
    auto& camera = *static_cast<FakeCamera*>(static_cast<FakeSource*>(data));
    const bool isOn = now == PW_STREAM_STATE_STREAMING;
    timespec first{0, isOn ? 1 : 0};
    timespec interval{0, isOn ? 1'000'000'000 / camera.m_mode.rate : 0};
    pw_loop_update_timer(pw_thread_loop_get_loop(camera.m_loop), camera.m_timer, &first, &interval,
                         false);
}

void FakeCamera::parameter(void* data, std::uint32_t id, const spa_pod* pod) {
    auto& camera = *static_cast<FakeCamera*>(static_cast<FakeSource*>(data));
    std::uint32_t type = 0;
    std::uint32_t subtype = 0;
    if (id != SPA_PARAM_Format || pod == nullptr || spa_format_parse(pod, &type, &subtype) < 0) {
        return;
    }
    spa_video_info_raw info{};
    info.format = SPA_VIDEO_FORMAT_ENCODED;
    if (subtype == SPA_MEDIA_SUBTYPE_raw) {
        spa_format_video_raw_parse(pod, &info);
    } else {
        spa_video_info_mjpg jpeg{};
        spa_format_video_mjpg_parse(pod, &jpeg);
        info.size = jpeg.size;
        info.framerate = jpeg.framerate;
    }
    camera.m_mode = {info.format, static_cast<int>(info.size.width),
                     static_cast<int>(info.size.height),
                     static_cast<int>(info.framerate.num / std::max(1U, info.framerate.denom))};
    camera.m_picture = fakePicture(camera.m_mode, kLeft, kRight);
    std::array<std::uint8_t, 1024> memory{};
    spa_pod_builder builder{};
    spa_pod_builder_init(&builder, memory.data(), memory.size());
    const auto bytes = static_cast<int>(camera.m_picture.size());
    std::array<const spa_pod*, 2> answer{
        static_cast<const spa_pod*>(spa_pod_builder_add_object(
            &builder, SPA_TYPE_OBJECT_ParamBuffers, SPA_PARAM_Buffers, SPA_PARAM_BUFFERS_buffers,
            SPA_POD_CHOICE_RANGE_Int(8, 2, 16), SPA_PARAM_BUFFERS_blocks, SPA_POD_Int(1),
            SPA_PARAM_BUFFERS_size, SPA_POD_Int(bytes), SPA_PARAM_BUFFERS_stride,
            SPA_POD_Int(rowBytes(camera.m_mode)))),
        static_cast<const spa_pod*>(spa_pod_builder_add_object(
            &builder, SPA_TYPE_OBJECT_ParamMeta, SPA_PARAM_Meta, SPA_PARAM_META_type,
            SPA_POD_Id(SPA_META_Header), SPA_PARAM_META_size,
            SPA_POD_Int(static_cast<int>(sizeof(spa_meta_header)))))};
    pw_stream_update_params(camera.m_stream, answer.data(), answer.size());
}

void FakeCamera::process(void* data) {
    auto& camera = *static_cast<FakeCamera*>(static_cast<FakeSource*>(data));
    pw_buffer* buffer = pw_stream_dequeue_buffer(camera.m_stream);
    if (buffer == nullptr) {
        return;
    }
    spa_data& out = buffer->buffer->datas[0];
    const auto bytes = std::min<std::size_t>(camera.m_picture.size(), out.maxsize);
    std::memcpy(out.data, camera.m_picture.data(), bytes);
    out.chunk->offset = 0;
    out.chunk->stride = rowBytes(camera.m_mode);
    out.chunk->size = static_cast<std::uint32_t>(bytes);
    const std::int64_t now = hostNanoseconds();
    if (void* found =
            spa_buffer_find_meta_data(buffer->buffer, SPA_META_Header, sizeof(spa_meta_header))) {
        auto* header = static_cast<spa_meta_header*>(found);
        *header = {};
        header->pts = now;
    }
    camera.m_lastPicture = now;
    pw_stream_queue_buffer(camera.m_stream, buffer);
}

void FakeCamera::tick(void* data, std::uint64_t) {
    auto& camera = *static_cast<FakeCamera*>(static_cast<FakeSource*>(data));
    if (!camera.m_isFrozen) {
        pw_stream_trigger_process(camera.m_stream);
    }
}

} // namespace tavi::test
