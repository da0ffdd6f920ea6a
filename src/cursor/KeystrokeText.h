#pragma once

#include "base/Geometry.h"
#include "cursor/Keystrokes.h"

#include <cairo.h>

#include <memory>
#include <string>
#include <string_view>

namespace tavi {

/// Measures and draws the texts of keystroke chips in the program's sans font,
/// the same way whatever the desktop's font settings are.
///
/// What no installed font can show is left out, so that no placeholder box ever
/// appears; a text of nothing else is shown as a dot.
/// Units:   sizes in pixels; texts are UTF-8, one line.
/// Threads: one at a time.
class KeystrokeText {
public:
    KeystrokeText();
    ~KeystrokeText();
    KeystrokeText(const KeystrokeText&) = delete;
    KeystrokeText& operator=(const KeystrokeText&) = delete;

    /// The advance of a text, and the height of a line of its font.
    Size size(std::string_view text, KeystrokeFont font, double fontSize);

    /// Draws white text of the given opacity, 0..1. The line's box stands with its
    /// lower left corner on `corner` (y downwards), moved to whole pixels.
    void draw(cairo_t* context, std::string_view text, KeystrokeFont font, double fontSize,
              Point corner, double opacity);

    /// The text without what no installed font can show; see above.
    std::string showable(std::string_view text, KeystrokeFont font, double fontSize);

    /// How many characters of a text no installed font can show.
    int missingGlyphs(std::string_view text, KeystrokeFont font, double fontSize);

private:
    struct Fonts;
    std::unique_ptr<Fonts> m_fonts;
};

} // namespace tavi
