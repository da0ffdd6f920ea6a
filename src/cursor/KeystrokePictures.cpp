#include "cursor/KeystrokePictures.h"

#include "cursor/AlphaBlur.h"
#include "cursor/CairoCanvas.h"

#include <algorithm>
#include <cmath>
#include <cstring>

namespace tavi {

namespace {

constexpr int kLargestSide = 16384; ///< Pixels; no output is larger.

// The pill. Lengths are in units of the overlay's scale, line widths in pixels.
constexpr double kPillAlpha = 0.45;
constexpr double kPillRimAlpha = 0.1;
constexpr double kRimWidth = 0.5;
constexpr double kShadowAlpha = 0.3;
constexpr double kShadowDrop = 4;
constexpr double kShadowBlur = 12;
constexpr double kDeviationsPerBlur = 0.5; ///< A blur of 2 has the standard deviation 1.
constexpr double kShadowReach = 4;         ///< Deviations that a shadow is drawn to each side.

// A chip; white of these alphas times the chip's opacity.
constexpr double kChipRadius = 4.5;
constexpr double kChipAlpha = 0.1;
constexpr double kHighlightAlpha = 0.05;
constexpr double kChipRimAlpha = 0.12;
constexpr double kModifierAlpha = 0.55;
constexpr double kLabelAlpha = 0.92;

/// A rectangle of the layout in a picture of that height, rows from the top.
Rect fromTop(const Rect& rect, int height) {
    return {rect.x, height - rect.maxY(), rect.width, rect.height};
}

void setWhite(cairo_t* context, double alpha) {
    cairo_set_source_rgba(context, 1, 1, 1, alpha);
}

void fillPill(PixelBuffer& image, const Rect& pill) {
    const CairoCanvas canvas(image);
    roundedRectanglePath(canvas.context(), pill, pill.height / 2);
    cairo_set_source_rgba(canvas.context(), 0, 0, 0, kPillAlpha);
    cairo_fill(canvas.context());
}

void strokePill(PixelBuffer& image, const Rect& pill) {
    const CairoCanvas canvas(image);
    roundedRectanglePath(canvas.context(), pill, pill.height / 2);
    setWhite(canvas.context(), kPillRimAlpha);
    cairo_set_line_width(canvas.context(), kRimWidth);
    cairo_stroke(canvas.context());
}

/// Puts the shadow of a filled pill under it. The pill alone is blurred, in a
/// picture that holds it and all that its shadow reaches.
void addPillShadow(PixelBuffer& image, const Rect& pill, double scale) {
    const double sigma = kShadowBlur * scale * kDeviationsPerBlur;
    const int reach = static_cast<int>(std::ceil(kShadowReach * sigma));
    const int left = std::max(static_cast<int>(std::floor(pill.x)) - reach, -reach);
    const int right = std::min(static_cast<int>(std::ceil(pill.maxX())), image.width()) + reach;
    const int top = static_cast<int>(std::floor(pill.y)) - reach;
    const int bottom = static_cast<int>(std::ceil(pill.maxY())) + reach;
    PixelBuffer cast(right - left, bottom - top);
    const double drop = kShadowDrop * scale; // between pixels, too
    fillPill(cast, {pill.x - left, pill.y - top + drop, pill.width, pill.height});
    AlphaPicture alpha(cast.width(), cast.height());
    for (int y = 0; y < cast.height(); ++y) {
        for (int x = 0; x < cast.width(); ++x) {
            alpha.at(x, y) = cast.row(y)[x * 4 + 3];
        }
    }
    alpha = gaussianBlurred(alpha, sigma);
    for (int y = std::max(top, 0); y < std::min(bottom, image.height()); ++y) {
        for (int x = std::max(left, 0); x < std::min(right, image.width()); ++x) {
            std::uint8_t& a = image.row(y)[x * 4 + 3];
            const double shadow = alpha.at(x - left, y - top) * kShadowAlpha;
            a = static_cast<std::uint8_t>(std::lround(a + shadow * (255 - a) / 255));
        }
    }
}

std::shared_ptr<PixelBuffer> copyOf(const PixelBuffer& picture) {
    auto copy = std::make_shared<PixelBuffer>(picture.width(), picture.height());
    std::memcpy(copy->data(), picture.data(),
                picture.stride() * static_cast<std::size_t>(picture.height()));
    return copy;
}

bool isDrawable(const KeystrokeLayout& layout) {
    const auto isSide = [](int side) { return side > 0 && side <= kLargestSide; };
    return isSide(layout.bitmapWidth) && isSide(layout.bitmapHeight) &&
           std::isfinite(layout.pill.x) && std::isfinite(layout.pill.width);
}

} // namespace

PixelBufferPtr KeystrokePictures::keystrokeOverlayImage(const CursorRenderer& renderer, double time,
                                                        Size output) {
    const CursorSettings& settings = renderer.settings;
    if (!settings.showKeystrokes) {
        return nullptr;
    }
    const double lifetime = settings.keystrokeDisplayDuration;
    Shown shown{visibleKeystrokes(renderer.recentKeyPresses(time), time, lifetime),
                {},
                output,
                settings.keystrokeSize};
    if (shown.keystrokes.empty()) {
        return nullptr;
    }
    for (const VisibleKeystroke& keystroke : shown.keystrokes) {
        shown.opacities.push_back(keystrokeOpacity(time - keystroke.timestamp, lifetime));
    }
    if (m_image && shown == m_shown) {
        return m_image;
    }
    const auto overlay = layout(renderer, time, output);
    if (!overlay || !isDrawable(*overlay)) {
        return nullptr;
    }
    const KeystrokeMetrics metrics(output.width, settings.keystrokeSize);
    const auto image = copyOf(pillPicture(*overlay, metrics.scale));
    const CairoCanvas canvas(*image);
    for (std::size_t i = 0; i < overlay->chips.size(); ++i) {
        drawChip(canvas.context(), overlay->chips[i],
                 fromTop(overlay->chipRects[i], image->height()), metrics);
    }
    m_shown = std::move(shown);
    m_image = image;
    return m_image;
}

std::optional<KeystrokeLayout> KeystrokePictures::layout(const CursorRenderer& renderer,
                                                         double time, Size output) {
    if (!m_text) {
        m_text.emplace();
    }
    return layoutKeystrokes(renderer.recentKeyPresses(time), time, output, renderer.settings,
                            [this](std::string_view text, KeystrokeFont font, double fontSize) {
                                return m_text->size(text, font, fontSize);
                            });
}

const PixelBuffer& KeystrokePictures::pillPicture(const KeystrokeLayout& layout, double scale) {
    const bool isKept = m_pill && m_pill->rect == layout.pill &&
                        m_pill->image.width() == layout.bitmapWidth &&
                        m_pill->image.height() == layout.bitmapHeight;
    if (!isKept) {
        m_pill = Pill{PixelBuffer(layout.bitmapWidth, layout.bitmapHeight), layout.pill};
        const Rect pill = fromTop(layout.pill, layout.bitmapHeight);
        fillPill(m_pill->image, pill);
        addPillShadow(m_pill->image, pill, scale);
        strokePill(m_pill->image, pill);
    }
    return m_pill->image;
}

void KeystrokePictures::drawChip(cairo_t* context, const ChipInfo& chip, const Rect& rect,
                                 const KeystrokeMetrics& metrics) {
    const double radius = kChipRadius * metrics.scale;
    cairo_save(context);
    roundedRectanglePath(context, rect, radius);
    setWhite(context, kChipAlpha * chip.opacity);
    cairo_fill_preserve(context);
    cairo_clip(context);
    cairo_rectangle(context, rect.x, rect.y, rect.width, rect.height / 2);
    setWhite(context, kHighlightAlpha * chip.opacity);
    cairo_fill(context);
    cairo_restore(context);
    roundedRectanglePath(context, rect, radius);
    setWhite(context, kChipRimAlpha * chip.opacity);
    cairo_set_line_width(context, kRimWidth);
    cairo_stroke(context);
    Point corner{rect.x + metrics.textInsetX, rect.maxY() - metrics.textInsetY};
    if (!chip.modSymbols.empty()) {
        m_text->draw(context, chip.modSymbols, KeystrokeFont::modifiers, metrics.modifierFontSize,
                     corner, kModifierAlpha * chip.opacity);
        corner.x += chip.modSize.width + metrics.modifierSpacing;
    }
    m_text->draw(context, chip.charLabel, KeystrokeFont::label, metrics.labelFontSize, corner,
                 kLabelAlpha * chip.opacity);
}

} // namespace tavi
