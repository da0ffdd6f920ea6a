#include "cursor/CairoCanvas.h"

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

} // namespace tavi
