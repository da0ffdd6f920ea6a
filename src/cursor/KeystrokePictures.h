#pragma once

#include "base/PixelBuffer.h"
#include "cursor/CursorRenderer.h"
#include "cursor/KeystrokeText.h"
#include "cursor/Keystrokes.h"

#include <optional>
#include <vector>

namespace tavi {

/// Draws the keys pressed: chips on a dark pill at the bottom of the output.
///
/// Nothing is drawn anew while the chips and their opacities stay what they are,
/// and only the chips are while they fade.
/// Errors:  none. Threads: one at a time.
class KeystrokePictures {
public:
    /// The overlay of one moment: a picture of the output's full width, to be
    /// laid over the output with its lower left corner on the output's. Null where
    /// chips are switched off, none is visible, or the output has no pixels.
    ///
    /// `time` is in the time base of the renderer's events; how long a chip stays
    /// and how large it is are in the renderer's settings.
    PixelBufferPtr keystrokeOverlayImage(const CursorRenderer& renderer, double time, Size output);

private:
    /// All that a picture depends on.
    struct Shown {
        std::vector<VisibleKeystroke> keystrokes;
        std::vector<double> opacities;
        Size output;
        KeystrokeSize size = KeystrokeSize::medium;

        bool operator==(const Shown&) const = default;
    };

    /// A pill with its shadow, and the layout that it was made for.
    struct Pill {
        PixelBuffer image;
        Rect rect;
    };

    std::optional<KeystrokeLayout> layout(const CursorRenderer& renderer, double time, Size output);
    const PixelBuffer& pillPicture(const KeystrokeLayout& layout, double scale);
    void drawChip(cairo_t* context, const ChipInfo& chip, const Rect& rect,
                  const KeystrokeMetrics& metrics);

    std::optional<KeystrokeText> m_text; ///< Fonts are looked up for the first chip.
    std::optional<Pill> m_pill;
    Shown m_shown;
    PixelBufferPtr m_image; ///< Of m_shown.
};

} // namespace tavi
