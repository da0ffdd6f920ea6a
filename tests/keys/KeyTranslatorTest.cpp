#include "keys/KeyTranslator.h"

#include "support/RunningKeys.h"

#include <gmock/gmock.h>

#include <linux/input-event-codes.h>

namespace tavi {
namespace {

using test::kCommand;
using test::kControl;
using test::kOption;
using test::kShift;
using test::line;

/// A translator with a layout, and the lines of what is typed on it.
class Keyboard {
public:
    explicit Keyboard(const char* layout, const char* variant = "") : m_translator(*m_context) {
        const xkb_rule_names names{"evdev", "pc105", layout, variant, ""};
        XkbHandle<xkb_keymap> keymap(
            xkb_keymap_new_from_names(m_context.get(), &names, XKB_KEYMAP_COMPILE_NO_FLAGS));
        XkbHandle<xkb_state> state(xkb_state_new(keymap.get()));
        m_translator.setKeymap(std::move(keymap), std::move(state));
    }

    KeyTranslator& translator() { return m_translator; }

    /// Presses all, each while those before are held, and lets them go. What the last one printed.
    std::string press(const std::vector<unsigned>& keys) {
        std::optional<std::string> printed;
        for (const unsigned key : keys) {
            printed = m_translator.keyLineOf(key + 8, 7);
            m_translator.keyWentDown(key + 8);
        }
        for (const unsigned key : keys) {
            m_translator.keyWentUp(key + 8);
        }
        const auto parsed = printed ? parseKeyLine(*printed) : std::nullopt;
        return parsed ? line(parsed->character, parsed->modifiers.value_or(99)) : "";
    }

private:
    test::Environment m_locale{{{"LC_ALL", "en_US.UTF-8"}}};
    XkbHandle<xkb_context> m_context{xkb_context_new(XKB_CONTEXT_NO_FLAGS)};
    KeyTranslator m_translator;
};

struct PressCase {
    const char* layout;
    const char* variant;
    std::vector<unsigned> keys;
    std::string line;
};

class Press : public testing::TestWithParam<PressCase> {};

TEST_P(Press, givesItsLine) {
    Keyboard keyboard(GetParam().layout, GetParam().variant);
    EXPECT_EQ(keyboard.press(GetParam().keys), GetParam().line);
}

INSTANTIATE_TEST_SUITE_P(
    Layouts, Press,
    testing::Values(
        PressCase{"us", "", {KEY_Y}, line("y", 0)}, PressCase{"de", "", {KEY_Y}, line("z", 0)},
        PressCase{"de", "", {KEY_APOSTROPHE}, line("ä", 0)},
        PressCase{"de", "", {KEY_LEFTSHIFT, KEY_MINUS}, line("?", kShift)},
        PressCase{"de", "", {KEY_RIGHTALT, KEY_Q}, line("@", 0)}, // the third level is no Option
        PressCase{"de", "", {KEY_LEFTCTRL, KEY_Z}, line("y", kControl)},
        PressCase{"fr", "", {KEY_Q}, line("a", 0)}, PressCase{"fr", "", {KEY_2}, line("é", 0)},
        PressCase{"fr", "", {KEY_LEFTSHIFT, KEY_2}, line("2", kShift)},
        PressCase{"gr", "", {KEY_C}, line("ψ", 0)},
        PressCase{"gr", "", {KEY_LEFTCTRL, KEY_C}, line("ψ", kControl)}, // it has no Latin letters
        PressCase{"gr,us", "", {KEY_LEFTCTRL, KEY_C}, line("c", kControl)},
        PressCase{"gr,us", "", {KEY_LEFTMETA, KEY_LEFTSHIFT, KEY_C}, line("C", kCommand | kShift)},
        PressCase{"ru,us", "", {KEY_LEFTALT, KEY_C}, line("с", kOption)},
        PressCase{"us", "intl", {KEY_APOSTROPHE}, ""}));

INSTANTIATE_TEST_SUITE_P(
    Modifiers, Press,
    testing::Values(PressCase{"us", "", {KEY_LEFTCTRL, KEY_A}, line("a", kControl)},
                    PressCase{"us", "", {KEY_RIGHTCTRL, KEY_A}, line("a", kControl)},
                    PressCase{"us", "", {KEY_LEFTALT, KEY_A}, line("a", kOption)},
                    PressCase{"us", "", {KEY_RIGHTALT, KEY_A}, line("a", kOption)},
                    PressCase{"us", "", {KEY_LEFTSHIFT, KEY_A}, line("A", kShift)},
                    PressCase{"us", "", {KEY_RIGHTSHIFT, KEY_A}, line("A", kShift)},
                    PressCase{"us", "", {KEY_LEFTMETA, KEY_A}, line("a", kCommand)},
                    PressCase{"us", "", {KEY_RIGHTMETA, KEY_A}, line("a", kCommand)},
                    PressCase{"us",
                              "",
                              {KEY_LEFTCTRL, KEY_LEFTALT, KEY_LEFTSHIFT, KEY_LEFTMETA, KEY_A},
                              line("A", kControl | kOption | kShift | kCommand)},
                    PressCase{"us", "", {KEY_LEFTCTRL}, ""},
                    PressCase{"us", "", {KEY_RIGHTMETA}, ""},
                    PressCase{"us", "", {KEY_CAPSLOCK}, ""},
                    PressCase{"us", "", {KEY_NUMLOCK}, ""}));

INSTANTIATE_TEST_SUITE_P(
    NamedKeys, Press,
    testing::Values(PressCase{"us", "", {KEY_ENTER}, line("Return", 0)},
                    PressCase{"us", "", {KEY_KPENTER}, line("Return", 0)},
                    PressCase{"us", "", {KEY_LEFTSHIFT, KEY_TAB}, line("Tab", kShift)},
                    PressCase{"us", "", {KEY_SPACE}, line("Space", 0)},
                    PressCase{"us", "", {KEY_BACKSPACE}, line("Delete", 0)},
                    PressCase{"us", "", {KEY_DELETE}, line("ForwardDelete", 0)},
                    PressCase{"us", "", {KEY_ESC}, line("Escape", 0)},
                    PressCase{"us", "", {KEY_UP}, line("↑", 0)},
                    PressCase{"us", "", {KEY_F12}, line("F12", 0)},
                    PressCase{"us", "", {KEY_VOLUMEUP}, ""}, PressCase{"us", "", {KEY_MUTE}, ""},
                    PressCase{"us", "", {KEY_PLAYPAUSE}, ""},
                    PressCase{"us", "", {KEY_POWER}, ""}));

TEST(KeyTranslator, deadKeyAndLetterGiveOneCharacter) {
    Keyboard keyboard("us", "intl");
    EXPECT_EQ(keyboard.press({KEY_APOSTROPHE}), "");
    EXPECT_EQ(keyboard.press({KEY_E}), "é 0");
    EXPECT_EQ(keyboard.press({KEY_E}), "e 0");
}

TEST(KeyTranslator, deadKeyAndAKeyThatDoesNotFitGiveThatKey) {
    Keyboard keyboard("us", "intl");
    EXPECT_EQ(keyboard.press({KEY_APOSTROPHE}), "");
    EXPECT_EQ(keyboard.press({KEY_ESC}), "Escape 0");
    EXPECT_EQ(keyboard.press({KEY_E}), "e 0");
}

TEST(KeyTranslator, capsLockAffectsLettersOnly) {
    Keyboard keyboard("us");
    keyboard.translator().lock(true, false);
    EXPECT_EQ(keyboard.press({KEY_A}), "A 0");
    EXPECT_EQ(keyboard.press({KEY_5}), "5 0");
    EXPECT_EQ(keyboard.press({KEY_LEFTSHIFT, KEY_A}), line("a", kShift));
    EXPECT_EQ(keyboard.press({KEY_CAPSLOCK}), "");
    EXPECT_EQ(keyboard.press({KEY_A}), "a 0");
}

TEST(KeyTranslator, numLockDecidesWhatTheKeypadTypes) {
    Keyboard keyboard("us");
    EXPECT_EQ(keyboard.press({KEY_KP4}), "← 0");
    EXPECT_EQ(keyboard.press({KEY_KPDOT}), "ForwardDelete 0");
    keyboard.translator().lock(false, true);
    EXPECT_EQ(keyboard.press({KEY_KP4}), "4 0");
    EXPECT_EQ(keyboard.press({KEY_KPDOT}), ". 0");
}

} // namespace
} // namespace tavi
