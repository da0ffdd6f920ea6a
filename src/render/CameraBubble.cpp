#include "render/CameraBubble.h"

#include "cursor/CairoCanvas.h"
#include "render/Composite.h"
#include "render/GaussianBlur.h"
#include "render/RenderGeometry.h"

#include <algorithm>
#include <cmath>
#include <cstring>

namespace tavi {

namespace {

constexpr int kChannels = PixelBuffer::kBytesPerPixel;

constexpr double kShadowReach = 3; ///< Deviations that are drawn to each side of the bubble.

/// Deviations around the layer in which the bubble still matters to its shadow.
constexpr double kShadowOverhang = 4;

Rect grown(const Rect& rect, double margin) {
    return {rect.x - margin, rect.y - margin, rect.width + 2 * margin, rect.height + 2 * margin};
}

double cornerRadius(const CameraSettings& settings, const Rect& rect) {
    return std::min(settings.cornerRadius, std::min(rect.width, rect.height) / 2);
}

std::ptrdiff_t bytes(int pixels) {
    return static_cast<std::ptrdiff_t>(pixels) * kChannels;
}

/// A mask written out, a byte a pixel, over `bounds`.
std::vector<std::uint8_t> written(const CoverageMask& mask, const PixelBounds& bounds) {
    const std::ptrdiff_t width = bounds.width();
    std::vector<std::uint8_t> out(static_cast<std::size_t>(width) *
                                  static_cast<std::size_t>(bounds.height()));
    for (int y = mask.bounds().top; y < mask.bounds().bottom; ++y) {
        const CoverageMask::Row row = mask.row(y);
        std::uint8_t* line = out.data() + (y - bounds.top) * width - bounds.left;
        std::copy(row.left.begin(), row.left.end(), line + row.begin);
        std::fill(line + row.solidBegin, line + row.solidEnd, std::uint8_t{255});
        std::copy(row.right.begin(), row.right.end(), line + row.solidEnd);
    }
    return out;
}

/// The part of a picture, rows from the top, that fills a square.
Rect middleSquare(const PixelBuffer& image) {
    const double side = std::min(image.width(), image.height());
    return {(image.width() - side) / 2, (image.height() - side) / 2, side, side};
}

} // namespace

std::optional<Rect> cameraBubbleRect(const CameraSettings& settings, Size output) {
    const double size = settings.sizeFraction * output.width;
    const double margin = settings.marginFraction * output.width;
    const double right = output.width - size - margin;
    const double top = output.height - size - margin;
    const bool isRight = settings.position == CameraPosition::bottomRight ||
                         settings.position == CameraPosition::topRight;
    const bool isTop = settings.position == CameraPosition::topRight ||
                       settings.position == CameraPosition::topLeft;
    const Rect rect{isRight ? right : margin, isTop ? top : margin, size, size};
    return hasArea(rect) ? std::optional(rect) : std::nullopt;
}

CameraBubble::CameraBubble(const CameraSettings& settings, Size output, CameraBubbleShadow shadow)
    : m_settings(settings),
      m_shadowLook(shadow) {
    const auto bubble = cameraBubbleRect(settings, output);
    if (!bubble) {
        return;
    }
    m_height = static_cast<int>(std::ceil(output.height));
    const double margin =
        std::max(settings.shadowEnabled ? kShadowReach * shadow.sigma : 0.0, settings.borderWidth);
    m_bounds = touchedPixels(flipped(grown(*bubble, margin), m_height),
                             {0, 0, static_cast<int>(std::ceil(output.width)), m_height});
    if (m_bounds.empty()) {
        return;
    }
    m_bubble = toLayer(*bubble);
    const PixelBounds layer{0, 0, m_bounds.width(), m_bounds.height()};
    m_mask.assign(m_bubble, cornerRadius(settings, m_bubble), m_bubble, layer);
    m_shadow = PixelBuffer(layer.right, layer.bottom);
    m_rim = PixelBuffer(layer.right, layer.bottom);
    m_layer = PixelBuffer(layer.right, layer.bottom);
    m_row.resize(static_cast<std::size_t>(bytes(layer.right)));
    if (settings.shadowEnabled) {
        castShadow(m_bubble);
    }
    drawRim(m_bubble);
}

Rect CameraBubble::toLayer(const Rect& rect) const {
    const Rect fromTop = flipped(rect, m_height);
    return {fromTop.x - m_bounds.left, fromTop.y - m_bounds.top, rect.width, rect.height};
}

void CameraBubble::castShadow(const Rect& bubble) {
    // A bubble that hangs over the output throws its shadow back into it.
    const int overhang = static_cast<int>(std::ceil(kShadowOverhang * m_shadowLook.sigma));
    const PixelBounds around{-overhang, -overhang, m_shadow.width() + overhang,
                             m_shadow.height() + overhang};
    CoverageMask mask;
    mask.assign(bubble, cornerRadius(m_settings, bubble), bubble, around);
    const std::vector<std::uint8_t> coverage = written(mask, around);
    GaussianBlur blur;
    blur.blur({coverage.data(), around.width(), around.height(),
               static_cast<std::size_t>(around.width()), 1},
              m_shadowLook.sigma, BlurEdges::transparent);
    blur.begin();
    std::vector<std::uint8_t> alpha(static_cast<std::size_t>(m_shadow.width()));
    for (int y = 0; y < m_shadow.height(); ++y) {
        blur.writeRow(y + overhang, overhang, overhang + m_shadow.width(), alpha.data());
        for (int x = 0; x < m_shadow.width(); ++x) {
            m_shadow.row(y)[bytes(x) + 3] = static_cast<std::uint8_t>(
                std::lround(alpha[static_cast<std::size_t>(x)] * m_shadowLook.alpha));
        }
    }
}

void CameraBubble::drawRim(const Rect& bubble) {
    const double width = m_settings.borderWidth;
    const Rect rect = grown(bubble, -width / 2);
    if (!(width > 0) || !hasArea(rect)) {
        return;
    }
    // Kept on purpose: the rim's middle line has the bubble's own radius, so at
    // rounded corners (not on a disc) a wide rim leaves a sliver of picture outside.
    const CodableColor& color = m_settings.borderColor;
    const CairoCanvas canvas(m_rim);
    roundedRectanglePath(canvas.context(), rect, m_settings.cornerRadius);
    cairo_set_source_rgba(canvas.context(), color.red, color.green, color.blue, color.alpha);
    cairo_set_line_width(canvas.context(), width);
    cairo_stroke(canvas.context());
}

void CameraBubble::drawLayer(const PixelBuffer& image) {
    const PixelBounds& covered = m_mask.bounds();
    if (!covered.empty()) {
        m_resampler.begin(image, middleSquare(image), m_bubble, covered);
    }
    for (int y = 0; y < m_layer.height(); ++y) {
        std::uint8_t* out = m_layer.row(y);
        std::memcpy(out, m_shadow.row(y), static_cast<std::size_t>(bytes(m_layer.width())));
        if (!covered.empty() && y >= covered.top && y < covered.bottom) {
            const CoverageMask::Row mask = m_mask.row(y);
            m_resampler.writeRow(y, mask.begin, mask.end, m_row.data());
            const auto content = [&](int x) { return m_row.data() + bytes(x - mask.begin); };
            compositeRowOver(out + bytes(mask.begin), content(mask.begin), mask.left.data(),
                             mask.solidBegin - mask.begin);
            compositeRowOver(out + bytes(mask.solidBegin), content(mask.solidBegin),
                             mask.solidEnd - mask.solidBegin);
            compositeRowOver(out + bytes(mask.solidEnd), content(mask.solidEnd), mask.right.data(),
                             mask.end - mask.solidEnd);
        }
        compositeRowOver(out, m_rim.row(y), m_layer.width());
    }
}

void CameraBubble::draw(const PixelBufferPtr& image, ImageView out) {
    if (!image || image->empty() || m_bounds.empty()) {
        return;
    }
    if (image != m_image) {
        drawLayer(*image);
        m_image = image;
    }
    // `out` may have a row more than the output, at the top.
    const int top = m_bounds.top + out.height - m_height;
    compositeOver(out, m_layer, {static_cast<double>(m_bounds.left), static_cast<double>(top)});
}

} // namespace tavi
