#include "platform/portal/FakeCast.h"

#include "platform/pipewire/FakeYuv.h"
#include "platform/pipewire/PipeWireTestServer.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <cstring>
#include <spa/param/buffers.h>
#include <spa/param/video/format-utils.h>
#include <spa/pod/builder.h>
#include <sys/mman.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

namespace tavi::test {

namespace {

constexpr long kRefresh = 16'000'000; ///< Of the monitor, nanoseconds.
constexpr int kPointerSide = 64;
constexpr int kPointerBytes = static_cast<int>(sizeof(spa_meta_cursor) + sizeof(spa_meta_bitmap)) +
                              kPointerSide * kPointerSide * 4;

/// The bytes of a colour in a packed format.
std::array<std::uint8_t, 4> bytesOf(std::uint32_t colour, spa_video_format format) {
    const auto part = [colour](int shift) { return static_cast<std::uint8_t>(colour >> shift); };
    switch (format) {
    case SPA_VIDEO_FORMAT_RGBx:
    case SPA_VIDEO_FORMAT_RGBA:
        return {part(16), part(8), part(0), part(24)};
    case SPA_VIDEO_FORMAT_ARGB:
        return {part(24), part(16), part(8), part(0)};
    case SPA_VIDEO_FORMAT_ABGR:
        return {part(24), part(0), part(8), part(16)};
    default:
        return {part(0), part(8), part(16), part(24)};
    }
}

template<typename Meta>
Meta* metaOf(const spa_buffer& buffer, std::uint32_t type) {
    return static_cast<Meta*>(spa_buffer_find_meta_data(&buffer, type, sizeof(Meta)));
}

} // namespace

FakeCast& FakeCast::of(void* data) {
    return *static_cast<FakeCast*>(static_cast<FakeSource*>(data));
}

FakeCast::FakeCast(const CastLayout& layout, Metas metas)
    : FakeSource(
          []() -> const pw_stream_events& {
              static const pw_stream_events events{.version = PW_VERSION_STREAM_EVENTS,
                                                   .state_changed = stateChanged,
                                                   .param_changed = parameterChanged,
                                                   .add_buffer = addBuffer,
                                                   .remove_buffer = removeBuffer,
                                                   .process = process};
              return events;
          }(),
          pw_properties_new(PW_KEY_MEDIA_CLASS, "Stream/Output/Video", PW_KEY_NODE_NAME,
                            "fake-cast", nullptr)),
      m_layout(layout),
      m_metas(metas) {
    m_painter = pw_loop_add_timer(loop(), paint, this);
    std::vector<std::uint8_t> memory(4096);
    connect(offers(memory), PW_STREAM_FLAG_ALLOC_BUFFERS);
    m_node = pw_stream_get_node_id(m_stream);
}

FakeCast::~FakeCast() {
    stop();
    pw_loop_destroy_source(loop(), m_painter);
}

std::vector<const spa_pod*> FakeCast::offers(std::vector<std::uint8_t>& memory) const {
    spa_pod_builder builder{};
    spa_pod_builder_init(&builder, memory.data(), static_cast<std::uint32_t>(memory.size()));
    const spa_rectangle size{static_cast<std::uint32_t>(m_layout.width),
                             static_cast<std::uint32_t>(m_layout.height)};
    const spa_fraction rate{0, 1};
    std::vector<const spa_pod*> made;
    auto formats = m_layout.offered;
    if (formats.empty()) {
        formats.push_back(m_layout.format);
    }
    for (const auto format : formats) {
        spa_pod_frame frame{};
        spa_pod_builder_push_object(&builder, &frame, SPA_TYPE_OBJECT_Format, SPA_PARAM_EnumFormat);
        spa_pod_builder_add(&builder, SPA_FORMAT_mediaType, SPA_POD_Id(SPA_MEDIA_TYPE_video),
                            SPA_FORMAT_mediaSubtype, SPA_POD_Id(SPA_MEDIA_SUBTYPE_raw),
                            SPA_FORMAT_VIDEO_format, SPA_POD_Id(format), SPA_FORMAT_VIDEO_size,
                            SPA_POD_Rectangle(&size), SPA_FORMAT_VIDEO_framerate,
                            SPA_POD_Fraction(&rate), 0);
        if (m_layout.isDmaBuf) {
            spa_pod_builder_prop(&builder, SPA_FORMAT_VIDEO_modifier, SPA_POD_PROP_FLAG_MANDATORY);
            spa_pod_builder_long(&builder, 0);
        }
        if (format == SPA_VIDEO_FORMAT_NV12) {
            spa_pod_builder_add(
                &builder, SPA_FORMAT_VIDEO_colorMatrix, SPA_POD_Id(SPA_VIDEO_COLOR_MATRIX_BT709),
                SPA_FORMAT_VIDEO_colorRange, SPA_POD_Id(SPA_VIDEO_COLOR_RANGE_16_235), 0);
        }
        made.push_back(static_cast<const spa_pod*>(spa_pod_builder_pop(&builder, &frame)));
    }
    return made;
}

void FakeCast::stateChanged(void* data, pw_stream_state, pw_stream_state now, const char*) {
    auto& cast = of(data);
    cast.m_isStreaming = now == PW_STREAM_STATE_STREAMING;
    timespec refresh{0, cast.m_isStreaming && cast.m_shown.pixel ? kRefresh : 0};
    pw_loop_update_timer(cast.loop(), cast.m_painter, &refresh, nullptr, false);
}

void FakeCast::paint(void* data, std::uint64_t) {
    auto& cast = of(data);
    if (cast.m_layout.width > 0 && cast.queue(cast.m_shown)) {
        cast.isTaken();
    }
}

int FakeCast::rowBytes() const {
    const bool isPlanar = m_layout.format == SPA_VIDEO_FORMAT_NV12;
    return m_layout.width * (isPlanar ? 1 : 4) + m_layout.padding;
}

int FakeCast::chromaRowBytes() const {
    return (m_layout.width + 1) / 2 * 2 + m_layout.padding;
}

int FakeCast::planeBytes(int plane) const {
    const int chroma = chromaRowBytes() * ((m_layout.height + 1) / 2);
    const bool isPlanar = m_layout.format == SPA_VIDEO_FORMAT_NV12;
    if (plane == 1) {
        return chroma;
    }
    return rowBytes() * m_layout.height + (isPlanar && !m_layout.isTwoPlanes ? chroma : 0);
}

void FakeCast::parameterChanged(void* data, std::uint32_t id, const spa_pod* pod) {
    auto& cast = of(data);
    spa_video_info_raw info{};
    if (id != SPA_PARAM_Format || pod == nullptr || spa_format_video_raw_parse(pod, &info) < 0) {
        return;
    }
    cast.m_layout.format = info.format;
    cast.m_layout.width = static_cast<int>(info.size.width);
    cast.m_layout.height = static_cast<int>(info.size.height);
    std::array<std::uint8_t, 2048> memory{};
    spa_pod_builder builder{};
    spa_pod_builder_init(&builder, memory.data(), memory.size());
    std::vector<const spa_pod*> wanted;
    const int kind = cast.m_layout.isDmaBuf ? SPA_DATA_DmaBuf : SPA_DATA_MemFd;
    wanted.push_back(static_cast<const spa_pod*>(spa_pod_builder_add_object(
        &builder, SPA_TYPE_OBJECT_ParamBuffers, SPA_PARAM_Buffers, SPA_PARAM_BUFFERS_buffers,
        SPA_POD_CHOICE_RANGE_Int(cast.m_layout.fewestBuffers, cast.m_layout.fewestBuffers,
                                 cast.m_layout.mostBuffers),
        SPA_PARAM_BUFFERS_blocks, SPA_POD_Int(cast.m_layout.isTwoPlanes ? 2 : 1),
        SPA_PARAM_BUFFERS_size, SPA_POD_Int(cast.planeBytes(0)), SPA_PARAM_BUFFERS_stride,
        SPA_POD_Int(cast.rowBytes()), SPA_PARAM_BUFFERS_dataType,
        SPA_POD_CHOICE_FLAGS_Int(1 << kind))));
    const std::array<std::pair<std::uint32_t, int>, 4> metas{
        {{SPA_META_Header, sizeof(spa_meta_header)},
         {SPA_META_VideoCrop, sizeof(spa_meta_region)},
         {SPA_META_VideoTransform, sizeof(spa_meta_videotransform)},
         {SPA_META_Cursor, kPointerBytes}}};
    for (const auto& [type, bytes] : metas) {
        if (cast.m_metas == Metas::all) {
            wanted.push_back(static_cast<const spa_pod*>(spa_pod_builder_add_object(
                &builder, SPA_TYPE_OBJECT_ParamMeta, SPA_PARAM_Meta, SPA_PARAM_META_type,
                SPA_POD_Id(type), SPA_PARAM_META_size, SPA_POD_Int(bytes))));
        }
    }
    pw_stream_update_params(cast.m_stream, wanted.data(),
                            static_cast<std::uint32_t>(wanted.size()));
}

void FakeCast::addBuffer(void* data, pw_buffer* buffer) {
    auto& cast = of(data);
    ++cast.m_buffers;
    for (std::uint32_t i = 0; i < buffer->buffer->n_datas; ++i) {
        spa_data& plane = buffer->buffer->datas[i];
        const auto bytes = static_cast<std::size_t>(cast.planeBytes(static_cast<int>(i)));
        const int memory = memfd_create("fake-cast", MFD_CLOEXEC);
        EXPECT_EQ(ftruncate(memory, static_cast<off_t>(bytes)), 0);
        plane.type = cast.m_layout.isDmaBuf ? SPA_DATA_DmaBuf : SPA_DATA_MemFd;
        plane.flags = SPA_DATA_FLAG_READWRITE;
        plane.fd = memory;
        plane.mapoffset = 0;
        plane.maxsize = static_cast<std::uint32_t>(bytes);
        plane.data = mmap(nullptr, bytes, PROT_READ | PROT_WRITE, MAP_SHARED, memory, 0);
    }
}

void FakeCast::removeBuffer(void* data, pw_buffer* buffer) {
    --of(data).m_buffers;
    for (std::uint32_t i = 0; i < buffer->buffer->n_datas; ++i) {
        munmap(buffer->buffer->datas[i].data, buffer->buffer->datas[i].maxsize);
        close(static_cast<int>(buffer->buffer->datas[i].fd));
    }
}

bool FakeCast::waitForReader() {
    return waitFor([this] {
        pw_thread_loop_lock(m_loop);
        const bool isReady = m_isStreaming && m_buffers > 0;
        pw_thread_loop_unlock(m_loop);
        return isReady;
    });
}

bool FakeCast::send(const CastFrame& frame) {
    pw_thread_loop_lock(m_loop);
    if (frame.pixel) {
        m_shown = frame;
    }
    const bool isQueued = queue(frame);
    pw_thread_loop_unlock(m_loop);
    return isQueued && waitFor([this] { return isTaken(); });
}

void FakeCast::paintLater(const CastFrame& frame) {
    pw_thread_loop_lock(m_loop);
    m_shown = frame;
    pw_thread_loop_unlock(m_loop);
}

/// On the loop's thread or with its lock.
bool FakeCast::queue(const CastFrame& frame) {
    pw_buffer* buffer = pw_stream_dequeue_buffer(m_stream);
    if (buffer == nullptr) {
        return false;
    }
    // Between two sizes there are still buffers of the old one.
    const bool isOfSize = buffer->buffer->datas[0].maxsize >= static_cast<unsigned>(planeBytes(0));
    if (isOfSize) {
        fill(*buffer, frame);
    }
    pw_stream_queue_buffer(m_stream, buffer);
    return isOfSize;
}

/// A buffer that is queued while the one before is handed over stays until the next is.
bool FakeCast::isTaken() {
    pw_thread_loop_lock(m_loop);
    pw_time time{};
    const bool isLeft =
        pw_stream_get_time_n(m_stream, &time, sizeof time) == 0 && time.queued_buffers > 0;
    if (isLeft) {
        pw_stream_trigger_process(m_stream);
    }
    pw_thread_loop_unlock(m_loop);
    return !isLeft;
}

void FakeCast::resize(int width, int height) {
    pw_thread_loop_lock(m_loop);
    m_layout.width = width;
    m_layout.height = height;
    std::vector<std::uint8_t> memory(4096);
    auto formats = offers(memory);
    m_layout.width = 0; // until it is agreed upon
    pw_stream_update_params(m_stream, formats.data(), static_cast<std::uint32_t>(formats.size()));
    pw_thread_loop_unlock(m_loop);
    EXPECT_TRUE(waitFor([&] {
        pw_thread_loop_lock(m_loop);
        const bool isAgreed = m_layout.width == width && m_isStreaming && m_buffers > 0;
        pw_thread_loop_unlock(m_loop);
        return isAgreed;
    })) << "the new size is not taken";
}

int FakeCast::openRemote() {
    const int descriptor = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    const std::string path = std::string(std::getenv("PIPEWIRE_RUNTIME_DIR")) + "/pipewire-0";
    std::strncpy(address.sun_path, path.c_str(), sizeof address.sun_path - 1);
    EXPECT_EQ(::connect(descriptor, reinterpret_cast<sockaddr*>(&address), sizeof address), 0);
    return descriptor;
}

void FakeCast::fill(pw_buffer& buffer, const CastFrame& frame) const {
    for (std::uint32_t i = 0; i < buffer.buffer->n_datas; ++i) {
        spa_chunk& chunk = *buffer.buffer->datas[i].chunk;
        const int row = i == 0 ? rowBytes() : chromaRowBytes();
        chunk.offset = 0;
        chunk.stride = m_layout.isBottomUp ? -row : row;
        chunk.size = frame.pixel ? buffer.buffer->datas[i].maxsize : 0;
        chunk.flags = frame.isChunkCorrupted ? SPA_CHUNK_FLAG_CORRUPTED : 0;
    }
    if (frame.pixel) {
        fillPicture(buffer, frame);
    }
    fillMetas(*buffer.buffer, frame);
}

void FakeCast::fillPicture(pw_buffer& buffer, const CastFrame& frame) const {
    auto* first = static_cast<std::uint8_t*>(buffer.buffer->datas[0].data);
    auto* chroma = m_layout.isTwoPlanes
                       ? static_cast<std::uint8_t*>(buffer.buffer->datas[1].data)
                       : first + static_cast<std::ptrdiff_t>(rowBytes()) * m_layout.height;
    const int chromaRow = m_layout.isTwoPlanes ? chromaRowBytes() : rowBytes();
    for (int y = 0; y < m_layout.height; ++y) {
        const int row = m_layout.isBottomUp ? m_layout.height - 1 - y : y;
        std::uint8_t* to = first + static_cast<std::ptrdiff_t>(row) * rowBytes();
        for (int x = 0; x < m_layout.width; ++x) {
            const std::uint32_t colour = frame.pixel(x, y);
            if (m_layout.format == SPA_VIDEO_FORMAT_NV12) {
                const FakeYuv yuv = fakeYuv(colour, kBt709);
                to[x] = yuv.y;
                std::uint8_t* pair =
                    chroma + static_cast<std::ptrdiff_t>(row / 2) * chromaRow + x / 2 * 2;
                pair[0] = yuv.u;
                pair[1] = yuv.v;
            } else {
                const auto bytes = bytesOf(colour, m_layout.format);
                std::copy(bytes.begin(), bytes.end(), to + std::ptrdiff_t{x} * 4);
            }
        }
    }
}

void FakeCast::fillMetas(const spa_buffer& buffer, const CastFrame& frame) {
    if (auto* header = metaOf<spa_meta_header>(buffer, SPA_META_Header)) {
        *header = {};
        header->pts = frame.pts != 0 ? frame.pts : -1;
        header->flags = frame.isHeaderCorrupted ? SPA_META_HEADER_FLAG_CORRUPTED : 0;
    }
    if (auto* crop = metaOf<spa_meta_region>(buffer, SPA_META_VideoCrop)) {
        crop->region = frame.crop;
    }
    if (auto* turn = metaOf<spa_meta_videotransform>(buffer, SPA_META_VideoTransform)) {
        turn->transform = frame.transform;
    }
    fillPointer(buffer, frame.pointer.empty() ? CastPointerNews{.id = 0} : frame.pointer.front());
}

void FakeCast::fillPointer(const spa_buffer& buffer, const CastPointerNews& news) {
    auto* cursor = metaOf<spa_meta_cursor>(buffer, SPA_META_Cursor);
    if (cursor == nullptr) {
        return;
    }
    *cursor = {};
    cursor->id = news.id;
    cursor->position = {news.x, news.y};
    cursor->hotspot = {news.hotSpotX, news.hotSpotY};
    if (news.pixels.empty()) {
        return;
    }
    cursor->bitmap_offset = sizeof(spa_meta_cursor);
    spa_meta_bitmap bitmap{};
    bitmap.format = news.format;
    bitmap.size = {static_cast<std::uint32_t>(news.width),
                   static_cast<std::uint32_t>(news.pixels.size()) /
                       static_cast<std::uint32_t>(news.width)};
    bitmap.stride = news.width * 4;
    bitmap.offset =
        static_cast<std::uint32_t>(sizeof bitmap) + static_cast<std::uint32_t>(news.lie);
    auto* place = reinterpret_cast<std::uint8_t*>(cursor) + cursor->bitmap_offset;
    std::memcpy(place, &bitmap, sizeof bitmap);
    std::uint8_t* to = place + sizeof bitmap;
    for (const std::uint32_t pixel : news.pixels) {
        const auto bytes = bytesOf(pixel, news.format);
        to = std::copy(bytes.begin(), bytes.end(), to);
    }
}

} // namespace tavi::test
