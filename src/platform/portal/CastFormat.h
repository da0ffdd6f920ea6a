#pragma once

#include "media/ColorConversion.h"
#include "platform/pipewire/PodCopy.h"

#include <optional>
#include <spa/param/video/raw.h>
#include <vector>

namespace tavi {

/// What a stream and its compositor agreed upon.
struct CastFormat {
    spa_video_format format = SPA_VIDEO_FORMAT_UNKNOWN;
    int width = 0; ///< Pixels.
    int height = 0;
    YuvEncoding encoding;  ///< Of NV12.
    bool isDmaBuf = false; ///< The pictures are memory of the graphics card, laid out in rows.

    bool hasAlpha() const {
        return format == SPA_VIDEO_FORMAT_BGRA || format == SPA_VIDEO_FORMAT_RGBA;
    }
};

/// Whether a format with an alpha channel, which windows may have, is better than one that is
/// cheaper to read.
enum class CastAlpha { unwanted, wanted };

/// The parameters that ask for pictures that can be read, most wanted first: shared memory, then
/// memory of the graphics card that can be mapped (linear), which is slower to read.
/// Of any size, and at most `framesPerSecond`.
std::vector<PodCopy> castFormatParameters(int framesPerSecond, CastAlpha alpha);

/// Absent for what can't be read.
std::optional<CastFormat> readCastFormat(const spa_pod& parameter);

/// What the stream needs of its buffers: memory that can be mapped, times, what of a
/// picture is shown, and the pointer.
std::vector<PodCopy> castBufferParameters(const CastFormat& format);

} // namespace tavi
