#include "platform/desktop/SettingsDefaults.h"

#include "support/TemporaryFolder.h"

#include <gtest/gtest.h>

namespace tavi {
namespace {

using Texts = std::vector<std::string>;

TEST(SettingsDefaults, keepsListsFromOneStartToTheNext) {
    const test::TemporaryFolder folder;
    const auto file = folder / "tavlin" / "tavlin.conf";
    for (const Texts& texts :
         {Texts{"a"}, Texts{"1.4.0-juniper", "1.5.0-saffron"}, Texts{"ü, \"x\""}, Texts{}}) {
        SettingsDefaults(file).setStringArray("readNotificationIDs", texts);
        EXPECT_EQ(SettingsDefaults(file).stringArray("readNotificationIDs"), texts);
    }
}

TEST(SettingsDefaults, whatIsMissingOrBrokenIsEmpty) {
    const test::TemporaryFolder folder;
    EXPECT_EQ(SettingsDefaults(folder / "none").stringArray("readNotificationIDs"), Texts{});
    EXPECT_FALSE(std::filesystem::exists(folder / "none")) << "reading makes no file";
    test::writeFile(folder / "broken", "\x01\x02 not an ini ]]] =");
    EXPECT_EQ(SettingsDefaults(folder / "broken").stringArray("readNotificationIDs"), Texts{});
}

} // namespace
} // namespace tavi
