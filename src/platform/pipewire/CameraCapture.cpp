#include "platform/pipewire/CameraCapture.h"

#include <algorithm>
#include <array>
#include <spa/buffer/meta.h>
#include <spa/param/format-utils.h>
#include <spa/param/param.h>
#include <spa/param/video/format-utils.h>
#include <spa/pod/builder.h>
#include <vector>

namespace tavi {

namespace {

/// A camera's time that is farther from the host's clock is of another clock.
constexpr std::int64_t kPlausible = 2'000'000'000; // nanoseconds

/// Raw or JPEG; absent for all else.
std::optional<spa_video_info_raw> videoInfo(const spa_pod& format) {
    std::uint32_t type = 0;
    std::uint32_t subtype = 0;
    spa_video_info_raw info{};
    if (spa_format_parse(&format, &type, &subtype) < 0 || type != SPA_MEDIA_TYPE_video) {
        return std::nullopt;
    }
    if (subtype == SPA_MEDIA_SUBTYPE_mjpg) {
        spa_video_info_mjpg jpeg{};
        if (spa_format_video_mjpg_parse(&format, &jpeg) < 0) {
            return std::nullopt;
        }
        info.format = SPA_VIDEO_FORMAT_ENCODED;
        info.size = jpeg.size;
        return info;
    }
    if (subtype != SPA_MEDIA_SUBTYPE_raw || spa_format_video_raw_parse(&format, &info) < 0) {
        return std::nullopt;
    }
    return info;
}

} // namespace

bool CameraCapture::describe(const Parameters& parameters) {
    std::vector<CameraFormat> offered;
    if (parameters.current) {
        // Another program uses it already: as it is, or not at all.
        offered = cameraFormats(*parameters.current);
    }
    if (offered.empty()) {
        for (const auto& pod : parameters.enumerated) {
            const auto more = cameraFormats(*pod);
            offered.insert(offered.end(), more.begin(), more.end());
        }
    }
    if (m_width != 0) {
        std::erase_if(offered, [this](const CameraFormat& format) {
            return format.evenWidth() != m_width || format.evenHeight() != m_height;
        });
    }
    const auto best = bestCameraFormat(offered);
    if (!best) {
        return false;
    }
    m_format = *best;
    m_width = best->evenWidth();
    m_height = best->evenHeight();
    return true;
}

DeviceCapture::StreamPlan CameraCapture::plan() {
    m_delivery = {};
    StreamPlan made;
    made.formats.push_back(cameraFormatParameter(m_format));
    made.properties = pw_properties_new(PW_KEY_MEDIA_TYPE, "Video", PW_KEY_MEDIA_CATEGORY,
                                        "Capture", PW_KEY_MEDIA_ROLE, "Camera", PW_KEY_MEDIA_NAME,
                                        "Recording", PW_KEY_NODE_NAME, "tavlin", nullptr);
    return made;
}

bool CameraCapture::formatAgreed(pw_stream& stream, const spa_pod& format) {
    m_delivery = {};
    const auto info = videoInfo(format);
    if (!info || static_cast<int>(info->size.width & ~1U) != m_width ||
        static_cast<int>(info->size.height & ~1U) != m_height) {
        return false;
    }
    m_delivery.format = info->format;
    m_delivery.width = static_cast<int>(info->size.width);
    m_delivery.height = static_cast<int>(info->size.height);
    m_delivery.matrix =
        info->color_matrix == SPA_VIDEO_COLOR_MATRIX_BT709 ? YuvMatrix::bt709 : YuvMatrix::bt601;
    m_delivery.range =
        info->color_range == SPA_VIDEO_COLOR_RANGE_0_255 ? YuvRange::full : YuvRange::limited;
    std::array<std::uint8_t, 1024> memory{};
    spa_pod_builder builder{};
    spa_pod_builder_init(&builder, memory.data(), memory.size());
    constexpr int kMemory = 1 << SPA_DATA_MemPtr | 1 << SPA_DATA_MemFd | 1 << SPA_DATA_DmaBuf;
    std::array<const spa_pod*, 2> answer{
        static_cast<const spa_pod*>(spa_pod_builder_add_object(
            &builder, SPA_TYPE_OBJECT_ParamBuffers, SPA_PARAM_Buffers, SPA_PARAM_BUFFERS_buffers,
            SPA_POD_CHOICE_RANGE_Int(8, 2, 16), SPA_PARAM_BUFFERS_dataType,
            SPA_POD_CHOICE_FLAGS_Int(kMemory))),
        static_cast<const spa_pod*>(spa_pod_builder_add_object(
            &builder, SPA_TYPE_OBJECT_ParamMeta, SPA_PARAM_Meta, SPA_PARAM_META_type,
            SPA_POD_Id(SPA_META_Header), SPA_PARAM_META_size,
            SPA_POD_Int(static_cast<int>(sizeof(spa_meta_header)))))};
    pw_stream_update_params(&stream, answer.data(), answer.size());
    return true;
}

std::int64_t CameraCapture::timeOf(pw_stream& stream, const spa_buffer& buffer) {
    const std::int64_t now = hostNanoseconds();
    const auto* header = static_cast<const spa_meta_header*>(
        spa_buffer_find_meta_data(&buffer, SPA_META_Header, sizeof(spa_meta_header)));
    std::int64_t time = now;
    pw_time cycle{};
    if (header != nullptr && std::abs(header->pts - now) < kPlausible) {
        time = header->pts;
    } else if (pw_stream_get_time_n(&stream, &cycle, sizeof cycle) == 0 &&
               std::abs(cycle.now - now) < kPlausible) {
        time = cycle.now;
    }
    m_last = std::max(time, m_last + 1);
    return m_last;
}

PixelBufferPtr CameraCapture::pictureOf(const spa_buffer& buffer) {
    const spa_data& data = buffer.datas[0];
    const std::uint32_t offset = std::min(data.chunk->offset, data.maxsize);
    CameraPicture picture = m_delivery;
    picture.stride = data.chunk->stride;
    picture.bytes = {static_cast<const std::uint8_t*>(data.data) + offset,
                     std::min(data.chunk->size, data.maxsize - offset)};
    auto image = std::make_shared<PixelBuffer>(m_width, m_height);
    return readCameraPicture(picture, m_mirroring, *image) ? image : nullptr;
}

std::optional<CaptureSample> CameraCapture::read(pw_stream& stream, const spa_buffer& buffer) {
    const spa_data& data = buffer.datas[0];
    if (m_delivery.width == 0 || data.data == nullptr || data.chunk == nullptr ||
        data.chunk->size == 0) {
        return std::nullopt;
    }
    CaptureSample sample;
    sample.kind = CaptureSampleKind::picture;
    sample.presentationTime = MediaTime::fromNanoseconds(timeOf(stream, buffer));
    const bool isDamaged = (data.chunk->flags & SPA_CHUNK_FLAG_CORRUPTED) != 0;
    sample.image = isDamaged ? nullptr : pictureOf(buffer);
    sample.isValid = sample.image != nullptr;
    return sample;
}

} // namespace tavi
