#pragma once

#include "base/PixelBuffer.h"
#include "platform/ffmpeg/FfmpegHandles.h"

#include <optional>

namespace tavi {

/// Turns decoded pictures into opaque BGRA.
///
/// The matrix and range are those that the picture is tagged with. An untagged
/// one counts as limited range, and as BT.709 from 720 lines on, BT.601 below,
/// which is what encoders of untagged files used.
/// Thread: one at a time; keeps its tables while the kind of picture stays.
class PictureDecoding {
public:
    /// Fills `to`, scaling (bilinear, area-weighted when reducing) where the sizes differ. False
    /// where the library has no way from this kind of picture.
    bool convert(const AVFrame& from, PixelBuffer& to);

private:
    /// What the tables depend on.
    struct Kind {
        int width, height, format, toWidth, toHeight, matrix, chroma;
        bool isFullRange;
        bool operator==(const Kind&) const = default;
    };

    static Kind kindOf(const AVFrame& from, const PixelBuffer& to);
    bool prepare(const Kind& kind);

    std::optional<Kind> m_kind;
    ScalerHandle m_scaler;
};

/// Turns BGRA into a 4:2:0 picture, BT.709, limited range. Alpha is ignored:
/// the premultiplied values are taken as they are, as if over black.
/// Thread: one at a time.
class PictureEncoding {
public:
    /// `to` has buffers and its format (yuv420p or nv12) and size set; sizes are equal.
    bool convert(const PixelBuffer& from, AVFrame& to);

private:
    ScalerHandle m_scaler;
};

} // namespace tavi
