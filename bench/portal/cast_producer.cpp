// Plays a compositor on the PipeWire that the environment names: casts pictures of 1920x1080 in
// BGRx over shared memory, every one other than the one before, 60 a second while somebody takes
// them. Prints the id of its node; runs until it is ended.

#include <array>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <pipewire/pipewire.h>
#include <spa/param/buffers.h>
#include <spa/param/video/format-utils.h>
#include <spa/pod/builder.h>
#include <sys/mman.h>
#include <unistd.h>

namespace {

constexpr int kWidth = 1920;
constexpr int kHeight = 1080;
constexpr int kStride = kWidth * 4;
constexpr long kInterval = 1'000'000'000 / 60;

/// Stripes like those of a busy desktop; each buffer has its own, so that nothing need be painted.
struct Producer {
    pw_main_loop* loop = nullptr;
    pw_stream* stream = nullptr;
    spa_source* timer = nullptr;
    int pictures = 0;
};

void paint(std::uint32_t* pixels, int number) {
    for (int i = 0; i < kWidth * kHeight; ++i) {
        const int stripe = (i % kWidth + i / kWidth + number * 16) / 32;
        pixels[i] = static_cast<std::uint32_t>(stripe * 0x10305);
    }
}

void addBuffer(void* data, pw_buffer* buffer) {
    auto& producer = *static_cast<Producer*>(data);
    const int memory = memfd_create("cast-producer", MFD_CLOEXEC);
    if (ftruncate(memory, kStride * kHeight) != 0) {
        std::exit(EXIT_FAILURE);
    }
    spa_data& plane = buffer->buffer->datas[0];
    plane.type = SPA_DATA_MemFd;
    plane.flags = SPA_DATA_FLAG_READWRITE;
    plane.fd = memory;
    plane.mapoffset = 0;
    plane.maxsize = kStride * kHeight;
    plane.data = mmap(nullptr, plane.maxsize, PROT_READ | PROT_WRITE, MAP_SHARED, memory, 0);
    paint(static_cast<std::uint32_t*>(plane.data), producer.pictures++);
}

void removeBuffer(void*, pw_buffer* buffer) {
    munmap(buffer->buffer->datas[0].data, buffer->buffer->datas[0].maxsize);
    close(static_cast<int>(buffer->buffer->datas[0].fd));
}

void parameterChanged(void* data, std::uint32_t id, const spa_pod* pod) {
    if (id != SPA_PARAM_Format || pod == nullptr) {
        return;
    }
    std::array<std::uint8_t, 1024> memory{};
    spa_pod_builder builder{};
    spa_pod_builder_init(&builder, memory.data(), memory.size());
    std::array<const spa_pod*, 2> wanted{
        static_cast<const spa_pod*>(spa_pod_builder_add_object(
            &builder, SPA_TYPE_OBJECT_ParamBuffers, SPA_PARAM_Buffers, SPA_PARAM_BUFFERS_buffers,
            SPA_POD_CHOICE_RANGE_Int(8, 4, 8), SPA_PARAM_BUFFERS_blocks, SPA_POD_Int(1),
            SPA_PARAM_BUFFERS_size, SPA_POD_Int(kStride * kHeight), SPA_PARAM_BUFFERS_stride,
            SPA_POD_Int(kStride), SPA_PARAM_BUFFERS_dataType,
            SPA_POD_CHOICE_FLAGS_Int(1 << SPA_DATA_MemFd))),
        static_cast<const spa_pod*>(spa_pod_builder_add_object(
            &builder, SPA_TYPE_OBJECT_ParamMeta, SPA_PARAM_Meta, SPA_PARAM_META_type,
            SPA_POD_Id(SPA_META_Header), SPA_PARAM_META_size,
            SPA_POD_Int(static_cast<int>(sizeof(spa_meta_header)))))};
    pw_stream_update_params(static_cast<Producer*>(data)->stream, wanted.data(), wanted.size());
}

void stateChanged(void* data, pw_stream_state, pw_stream_state now, const char*) {
    auto& producer = *static_cast<Producer*>(data);
    const bool isOn = now == PW_STREAM_STATE_STREAMING;
    timespec first{0, isOn ? 1 : 0};
    timespec interval{0, isOn ? kInterval : 0};
    pw_loop_update_timer(pw_main_loop_get_loop(producer.loop), producer.timer, &first, &interval,
                         false);
    if (now == PW_STREAM_STATE_PAUSED) {
        std::printf("%u\n", pw_stream_get_node_id(producer.stream));
        std::fflush(stdout);
    }
}

void send(void* data, std::uint64_t) {
    auto& producer = *static_cast<Producer*>(data);
    pw_buffer* buffer = pw_stream_dequeue_buffer(producer.stream);
    if (buffer == nullptr) {
        return;
    }
    spa_chunk& chunk = *buffer->buffer->datas[0].chunk;
    chunk.offset = 0;
    chunk.size = kStride * kHeight;
    chunk.stride = kStride;
    chunk.flags = 0;
    if (void* found =
            spa_buffer_find_meta_data(buffer->buffer, SPA_META_Header, sizeof(spa_meta_header))) {
        timespec now{};
        clock_gettime(CLOCK_MONOTONIC, &now);
        auto* header = static_cast<spa_meta_header*>(found);
        *header = {};
        header->pts = now.tv_sec * 1'000'000'000 + now.tv_nsec;
    }
    pw_stream_queue_buffer(producer.stream, buffer);
}

} // namespace

int main() {
    static constexpr pw_stream_events kEvents{.version = PW_VERSION_STREAM_EVENTS,
                                              .state_changed = stateChanged,
                                              .param_changed = parameterChanged,
                                              .add_buffer = addBuffer,
                                              .remove_buffer = removeBuffer};
    pw_init(nullptr, nullptr);
    Producer producer;
    producer.loop = pw_main_loop_new(nullptr);
    pw_loop* loop = pw_main_loop_get_loop(producer.loop);
    producer.timer = pw_loop_add_timer(loop, send, &producer);
    producer.stream = pw_stream_new_simple(
        loop, "cast-producer",
        pw_properties_new(PW_KEY_MEDIA_CLASS, "Stream/Output/Video", nullptr), &kEvents, &producer);
    std::array<std::uint8_t, 1024> memory{};
    spa_pod_builder builder{};
    spa_pod_builder_init(&builder, memory.data(), memory.size());
    const spa_rectangle size{kWidth, kHeight};
    const spa_fraction onDamage{0, 1};
    const spa_fraction fastest{60, 1};
    const auto* format = static_cast<const spa_pod*>(spa_pod_builder_add_object(
        &builder, SPA_TYPE_OBJECT_Format, SPA_PARAM_EnumFormat, SPA_FORMAT_mediaType,
        SPA_POD_Id(SPA_MEDIA_TYPE_video), SPA_FORMAT_mediaSubtype,
        SPA_POD_Id(SPA_MEDIA_SUBTYPE_raw), SPA_FORMAT_VIDEO_format,
        SPA_POD_Id(SPA_VIDEO_FORMAT_BGRx), SPA_FORMAT_VIDEO_size, SPA_POD_Rectangle(&size),
        SPA_FORMAT_VIDEO_framerate, SPA_POD_Fraction(&onDamage), SPA_FORMAT_VIDEO_maxFramerate,
        SPA_POD_Fraction(&fastest)));
    if (pw_stream_connect(
            producer.stream, PW_DIRECTION_OUTPUT, PW_ID_ANY,
            static_cast<pw_stream_flags>(PW_STREAM_FLAG_DRIVER | PW_STREAM_FLAG_ALLOC_BUFFERS),
            &format, 1) < 0) {
        std::fprintf(stderr, "cast_producer: no PipeWire answers\n");
        return EXIT_FAILURE;
    }
    pw_main_loop_run(producer.loop);
    return EXIT_SUCCESS;
}
