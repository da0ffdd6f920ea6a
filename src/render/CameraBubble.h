#pragma once

#include "base/Geometry.h"
#include "base/PixelBuffer.h"
#include "project/CameraSettings.h"
#include "render/CoverageMask.h"
#include "render/ImageView.h"
#include "render/Resampler.h"

#include <cstdint>
#include <optional>
#include <vector>

namespace tavi {

/// The square of the bubble in output pixels, origin at the bottom left; absent
/// where its size isn't positive. Both margins are fractions of the width.
std::optional<Rect> cameraBubbleRect(const CameraSettings& settings, Size output);

/// The soft shadow around a bubble, in output pixels.
struct CameraBubbleShadow {
    double alpha = 0.4;
    double sigma = 8; ///< Deviation of its blur; three of them are drawn to each side.
};

/// Draws the camera into a rounded square in a corner of the output, with a rim
/// and a soft shadow.
///
/// The picture fills the square, its middle in the middle; what is too wide or
/// too high is cut off. Nothing is mirrored. Rim and shadow are drawn once, the
/// picture once for each camera frame.
/// Errors:  none; settings that leave no bubble draw nothing.
/// Threads: one at a time.
class CameraBubble {
public:
    /// `output` is the output's exact size, at most 16384 pixels a side.
    CameraBubble(const CameraSettings& settings, Size output, CameraBubbleShadow shadow = {});

    /// Draws the bubble over `out`, whose lower left corner is the output's and
    /// which holds all of the output. Null or empty images draw nothing.
    void draw(const PixelBufferPtr& image, ImageView out);

private:
    Rect toLayer(const Rect& rect) const;
    void castShadow(const Rect& bubble);
    void drawRim(const Rect& bubble);
    void drawLayer(const PixelBuffer& image);

    CameraSettings m_settings;
    CameraBubbleShadow m_shadowLook;
    int m_height = 0;     ///< Rows of the output, from which rows are counted.
    PixelBounds m_bounds; ///< What is drawn on; empty without a bubble.
    Rect m_bubble;        ///< In the layer's pixels, rows from the top.
    PixelBuffer m_shadow; ///< Of the layer's size, as the next two.
    PixelBuffer m_rim;
    PixelBuffer m_layer;
    PixelBufferPtr m_image; ///< That m_layer shows.
    CoverageMask m_mask;
    Resampler m_resampler;
    std::vector<std::uint8_t> m_row;
};

} // namespace tavi
