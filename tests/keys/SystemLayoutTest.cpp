#include "keys/SystemLayout.h"

#include "support/RunningKeys.h"
#include "support/TemporaryFolder.h"

namespace tavi {
namespace {

constexpr const char* kDebian = "# KEYBOARD CONFIGURATION FILE\n"
                                "XKBMODEL=\"pc105\"\n"
                                "XKBLAYOUT=\"de,us\" # two\n"
                                "XKBVARIANT='nodeadkeys,'\n"
                                "XKBOPTIONS=grp:alt_shift_toggle\n"
                                "BACKSPACE=\"guess\"\n";

constexpr const char* kServer = "Section \"InputClass\"\n"
                                "        Identifier \"system-keyboard\"\n"
                                "        MatchIsKeyboard \"on\"\n"
                                "        Option \"XkbLayout\" \"fr\"\n"
                                "        option \"xkbvariant\" \"bepo\"\n"
                                "        # Option \"XkbModel\" \"apple\"\n"
                                "EndSection\n";

TEST(SystemLayout, readsAssignments) {
    EXPECT_EQ(layoutFromAssignments(kDebian),
              (KeyboardLayout{"pc105", "de,us", "nodeadkeys,", "grp:alt_shift_toggle"}));
    EXPECT_EQ(layoutFromAssignments("export XKBLAYOUT=gr"), (KeyboardLayout{"", "gr", "", ""}));
}

TEST(SystemLayout, readsTheServersOptions) {
    EXPECT_EQ(layoutFromServerConfiguration(kServer), (KeyboardLayout{"", "fr", "bepo", ""}));
}

TEST(SystemLayout, isAbsentWithoutALayout) {
    for (const char* text : {"", "XKBMODEL=pc105", "XKBLAYOUT=\"\"", "#XKBLAYOUT=de", "=", "Option",
                             "Option \"XkbLayout\"", "\"", "XKBLAYOUT"}) {
        EXPECT_FALSE(layoutFromAssignments(text)) << text;
        EXPECT_FALSE(layoutFromServerConfiguration(text)) << text;
    }
}

TEST(SystemLayout, firstFileThatNamesOneCounts) {
    const test::TemporaryFolder root;
    EXPECT_EQ(systemLayout(root.path()), KeyboardLayout{});
    test::writeFile(root / "etc/vconsole.conf", "KEYMAP=es\nXKBLAYOUT=es\n");
    EXPECT_EQ(systemLayout(root.path()).layout, "es");
    test::writeFile(root / "etc/X11/xorg.conf.d/00-keyboard.conf", kServer);
    EXPECT_EQ(systemLayout(root.path()).layout, "fr");
    test::writeFile(root / "etc/default/keyboard", kDebian);
    EXPECT_EQ(systemLayout(root.path()).layout, "de,us");
}

TEST(SystemLayout, unknownLayoutGivesTheKeysOfAnother) {
    const test::Environment environment(test::Variables{{"XKB_DEFAULT_LAYOUT", "no-such-layout"}});
    const XkbHandle<xkb_context> context(xkb_context_new(XKB_CONTEXT_NO_FLAGS));
    xkb_context_set_log_level(context.get(), XKB_LOG_LEVEL_CRITICAL);
    const auto keymap = systemKeymap(*context);
    ASSERT_TRUE(keymap);
    EXPECT_STREQ(xkb_keymap_layout_get_name(keymap.get(), 0), "English (US)");
}

} // namespace
} // namespace tavi
