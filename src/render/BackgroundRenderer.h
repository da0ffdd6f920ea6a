#pragma once

#include "base/Geometry.h"
#include "base/PixelBuffer.h"
#include "project/AppearanceSettings.h"
#include "render/CoverageMask.h"
#include "render/GaussianBlur.h"
#include "render/ImageView.h"
#include "render/Resampler.h"

#include <cstdint>
#include <optional>
#include <span>
#include <vector>

namespace tavi {

/// Lays a crop of the video into the padded area of the output, rounds its
/// corners, gives it a shadow and places it over a background.
///
/// One renderer serves one export. Space: output pixels, origin at the bottom
/// left; rows are turned over only where they are written.
/// Failures: none. Options that leave no room for the content, or no content,
/// give a frame without it.
/// Threads: one at a time; contentScale() and contentOffset() are second results
/// of the last compose().
class BackgroundRenderer {
public:
    /// `outputSize` is limited to 1 .. 16384 pixels a side. Draws the still background.
    BackgroundRenderer(const AppearanceSettings& settings, Size outputSize);

    /// Draws one frame over all of `out`.
    ///
    /// `frame` is the whole video image, whose lower left corner is (0, 0): what
    /// lies inside `sourceRect` is the content, and all of it makes the blur
    /// background. `time` is the output time in seconds. `out` may exceed the
    /// output's size by less than 2 pixels at the top and right; the background
    /// covers that too.
    void compose(const PixelBufferPtr& frame, const Rect& sourceRect, double time, ImageView out);

    /// Source pixels to output pixels; 0 where the options leave no room.
    double contentScale() const { return m_contentScale; }

    /// Lower left corner of the content in the output.
    Point contentOffset() const { return m_contentOffset; }

    Size outputSize() const { return m_outputSize; }

private:
    /// A shadow: alphas of black on some pixels of the output, rows from the top.
    struct Shadow {
        PixelBounds bounds;
        std::vector<std::uint8_t> alpha;
        Rect contentRect; ///< That it was made for.

        const std::uint8_t* at(int x, int y) const;
    };

    /// Neighbouring pixels of a row of the output that the content covers in part.
    struct EdgePixels {
        std::uint8_t* out = nullptr;
        std::uint8_t* behind = nullptr; ///< A copy of what the content will lie over.
        std::span<const std::uint8_t> coverage;
    };

    void prepareBackground();
    void chooseBackground(const PixelBufferPtr& frame, double time);
    void animatedWallpaperImage(double time);
    void blurredBackground(const PixelBufferPtr& frame);
    void blurEnlargedFrame(ConstImageView frame, double scale, double sigma);
    Rect placeContent(const Rect& sourceRect);
    Rect roundedShape(const Rect& contentRect) const;
    void applyCornerMask(const Rect& contentRect, const Rect& visibleRect);
    const Shadow& shadowImage(const Rect& contentRect);
    Shadow makeShadow(const Rect& contentRect) const;
    bool isBackgroundStill() const;
    void prepareBackdrop(const Shadow* shadow);

    void drawBehind(const Shadow* shadow, int y, int left, int right, ImageView out);
    void drawBackground(int y, int left, int right, ImageView out);
    void drawShadow(const Shadow& shadow, int y, int left, int right, ImageView out) const;
    void drawRow(int y, const Shadow* shadow, ImageView out);
    EdgePixels keepBehind(std::uint8_t* row, int begin, std::span<const std::uint8_t> coverage);
    static void blendEdge(const EdgePixels& edge);

    AppearanceSettings m_settings;
    Size m_outputSize;
    int m_width = 0; ///< Whole pixels, even: those of a finished frame.
    int m_height = 0;
    double m_contentScale = 1.0;
    Point m_contentOffset;

    PixelBuffer m_background;      ///< The picture behind it all, unless m_isBlurDrawn.
    bool m_isBlurDrawn = false;    ///< The background comes from m_blur, row by row.
    PixelBufferPtr m_blurredFrame; ///< The frame that the blur was made of.
    GaussianBlur m_blur;

    CoverageMask m_mask;
    Rect m_maskContent; ///< What m_mask was made for.
    Rect m_maskVisible;
    Rect m_cachedContentRect; ///< The rect of the last rounded mask; zero without one.
    std::optional<Shadow> m_cachedShadow;

    PixelBuffer m_backdrop; ///< A still background with m_cachedShadow on it.
    bool m_isBackdropMade = false;

    Resampler m_content;
    bool m_hasContent = false;
    std::vector<std::uint8_t> m_row; ///< One row of the output.
};

/// The pixels of a finished frame for an output size: whole, even (as 4:2:0
/// video needs them), rounded up, 2 .. 16384 a side.
struct FrameSize {
    int width = 0;
    int height = 0;
    bool operator==(const FrameSize&) const = default;
};
FrameSize frameSizeFor(Size outputSize);

} // namespace tavi
