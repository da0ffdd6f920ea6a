#pragma once

#include "render/AxisTaps.h"
#include "render/BlurKernels.h"
#include "render/ImageView.h"

#include <cstdint>
#include <vector>

namespace tavi {

/// What a blur sees beyond the edges of a picture.
enum class BlurEdges {
    extended,    ///< The edge pixels go on for ever: nothing darkens towards the border.
    transparent, ///< Nothing: what is blurred fades out.
};

/// 8-bit samples to blur: `channels` interleaved values a pixel, rows top-down.
struct SampleView {
    const std::uint8_t* data = nullptr;
    int width = 0;
    int height = 0;
    std::size_t stride = 0;
    int channels = 1; ///< 1 for a mask, 4 for a picture.
};

/// A gaussian blur of any radius whose cost does not grow with it.
///
/// The picture is halved with the binomial filter 1 3 3 1 until the standard
/// deviation left is 3.5 to 7 pixels, convolved there directly (4 deviations to
/// each side), and interpolated linearly on the way back. The variance that the
/// halving and the interpolation bring with them is taken off the kernel's, so
/// that the whole has the variance asked for. Within 1/255 of the direct
/// convolution; below a deviation of 7 it is the direct convolution.
///
/// Threads: one at a time. Memory is kept from picture to picture.
class GaussianBlur {
public:
    /// Blurs `source` by the standard deviation `sigma`, in its pixels. A sigma
    /// that isn't a positive number blurs nothing. The source is not kept.
    void blur(const SampleView& source, double sigma, BlurEdges edges);

    /// Sets up the way back: where the blurred picture lands on a target.
    /// Columns and rows inside `pixels` can be asked for afterwards.
    void begin(const AxisMapping& columns, const AxisMapping& rows, const PixelBounds& pixels);

    /// The same for a target in the source's own pixels.
    void begin();

    /// Writes row `y`, columns [left, right), to `out`, column `left` first.
    void writeRow(int y, int left, int right, std::uint8_t* out);

    /// How often the picture was halved for the last blur.
    int halvings() const { return m_halvings; }

private:
    /// 16-bit samples, 64 to a step of 8 bits, with a border of kBorder pixels.
    struct Level {
        int width = 0; ///< Without the border.
        int height = 0;
        std::size_t stride = 0; ///< Numbers from one row to the next.
        std::vector<std::uint16_t> samples;
    };

    static constexpr int kBorder = 2;

    void load(const SampleView& source, Level& level) const;
    void halve(const Level& from, Level& to);
    void halveSource(const SampleView& source, Level& to);
    void quarterSource(const SampleView& source, Level& to);
    void convolve(Level& level, double sigma);
    void resize(Level& level, int width, int height) const;
    std::vector<PixelPlace> placesOn(const AxisMapping& mapping, int begin, int end,
                                     int size) const;

    int m_channels = 1;
    int m_halvings = 0;
    int m_sourceWidth = 0;
    int m_sourceHeight = 0;
    BlurEdges m_edges = BlurEdges::extended;
    Level m_level;
    Level m_spare;
    std::vector<std::uint16_t> m_row; ///< One row with room for the filter at both ends.
    std::vector<std::uint16_t> m_halfRow;
    std::vector<float> m_convolved;
    std::vector<float> m_line;
    PixelBounds m_pixels;
    std::vector<PixelPlace> m_columns; ///< Target pixels on the last level with its border.
    std::vector<PixelPlace> m_rows;
    std::vector<std::uint16_t> m_mixed; ///< The part in use of a row between two of the last level.
};

/// Blurs one picture of four channels into another of the same size. The two may
/// be the same memory.
void gaussianBlur(ImageView dst, ConstImageView src, double sigma, BlurEdges edges);

} // namespace tavi
