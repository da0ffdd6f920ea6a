#include "cursor/KeystrokePictures.h"

#include "support/Pictures.h"

#include <gtest/gtest.h>

#include <cmath>

namespace tavi {
namespace {

using test::Pixel;
using test::pixelAt;

constexpr std::uint64_t kShift = 0x20000;
constexpr std::uint64_t kCommand = 0x100000;
constexpr Size kOutput{1920, 1080};
constexpr double kScale = 1.1; // of that width with medium chips

class KeystrokeOverlay : public testing::Test {
protected:
    KeystrokeOverlay() { settings.showKeystrokes = true; }

    void press(double time, std::string character, std::optional<std::uint64_t> modifiers = {}) {
        events.push_back(
            {time, 0, 0, CursorEventType::keyDown, 0, std::move(character), modifiers});
    }

    PixelBufferPtr overlay(double time, Size output = kOutput) {
        return pictures.keystrokeOverlayImage(CursorRenderer::make(events, 1080, settings), time,
                                              output);
    }

    /// Where the overlay's alpha exceeds a limit: left, right, and rows above the
    /// bottom edge, ends excluded.
    struct Extent {
        int left = 1 << 20;
        int right = 0;
        int bottom = 1 << 20;
        int top = 0;
    };
    static Extent extent(const PixelBuffer& image, int alpha) {
        Extent e;
        for (int y = 0; y < image.height(); ++y) {
            for (int x = 0; x < image.width(); ++x) {
                if (pixelAt(image, x, y).alpha > alpha) {
                    const int row = image.height() - 1 - y;
                    e = {std::min(e.left, x), std::max(e.right, x + 1), std::min(e.bottom, row),
                         std::max(e.top, row + 1)};
                }
            }
        }
        return e;
    }

    /// The brightest pixel of a stretch of columns, which is text where there is any.
    static int brightest(const PixelBuffer& image, double left, double right) {
        int blue = 0;
        for (int y = 0; y < image.height(); ++y) {
            for (int x = static_cast<int>(left); x < static_cast<int>(right); ++x) {
                blue = std::max(blue, pixelAt(image, x, y).blue);
            }
        }
        return blue;
    }

    std::optional<KeystrokeLayout> layout(double time) const {
        KeystrokeText text;
        return layoutKeystrokes(events, time, kOutput, settings,
                                [&](std::string_view string, KeystrokeFont font, double size) {
                                    return text.size(string, font, size);
                                });
    }

    std::vector<CursorEvent> events;
    CursorSettings settings;
    KeystrokePictures pictures;
};

TEST_F(KeystrokeOverlay, isAbsentWhenSwitchedOffOrNothingIsVisible) {
    EXPECT_FALSE(overlay(1));
    press(1, "a");
    EXPECT_FALSE(overlay(0.99));
    EXPECT_TRUE(overlay(1));
    EXPECT_TRUE(overlay(3.5)); // a chip of its full age is there, at opacity 0
    EXPECT_FALSE(overlay(3.51));
    settings.showKeystrokes = false;
    EXPECT_FALSE(overlay(1));
}

TEST_F(KeystrokeOverlay, isAsWideAsTheOutputAndHoldsPillAndMargin) {
    press(1, "a");
    const PixelBufferPtr image = overlay(1);
    EXPECT_EQ(image->width(), 1920);
    EXPECT_EQ(image->height(), std::ceil(8 * kScale + 43.2 + (14 + 8 + 12) * kScale));
}

TEST_F(KeystrokeOverlay, thePillStandsInTheMiddleFourPercentAboveTheBottom) {
    press(1, "a");
    press(1.1, "Return", kCommand);
    const PixelBufferPtr image = overlay(2);
    const Rect pill = layout(2)->pill;
    const Extent e = extent(*image, 100); // its fill is 115, its shadow 34 at most
    EXPECT_NEAR(e.left, pill.x, 1.5);
    EXPECT_NEAR(e.right, pill.maxX(), 1.5);
    EXPECT_NEAR(e.left + e.right, 1920, 1);
    EXPECT_NEAR(e.bottom, 1080 * 0.04, 1);
    EXPECT_NEAR(e.top, 1080 * 0.04 + (14 + 8 + 12) * kScale, 1);
}

TEST_F(KeystrokeOverlay, thePillIsDarkAndThrowsASoftShadowDownwards) {
    press(0, "Space");
    const PixelBufferPtr image = overlay(2.5); // the chip has faded away
    const Rect pill = layout(2.5)->pill;
    const auto at = [&](double x, double yUp) {
        return pixelAt(*image, static_cast<int>(x), image->height() - 1 - static_cast<int>(yUp));
    };
    const double middle = pill.center().x;
    const Pixel inside = at(middle, pill.center().y);
    EXPECT_EQ(inside.blue, 0);
    // 0.45 over a shadow of at most 0.45 * 0.3, which the blur thins out.
    EXPECT_GT(inside.alpha, 255 * 0.45 + 5);
    EXPECT_LE(inside.alpha, 255 * (0.45 + 0.55 * 0.45 * 0.3) + 1);
    EXPECT_GT(at(middle, pill.y - 6).alpha, at(middle, pill.maxY() + 6).alpha + 3);
    EXPECT_GT(at(middle, pill.y - 6).alpha, at(middle, pill.y - 16).alpha + 3);
    EXPECT_EQ(at(middle, pill.y - 16).blue, 0);
    EXPECT_EQ(at(20, pill.center().y).alpha, 0);
}

TEST_F(KeystrokeOverlay, aChipHasALighterUpperHalf) {
    press(1, ",");
    const PixelBufferPtr image = overlay(1);
    const Rect chip = layout(1)->chipRects.front();
    const int x = static_cast<int>(chip.x + 4); // left of the text
    const auto row = [&](double part) {
        return image->height() - 1 - static_cast<int>(chip.y + chip.height * part);
    };
    const int lower = pixelAt(*image, x, row(0.3)).blue;
    const int upper = pixelAt(*image, x, row(0.7)).blue;
    EXPECT_NEAR(lower, 255 * 0.1, 1);
    EXPECT_NEAR(upper, 255 * (0.1 + 0.9 * 0.05), 1);
}

TEST_F(KeystrokeOverlay, modifiersAreDimmerThanTheLabel) {
    press(1, "h", kCommand);
    const PixelBufferPtr image = overlay(1);
    const auto overlayLayout = layout(1);
    const ChipInfo& chip = overlayLayout->chips.front();
    const double text = overlayLayout->chipRects.front().x + 8 * kScale;
    const double label = text + chip.modSize.width + 2 * kScale;
    EXPECT_GT(brightest(*image, label, label + chip.charSize.width), 255 * 0.85);
    const int modifiers = brightest(*image, text, text + chip.modSize.width);
    EXPECT_LT(modifiers, 255 * 0.65);
    EXPECT_GT(modifiers, 255 * 0.3);
}

TEST_F(KeystrokeOverlay, aChipFadesInItsLastQuarterAndThePillDoesNot) {
    press(1, "h");
    const double left = layout(1)->chipRects.front().x;
    const double right = layout(1)->chipRects.front().maxX();
    const int full = brightest(*overlay(1), left, right);
    EXPECT_EQ(brightest(*overlay(2.8), left, right), full);
    EXPECT_NEAR(brightest(*overlay(1 + 2.5 * 0.875), left, right), full * 0.75, 10);
    EXPECT_LE(brightest(*overlay(3.5), left, right), 14); // the pill's own rim
    EXPECT_NEAR(extent(*overlay(3.5), 100).left, layout(1)->pill.x, 1.5);
}

TEST_F(KeystrokeOverlay, isKeptWhileNothingChanges) {
    press(1, "a");
    press(1.5, "b");
    const PixelBufferPtr image = overlay(1.6);
    EXPECT_EQ(overlay(2.0), image);
    EXPECT_NE(overlay(1.4), image); // one chip
    EXPECT_NE(overlay(3.2), image); // the first one fades
    EXPECT_NE(overlay(2.0, {1280, 720}), image);
    settings.keystrokeSize = KeystrokeSize::small;
    EXPECT_LT(overlay(2.0)->height(), image->height());
}

TEST_F(KeystrokeOverlay, isTheSameWhateverWasDrawnBefore) {
    press(1, "a", kShift);
    press(1.5, "Tab");
    overlay(1.2);
    overlay(3.3, {640, 360});
    const PixelBufferPtr after = overlay(3.3);
    KeystrokePictures fresh;
    const PixelBufferPtr first =
        fresh.keystrokeOverlayImage(CursorRenderer::make(events, 1080, settings), 3.3, kOutput);
    EXPECT_EQ(test::largestDifference(*after, *first), 0);
}

TEST_F(KeystrokeOverlay, aPillWiderThanTheOutputIsCutOff) {
    for (int i = 0; i < 25; ++i) {
        press(1, "ForwardDelete", kShift | kCommand);
    }
    settings.keystrokeSize = KeystrokeSize::large;
    const PixelBufferPtr image = overlay(1, {300, 1080});
    ASSERT_TRUE(image);
    EXPECT_EQ(extent(*image, 100).left, 0);
    EXPECT_EQ(extent(*image, 100).right, 300);
}

TEST_F(KeystrokeOverlay, oddSizesAndDurationsGiveNothingOrAPicture) {
    press(1, "a");
    for (const Size output : {Size{0, 0}, {-5, 100}, {1e15, 1e15}, {std::nan(""), 100}}) {
        EXPECT_FALSE(overlay(1, output)) << output.width;
    }
    EXPECT_EQ(overlay(1, {2, 2})->width(), 2);
    settings.keystrokeDisplayDuration = 0;
    EXPECT_TRUE(overlay(1));
    for (const double duration : {-1.0, std::nan("")}) {
        settings.keystrokeDisplayDuration = duration;
        EXPECT_FALSE(overlay(1));
    }
}

// Text.

TEST(KeystrokeText, everySymbolOfAChipHasAGlyph) {
    KeystrokeText text;
    for (const std::string_view symbol :
         {"⌃", "⌥", "⇧", "⌘", "↩", "⇥", "␣", "⌫", "⌦", "⎋", "←", "→", "↑", "↓", "⌃⌥⇧⌘"}) {
        EXPECT_EQ(text.missingGlyphs(symbol, KeystrokeFont::label, 15), 0) << symbol;
        EXPECT_EQ(text.missingGlyphs(symbol, KeystrokeFont::modifiers, 13), 0) << symbol;
    }
}

TEST(KeystrokeText, whatNoFontCanShowIsLeftOut) {
    KeystrokeText text;
    const std::string unassigned = "\U0010FFFD"; // of a private plane
    ASSERT_GT(text.missingGlyphs(unassigned, KeystrokeFont::label, 15), 0);
    EXPECT_EQ(text.showable("A" + unassigned + "É", KeystrokeFont::label, 15), "AÉ");
    EXPECT_EQ(text.showable(unassigned, KeystrokeFont::label, 15), "•");
    EXPECT_EQ(text.missingGlyphs("•", KeystrokeFont::label, 15), 0);
    EXPECT_EQ(text.size("A" + unassigned, KeystrokeFont::label, 15),
              text.size("A", KeystrokeFont::label, 15));
}

TEST(KeystrokeText, sizesGrowWithTextAndFontAndHaveTheHeightOfTheFont) {
    KeystrokeText text;
    const Size one = text.size("H", KeystrokeFont::label, 20);
    EXPECT_GT(one.width, 20 * 0.5);
    EXPECT_LT(one.width, 20);
    EXPECT_NEAR(text.size("HHHH", KeystrokeFont::label, 20).width, 4 * one.width, 2);
    EXPECT_NEAR(text.size("H", KeystrokeFont::label, 40).width, 2 * one.width, 2);
    EXPECT_EQ(text.size(",", KeystrokeFont::label, 20).height, one.height);
    EXPECT_NEAR(one.height, 20 * 1.2, 4);
}

TEST(KeystrokeText, isOneLineWhateverItHolds) {
    KeystrokeText text;
    EXPECT_EQ(text.size("A\nB", KeystrokeFont::label, 20).height,
              text.size("A", KeystrokeFont::label, 20).height);
    EXPECT_EQ(text.size("", KeystrokeFont::label, 20).width, 0);
}

} // namespace
} // namespace tavi
