#include "platform/pipewire/FakeCamera.h"

#include "platform/pipewire/DeviceCapture.h"
#include "platform/pipewire/FakePicture.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <spa/param/video/format-utils.h>
#include <spa/pod/builder.h>

namespace tavi::test {

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
    m_timer = pw_loop_add_timer(loop(), tick, this);
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
    connect(formats);
}

FakeCamera::~FakeCamera() {
    stop();
    pw_loop_destroy_source(loop(), m_timer);
}

void FakeCamera::state(void* data, pw_stream_state, pw_stream_state now, const char*) {
    auto& camera = *static_cast<FakeCamera*>(static_cast<FakeSource*>(data));
    const bool isOn = now == PW_STREAM_STATE_STREAMING;
    timespec first{0, isOn ? 1 : 0};
    timespec interval{0, isOn ? 1'000'000'000 / camera.m_mode.rate : 0};
    pw_loop_update_timer(camera.loop(), camera.m_timer, &first, &interval, false);
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
    const std::int64_t now = hostNanoseconds();
    if (camera.m_isSweeping) {
        camera.moveBorder(now);
    }
    spa_data& out = buffer->buffer->datas[0];
    const auto bytes = std::min<std::size_t>(camera.m_picture.size(), out.maxsize);
    std::memcpy(out.data, camera.m_picture.data(), bytes);
    out.chunk->offset = 0;
    out.chunk->stride = rowBytes(camera.m_mode);
    out.chunk->size = static_cast<std::uint32_t>(bytes);
    if (void* found =
            spa_buffer_find_meta_data(buffer->buffer, SPA_META_Header, sizeof(spa_meta_header))) {
        auto* header = static_cast<spa_meta_header*>(found);
        *header = {};
        header->pts = now;
    }
    camera.m_lastPicture = now;
    ++camera.m_pictures;
    pw_stream_queue_buffer(camera.m_stream, buffer);
}

void FakeCamera::moveBorder(std::int64_t time) {
    const int border = static_cast<int>(m_mode.width * (time % kSweep) / kSweep);
    const auto row = static_cast<std::ptrdiff_t>(m_mode.width) * 4;
    for (int x = 0; x < m_mode.width; ++x) {
        const std::uint32_t colour = x < border ? kLeft : kRight;
        std::memcpy(m_picture.data() + std::ptrdiff_t{x} * 4, &colour, sizeof colour);
    }
    for (int y = 1; y < m_mode.height; ++y) {
        std::copy_n(m_picture.begin(), row, m_picture.begin() + y * row);
    }
}

void FakeCamera::tick(void* data, std::uint64_t) {
    auto& camera = *static_cast<FakeCamera*>(static_cast<FakeSource*>(data));
    if (!camera.m_isFrozen) {
        pw_stream_trigger_process(camera.m_stream);
    }
}

} // namespace tavi::test
