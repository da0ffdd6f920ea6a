#pragma once

#include "base/PixelBuffer.h"

#include <cstddef>
#include <cstdint>

namespace tavi {

/// Which weights of red, green and blue make brightness.
enum class YuvMatrix {
    bt601, ///< ITU-R BT.601: standard definition.
    bt709, ///< ITU-R BT.709: high definition.
};

enum class YuvRange {
    limited, ///< Brightness 16 to 235, colour 16 to 240.
    full,    ///< 0 to 255 both.
};

/// Where a colour sample lies among the four brightness samples that share it.
enum class ChromaSiting {
    left,    ///< On the left column, half way between the rows: H.264 and HEVC by default.
    centre,  ///< In the middle of the four: JPEG, MPEG-1.
    topLeft, ///< On the left one of the upper row: H.264 and HEVC of BT.2020.
};

/// How the samples of a picture are to be understood.
struct YuvEncoding {
    YuvMatrix matrix = YuvMatrix::bt709;
    YuvRange range = YuvRange::limited;
    ChromaSiting siting = ChromaSiting::left;

    bool operator==(const YuvEncoding&) const = default;
};

/// A borrowed 4:2:0 picture with 8-bit samples: one brightness sample a pixel, one
/// pair of colour samples for two by two pixels (the last column and row of an odd
/// size have their own). The owner outlives the view.
template<class Sample>
struct BasicYuvView {
    struct Plane {
        Sample* data = nullptr;
        std::ptrdiff_t stride = 0; ///< Bytes from one row to the next; may be negative.

        Sample* row(int y) const { return data + stride * y; }
    };

    int width = 0; ///< Pixels.
    int height = 0;
    Plane y;
    Plane u;                    ///< Cb; with `isInterleaved` pairs of Cb and Cr.
    Plane v;                    ///< Cr; not looked at with `isInterleaved`.
    bool isInterleaved = false; ///< NV12.
    YuvEncoding encoding;

    int chromaWidth() const { return (width + 1) / 2; }
    int chromaHeight() const { return (height + 1) / 2; }
};

using YuvView = BasicYuvView<std::uint8_t>;
using ConstYuvView = BasicYuvView<const std::uint8_t>;

/// Converts between 4:2:0 pictures and BGRA.
///
/// Shapes:   both pictures have the same size; anything else is a caller's bug (assert).
/// Rounding: to nearest; grey stays grey, black black and white white.
/// Threads:  any number at once.
class ColorConverter {
public:
    virtual ~ColorConverter() = default;

    /// Fills `to` with opaque pixels. Colour between two samples is their mean,
    /// weighted by the distances.
    virtual void toBgra(const ConstYuvView& from, PixelBuffer& to) const = 0;

    /// Fills the planes of `to`. Colour samples are weighted means of the pixels
    /// around their place. Alpha is ignored: the premultiplied values are taken as
    /// they are, as if over black.
    virtual void fromBgra(const PixelBuffer& from, const YuvView& to) const = 0;
};

} // namespace tavi
