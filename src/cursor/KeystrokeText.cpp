#include "cursor/KeystrokeText.h"

#include <pango/pangocairo.h>

#include <algorithm>
#include <array>
#include <cmath>

namespace tavi {

namespace {

constexpr const char* kFamilies = "Inter, DejaVu Sans, sans-serif";
constexpr const char* kNothingShowable = "•";

/// Far above any font size in use; keeps Pango's fixed-point numbers in range.
constexpr double kLargestFontSize = 4096;

struct Unreference {
    void operator()(gpointer object) const { g_object_unref(object); }
};

struct FreeDescription {
    void operator()(PangoFontDescription* font) const { pango_font_description_free(font); }
};

struct FreeMetrics {
    void operator()(PangoFontMetrics* metrics) const { pango_font_metrics_unref(metrics); }
};

using LayoutPtr = std::unique_ptr<PangoLayout, Unreference>;
using DescriptionPtr = std::unique_ptr<PangoFontDescription, FreeDescription>;

DescriptionPtr describe(KeystrokeFont font, double fontSize) {
    DescriptionPtr description(pango_font_description_new());
    pango_font_description_set_family_static(description.get(), kFamilies);
    pango_font_description_set_weight(description.get(), font == KeystrokeFont::label
                                                             ? PANGO_WEIGHT_SEMIBOLD
                                                             : PANGO_WEIGHT_MEDIUM);
    const double size = fontSize > 0 ? std::min(fontSize, kLargestFontSize) : 0;
    pango_font_description_set_absolute_size(description.get(), size * PANGO_SCALE);
    return description;
}

double pixels(int pangoUnits) {
    return static_cast<double>(pangoUnits) / PANGO_SCALE;
}

/// How far a font's lines reach, in pixels.
struct LineHeight {
    double fontSize = 0;
    double ascent = 0;
    double descent = 0;
};

/// Where the next character of UTF-8 text begins.
std::size_t afterCharacter(std::string_view text, std::size_t at) {
    do {
        ++at;
    } while (at < text.size() && (static_cast<unsigned char>(text[at]) & 0xC0) == 0x80);
    return at;
}

} // namespace

/// Fonts of its own, so that neither another thread nor the desktop's settings
/// matter, with smoothing that suits transparent pictures.
struct KeystrokeText::Fonts {
    Fonts() : map(pango_cairo_font_map_new()), context(pango_font_map_create_context(map.get())) {
        cairo_font_options_t* options = cairo_font_options_create();
        cairo_font_options_set_antialias(options, CAIRO_ANTIALIAS_GRAY);
        cairo_font_options_set_hint_style(options, CAIRO_HINT_STYLE_SLIGHT);
        cairo_font_options_set_hint_metrics(options, CAIRO_HINT_METRICS_OFF);
        pango_cairo_context_set_font_options(context.get(), options);
        cairo_font_options_destroy(options);
        pango_cairo_context_set_resolution(context.get(), 72);
        pango_context_set_language(context.get(), pango_language_from_string("en"));
    }

    LayoutPtr layout(std::string_view text, KeystrokeFont font, double fontSize) const {
        LayoutPtr layout(pango_layout_new(context.get()));
        pango_layout_set_font_description(layout.get(), describe(font, fontSize).get());
        pango_layout_set_single_paragraph_mode(layout.get(), TRUE);
        pango_layout_set_text(layout.get(), text.data(), static_cast<int>(text.size()));
        return layout;
    }

    /// The same of what can be shown of the text.
    LayoutPtr showableLayout(std::string_view text, KeystrokeFont font, double fontSize) const {
        LayoutPtr whole = layout(text, font, fontSize);
        return pango_layout_get_unknown_glyphs_count(whole.get()) == 0
                   ? std::move(whole)
                   : layout(showable(text, font, fontSize), font, fontSize);
    }

    std::string showable(std::string_view text, KeystrokeFont font, double fontSize) const {
        std::string kept;
        for (std::size_t at = 0; at < text.size();) {
            const std::size_t next = afterCharacter(text, at);
            const std::string_view character = text.substr(at, next - at);
            if (pango_layout_get_unknown_glyphs_count(layout(character, font, fontSize).get()) ==
                0) {
                kept += character;
            }
            at = next;
        }
        return kept.empty() ? kNothingShowable : kept;
    }

    /// Asking Pango costs more than laying a chip's text out; it is asked once a size.
    const LineHeight& lineHeight(KeystrokeFont font, double fontSize) {
        LineHeight& kept = lineHeights[static_cast<std::size_t>(font)];
        if (kept.fontSize != fontSize) {
            const std::unique_ptr<PangoFontMetrics, FreeMetrics> metrics(
                pango_context_get_metrics(context.get(), describe(font, fontSize).get(), nullptr));
            kept = {fontSize, pixels(pango_font_metrics_get_ascent(metrics.get())),
                    pixels(pango_font_metrics_get_descent(metrics.get()))};
        }
        return kept;
    }

    std::unique_ptr<PangoFontMap, Unreference> map;
    std::unique_ptr<PangoContext, Unreference> context;
    std::array<LineHeight, 2> lineHeights; ///< Of each font's last size.
};

KeystrokeText::KeystrokeText() : m_fonts(std::make_unique<Fonts>()) {}

KeystrokeText::~KeystrokeText() = default;

int KeystrokeText::missingGlyphs(std::string_view text, KeystrokeFont font, double fontSize) {
    return pango_layout_get_unknown_glyphs_count(m_fonts->layout(text, font, fontSize).get());
}

std::string KeystrokeText::showable(std::string_view text, KeystrokeFont font, double fontSize) {
    return text.empty() || missingGlyphs(text, font, fontSize) == 0
               ? std::string(text)
               : m_fonts->showable(text, font, fontSize);
}

Size KeystrokeText::size(std::string_view text, KeystrokeFont font, double fontSize) {
    const LayoutPtr layout = m_fonts->showableLayout(text, font, fontSize);
    int width = 0;
    pango_layout_get_size(layout.get(), &width, nullptr);
    const LineHeight& line = m_fonts->lineHeight(font, fontSize);
    return {pixels(width), line.ascent + line.descent};
}

void KeystrokeText::draw(cairo_t* context, std::string_view text, KeystrokeFont font,
                         double fontSize, Point corner, double opacity) {
    const LayoutPtr layout = m_fonts->showableLayout(text, font, fontSize);
    // The font's own descent, not that of the line: a symbol that comes from
    // another font must not lift its chip's text above the others.
    const double descent = m_fonts->lineHeight(font, fontSize).descent;
    cairo_set_source_rgba(context, 1, 1, 1, opacity);
    cairo_move_to(context, std::round(corner.x), std::round(corner.y - descent));
    pango_cairo_show_layout_line(context, pango_layout_get_line_readonly(layout.get(), 0));
    cairo_new_path(context);
}

} // namespace tavi
