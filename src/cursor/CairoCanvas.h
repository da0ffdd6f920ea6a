#pragma once

#include "base/Geometry.h"
#include "base/PixelBuffer.h"

#include <cairo.h>

#include <memory>

namespace tavi {

/// Draws into a picture with Cairo, whose native 32-bit format is the picture's.
///
/// Space: pixels from the top left, y downwards. The picture outlives the canvas
/// and holds what was drawn once the canvas is gone.
/// Thread: one at a time.
class CairoCanvas {
public:
    explicit CairoCanvas(PixelBuffer& image);

    /// False where Cairo could not take the picture; drawing then does nothing.
    bool isValid() const;

    cairo_t* context() const { return m_context.get(); }

    /// Paints a whole picture scaled to fill [0, width] x [0, height], filtered
    /// for quality.
    void drawScaled(const PixelBuffer& picture, double width, double height);

private:
    struct DestroySurface {
        void operator()(cairo_surface_t* surface) const { cairo_surface_destroy(surface); }
    };
    struct DestroyContext {
        void operator()(cairo_t* context) const { cairo_destroy(context); }
    };

    std::unique_ptr<cairo_surface_t, DestroySurface> m_surface;
    std::unique_ptr<cairo_t, DestroyContext> m_context;
};

/// Begins a path of a rectangle, in the canvas's space, with its corners rounded
/// by `radius`, limited to half of its shorter side. No area, no path.
void roundedRectanglePath(cairo_t* context, const Rect& rect, double radius);

} // namespace tavi
