#include "cursor/PreviewPictures.h"

#include "cursor/AlphaBlur.h"
#include "cursor/CairoCanvas.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace tavi {

namespace {

constexpr double kLargestPicture = 2048; ///< Pixels a side; larger ones can't be seen whole.

constexpr double kDiscAlpha = 0.9;
constexpr double kShadowAlpha = 0.4;
constexpr double kShadowSigma = 1.5; ///< Pixels.
constexpr int kShadowMargin = 5;     ///< Pixels around the disc; beyond, nothing is seen.

constexpr double kRingGrowth = 1.5; ///< Of its diameter, over its life.
constexpr double kRingAlpha = 0.4;
constexpr double kRimAlpha = 0.8; ///< Of the fill's.

/// A square picture of whole pixels that holds `size` and a margin on each side.
std::shared_ptr<PixelBuffer> squarePicture(double size, double margin) {
    const double side = std::min(std::ceil(size) + 2 * std::ceil(margin), kLargestPicture);
    const int pixels = size > 0 ? static_cast<int>(side) : 0;
    return std::make_shared<PixelBuffer>(pixels, pixels);
}

void circlePath(cairo_t* context, double middle, double diameter) {
    cairo_new_path(context);
    cairo_arc(context, middle, middle, diameter / 2, 0, 2 * std::numbers::pi);
    cairo_close_path(context);
}

void fillWhite(const CairoCanvas& canvas, double alpha) {
    cairo_set_source_rgba(canvas.context(), 1, 1, 1, alpha);
    cairo_fill_preserve(canvas.context());
}

void putShadowUnder(PixelBuffer& image) {
    AlphaPicture alpha(image.width(), image.height());
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            alpha.at(x, y) = image.row(y)[x * 4 + 3];
        }
    }
    alpha = gaussianBlurred(alpha, kShadowSigma);
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            std::uint8_t& a = image.row(y)[x * 4 + 3];
            const double shadow = alpha.at(x, y) * kShadowAlpha / kDiscAlpha;
            a = static_cast<std::uint8_t>(std::lround(a + shadow * (255 - a) / 255));
        }
    }
}

} // namespace

PixelBufferPtr previewCircleImage(double diameter) {
    auto image = squarePicture(diameter, kShadowMargin);
    if (image->empty()) {
        return image;
    }
    {
        const CairoCanvas canvas(*image);
        circlePath(canvas.context(), image->width() / 2.0, diameter);
        fillWhite(canvas, kDiscAlpha);
    }
    putShadowUnder(*image);
    return image;
}

PlacedPicture previewRingImage(Point middle, double progress, double diameter, double rim) {
    const double size = (progress * kRingGrowth + 1.0) * diameter;
    auto image = squarePicture(size, rim);
    const double half = image->width() / 2.0;
    if (!image->empty()) {
        const double alpha = (1 - progress) * kRingAlpha;
        const CairoCanvas canvas(*image);
        circlePath(canvas.context(), half, size);
        fillWhite(canvas, alpha);
        cairo_set_source_rgba(canvas.context(), 1, 1, 1, alpha * kRimAlpha);
        cairo_set_line_width(canvas.context(), rim);
        cairo_stroke(canvas.context());
    }
    return {image, {middle.x - half, middle.y - half}};
}

} // namespace tavi
