#include "app/SettingsManager.h"

#include "support/TemporaryFolder.h"

#include <gtest/gtest.h>

namespace tavi {
namespace {

using test::TemporaryFolder;

TEST(SettingsManager, startsWithTheDefaultsAndMakesNoFolder) {
    const TemporaryFolder documents;
    const SettingsManager manager(documents / "Tavlin");
    EXPECT_EQ(manager.settings(), AppSettings{});
    EXPECT_FALSE(std::filesystem::exists(documents / "Tavlin"));
}

TEST(SettingsManager, everyAssignmentWritesAtOnceEvenAnEqualOne) {
    const TemporaryFolder documents;
    const auto file = documents / "Tavlin/settings.json";
    SettingsManager manager(documents / "Tavlin");
    int changes = 0;
    QObject::connect(&manager, &SettingsManager::settingsChanged, [&] { ++changes; });
    for (int i = 0; i < 2; ++i) {
        std::filesystem::remove(file);
        manager.setSettings(AppSettings{});
        EXPECT_TRUE(std::filesystem::exists(file));
    }
    EXPECT_EQ(changes, 2);
}

TEST(SettingsManager, keepsItsValueWhileAnotherWritesAndThenWritesOverIt) {
    const TemporaryFolder library;
    SettingsManager manager(library.path());
    AppSettings other;
    other.outputSettings.fps = 12;
    saveAppSettings(other, library.path());
    EXPECT_EQ(manager.settings(), AppSettings{});
    AppSettings mine;
    mine.defaultAudioEnabled = true;
    manager.setSettings(mine);
    EXPECT_EQ(loadAppSettings(library.path()), mine);
    EXPECT_EQ(SettingsManager(library.path()).settings(), mine);
}

} // namespace
} // namespace tavi
