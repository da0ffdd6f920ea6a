#include "platform/portal/CastFormat.h"

#include "platform/portal/CastPicture.h"

#include <algorithm>
#include <array>
#include <spa/buffer/buffer.h>
#include <spa/buffer/meta.h>
#include <spa/param/buffers.h>
#include <spa/param/format-utils.h>
#include <spa/param/video/format-utils.h>
#include <spa/pod/builder.h>
#include <span>

namespace tavi {

namespace {

constexpr std::uint32_t kLargestSide = 16384; ///< Pixels.
/// The layout in plain rows, as the kernel's graphics drivers number it.
constexpr std::int64_t kLinear = 0;
/// Pixels of a side of the largest pointer: four times the largest of usual themes.
constexpr int kLargestPointer = 1024;
constexpr int kUsualPointer = 64;

constexpr int cursorBytes(int side) {
    return static_cast<int>(sizeof(spa_meta_cursor) + sizeof(spa_meta_bitmap)) + side * side * 4;
}

enum class Layout { any, linear };

/// Those of kCastFormats that a window's transparent parts come through.
constexpr std::array kAlphaFormats{SPA_VIDEO_FORMAT_BGRA, SPA_VIDEO_FORMAT_RGBA};

PodCopy formatParameter(std::span<const spa_video_format> formats, Layout layout,
                        int framesPerSecond) {
    std::array<std::uint8_t, 1024> memory{};
    spa_pod_builder builder{};
    spa_pod_builder_init(&builder, memory.data(), memory.size());
    std::array<spa_pod_frame, 2> frames{};
    spa_pod_builder_push_object(&builder, frames.data(), SPA_TYPE_OBJECT_Format,
                                SPA_PARAM_EnumFormat);
    spa_pod_builder_add(&builder, SPA_FORMAT_mediaType, SPA_POD_Id(SPA_MEDIA_TYPE_video),
                        SPA_FORMAT_mediaSubtype, SPA_POD_Id(SPA_MEDIA_SUBTYPE_raw), 0);
    spa_pod_builder_prop(&builder, SPA_FORMAT_VIDEO_format, 0);
    spa_pod_builder_push_choice(&builder, &frames[1], SPA_CHOICE_Enum, 0);
    spa_pod_builder_id(&builder, formats[0]); // the default stands in front once more
    for (const spa_video_format format : formats) {
        spa_pod_builder_id(&builder, format);
    }
    spa_pod_builder_pop(&builder, &frames[1]);
    if (layout == Layout::linear) {
        spa_pod_builder_prop(&builder, SPA_FORMAT_VIDEO_modifier, SPA_POD_PROP_FLAG_MANDATORY);
        spa_pod_builder_long(&builder, kLinear);
    }
    const spa_rectangle usual{1920, 1080};
    const spa_rectangle smallest{1, 1};
    const spa_rectangle largest{kLargestSide, kLargestSide};
    const spa_fraction rate{static_cast<std::uint32_t>(framesPerSecond), 1};
    const spa_fraction onDamage{0, 1};
    const spa_fraction fastest{1000, 1};
    const spa_fraction slowest{1, 1};
    spa_pod_builder_add(
        &builder, SPA_FORMAT_VIDEO_size,
        SPA_POD_CHOICE_RANGE_Rectangle(&usual, &smallest, &largest), SPA_FORMAT_VIDEO_framerate,
        SPA_POD_CHOICE_RANGE_Fraction(&onDamage, &onDamage, &fastest),
        SPA_FORMAT_VIDEO_maxFramerate, SPA_POD_CHOICE_RANGE_Fraction(&rate, &slowest, &rate), 0);
    return copyPod(*static_cast<const spa_pod*>(spa_pod_builder_pop(&builder, frames.data())));
}

template<typename... Properties>
PodCopy object(std::uint32_t type, std::uint32_t id, Properties... properties) {
    std::array<std::uint8_t, 512> memory{};
    spa_pod_builder builder{};
    spa_pod_builder_init(&builder, memory.data(), memory.size());
    spa_pod_frame frame{};
    spa_pod_builder_push_object(&builder, &frame, type, id);
    spa_pod_builder_add(&builder, properties..., 0);
    return copyPod(*static_cast<const spa_pod*>(spa_pod_builder_pop(&builder, &frame)));
}

PodCopy metaParameter(std::uint32_t type, std::size_t bytes) {
    return object(SPA_TYPE_OBJECT_ParamMeta, SPA_PARAM_Meta, SPA_PARAM_META_type, SPA_POD_Id(type),
                  SPA_PARAM_META_size, SPA_POD_Int(static_cast<int>(bytes)));
}

YuvEncoding encodingOf(const spa_video_info_raw& info) {
    YuvEncoding encoding;
    const bool isSmall = info.size.height < 720;
    const bool isUnknown = info.color_matrix == SPA_VIDEO_COLOR_MATRIX_UNKNOWN;
    const bool is601 = info.color_matrix == SPA_VIDEO_COLOR_MATRIX_BT601 || (isUnknown && isSmall);
    encoding.matrix = is601 ? YuvMatrix::bt601 : YuvMatrix::bt709;
    encoding.range =
        info.color_range == SPA_VIDEO_COLOR_RANGE_0_255 ? YuvRange::full : YuvRange::limited;
    return encoding;
}

} // namespace

std::vector<PodCopy> castFormatParameters(int framesPerSecond, CastAlpha alpha) {
    std::vector<PodCopy> wanted;
    for (const Layout layout : {Layout::any, Layout::linear}) {
        if (alpha == CastAlpha::wanted) {
            wanted.push_back(formatParameter(kAlphaFormats, layout, framesPerSecond));
        }
        wanted.push_back(formatParameter(kCastFormats, layout, framesPerSecond));
    }
    return wanted;
}

std::optional<CastFormat> readCastFormat(const spa_pod& parameter) {
    std::uint32_t type = 0;
    std::uint32_t subtype = 0;
    spa_video_info_raw info{};
    if (spa_format_parse(&parameter, &type, &subtype) < 0 || type != SPA_MEDIA_TYPE_video ||
        subtype != SPA_MEDIA_SUBTYPE_raw || spa_format_video_raw_parse(&parameter, &info) < 0) {
        return std::nullopt;
    }
    const bool isRead = std::find(std::begin(kCastFormats), std::end(kCastFormats), info.format) !=
                        std::end(kCastFormats);
    const bool isOfSize = info.size.width > 0 && info.size.height > 0 &&
                          info.size.width <= kLargestSide && info.size.height <= kLargestSide;
    if (!isRead || !isOfSize) {
        return std::nullopt;
    }
    CastFormat format;
    format.format = info.format;
    format.width = static_cast<int>(info.size.width);
    format.height = static_cast<int>(info.size.height);
    format.encoding = encodingOf(info);
    format.isDmaBuf = spa_pod_find_prop(&parameter, nullptr, SPA_FORMAT_VIDEO_modifier) != nullptr;
    return format;
}

std::vector<PodCopy> castBufferParameters(const CastFormat& format) {
    const int kinds =
        format.isDmaBuf ? 1 << SPA_DATA_DmaBuf : 1 << SPA_DATA_MemFd | 1 << SPA_DATA_MemPtr;
    std::vector<PodCopy> wanted;
    wanted.push_back(object(SPA_TYPE_OBJECT_ParamBuffers, SPA_PARAM_Buffers,
                            SPA_PARAM_BUFFERS_buffers, SPA_POD_CHOICE_RANGE_Int(8, 2, 32),
                            SPA_PARAM_BUFFERS_dataType, SPA_POD_CHOICE_FLAGS_Int(kinds)));
    wanted.push_back(metaParameter(SPA_META_Header, sizeof(spa_meta_header)));
    wanted.push_back(metaParameter(SPA_META_VideoCrop, sizeof(spa_meta_region)));
    wanted.push_back(metaParameter(SPA_META_VideoTransform, sizeof(spa_meta_videotransform)));
    wanted.push_back(object(SPA_TYPE_OBJECT_ParamMeta, SPA_PARAM_Meta, SPA_PARAM_META_type,
                            SPA_POD_Id(SPA_META_Cursor), SPA_PARAM_META_size,
                            SPA_POD_CHOICE_RANGE_Int(cursorBytes(kUsualPointer), cursorBytes(1),
                                                     cursorBytes(kLargestPointer))));
    return wanted;
}

} // namespace tavi
