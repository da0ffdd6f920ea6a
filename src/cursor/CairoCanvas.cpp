#include "cursor/CairoCanvas.h"

#include <algorithm>
#include <numbers>

namespace tavi {

namespace {

cairo_surface_t* surfaceOn(std::uint8_t* data, const PixelBuffer& image) {
    return cairo_image_surface_create_for_data(data, CAIRO_FORMAT_ARGB32, image.width(),
                                               image.height(), static_cast<int>(image.stride()));
}

} // namespace

CairoCanvas::CairoCanvas(PixelBuffer& image)
    : m_surface(surfaceOn(image.data(), image)),
      m_context(cairo_create(m_surface.get())) {}

bool CairoCanvas::isValid() const {
    return cairo_status(m_context.get()) == CAIRO_STATUS_SUCCESS;
}

void CairoCanvas::drawScaled(const PixelBuffer& picture, double width, double height) {
    if (picture.empty()) {
        return;
    }
    // Cairo takes no const pixels; a source surface is only read.
    const std::unique_ptr<cairo_surface_t, DestroySurface> source(
        surfaceOn(const_cast<std::uint8_t*>(picture.data()), picture));
    cairo_t* context = m_context.get();
    cairo_save(context);
    cairo_scale(context, width / picture.width(), height / picture.height());
    cairo_set_source_surface(context, source.get(), 0, 0);
    cairo_pattern_set_filter(cairo_get_source(context), CAIRO_FILTER_BEST);
    cairo_pattern_set_extend(cairo_get_source(context), CAIRO_EXTEND_PAD);
    cairo_rectangle(context, 0, 0, picture.width(), picture.height());
    cairo_fill(context);
    cairo_restore(context);
}

void roundedRectanglePath(cairo_t* context, const Rect& rect, double radius) {
    constexpr double kQuarter = std::numbers::pi / 2;
    cairo_new_path(context);
    if (!(rect.width > 0) || !(rect.height > 0)) {
        return;
    }
    const double r = std::min(radius, std::min(rect.width, rect.height) / 2);
    if (!(r > 0)) {
        cairo_rectangle(context, rect.x, rect.y, rect.width, rect.height);
        return;
    }
    cairo_arc(context, rect.maxX() - r, rect.y + r, r, -kQuarter, 0);
    cairo_arc(context, rect.maxX() - r, rect.maxY() - r, r, 0, kQuarter);
    cairo_arc(context, rect.x + r, rect.maxY() - r, r, kQuarter, 2 * kQuarter);
    cairo_arc(context, rect.x + r, rect.y + r, r, 2 * kQuarter, 3 * kQuarter);
    cairo_close_path(context);
}

} // namespace tavi
