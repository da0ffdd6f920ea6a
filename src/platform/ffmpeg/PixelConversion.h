#pragma once

#include "base/PixelBuffer.h"
#include "media/ColorConversion.h"
#include "platform/ffmpeg/FfmpegHandles.h"

#include <memory>
#include <optional>
#include <utility>

namespace tavi {

/// Turns decoded pictures into BGRA, opaque but for those with alpha of ours
/// (hasJoinedAlpha()): 4:2:0 of 8 bits (planar and NV12, BT.601
/// and BT.709) in their own size by a ColorConverter, everything else by the scaling
/// library.
///
/// The matrix and range are those that the picture is tagged with. An untagged
/// one counts as limited range, and as BT.709 from 720 lines on, BT.601 below,
/// which is what encoders of untagged files used.
/// Thread: one at a time; keeps its tables while the kind of picture stays.
class PictureDecoding {
public:
    /// Null `colours` leave every kind of picture to the scaling library.
    explicit PictureDecoding(std::shared_ptr<const ColorConverter> colours)
        : m_colours(std::move(colours)) {}

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
    bool scale(const AVFrame& from, PixelBuffer& to);

    std::shared_ptr<const ColorConverter> m_colours;
    std::optional<Kind> m_kind;
    ScalerHandle m_scaler;
};

/// Turns BGRA into a 4:2:0 picture, BT.709, limited range. Alpha is ignored:
/// the premultiplied values are taken as they are, as if over black. By a
/// ColorConverter where there is one and it knows the format.
/// Thread: one at a time.
class PictureEncoding {
public:
    /// Null `colours` leave every picture to the scaling library.
    explicit PictureEncoding(std::shared_ptr<const ColorConverter> colours)
        : m_colours(std::move(colours)) {}

    /// `to` has buffers and its format (yuv420p or nv12) and size set; sizes are equal.
    bool convert(const PixelBuffer& from, AVFrame& to);

private:
    bool scale(const PixelBuffer& from, AVFrame& to);

    std::shared_ptr<const ColorConverter> m_colours;
    ScalerHandle m_scaler;
};

} // namespace tavi
