#include "project/AppSettings.h"

#include "project/AppSettingsJson.h"
#include "support/TemporaryFolder.h"

#include <gtest/gtest.h>

namespace tavi {
namespace {

using test::readFile;
using test::TemporaryFolder;
using test::writeFile;

AppSettings changed() {
    AppSettings settings;
    settings.defaultAudioEnabled = true;
    settings.outputSettings.fps = 30;
    settings.appearanceSettings.backgroundStyle = BackgroundStyle::wallpaper;
    return settings;
}

TEST(AppSettings, withoutAFileTheyAreTheDefaultsAndNothingIsMade) {
    const TemporaryFolder documents;
    EXPECT_EQ(loadAppSettings(documents / "Tavlin"), AppSettings{});
    EXPECT_FALSE(std::filesystem::exists(documents / "Tavlin"));
}

TEST(AppSettings, aSaveMakesTheLibraryFolderAndReadsBack) {
    const TemporaryFolder documents;
    saveAppSettings(changed(), documents / "deep/Tavlin");
    EXPECT_EQ(loadAppSettings(documents / "deep/Tavlin"), changed());
    std::filesystem::remove_all(documents / "deep");
    saveAppSettings(changed(), documents / "deep/Tavlin");
    EXPECT_EQ(loadAppSettings(documents / "deep/Tavlin"), changed());
}

TEST(AppSettings, keysStandInFieldOrderWithAutoZoomLast) {
    const std::string json = encodeAppSettings({}).value();
    std::size_t last = 0;
    for (const char* key :
         {"defaultCameraEnabled", "defaultAudioEnabled", "outputSettings", "cursorSettings",
          "appearanceSettings", "cameraSettings", "autoZoomSettings"}) {
        const auto at = json.find("\"" + std::string(key) + "\"");
        ASSERT_NE(at, std::string::npos) << key;
        EXPECT_GT(at, last) << key;
        last = at;
    }
}

TEST(AppSettings, aFileLackingAnyOneKeyIsAllDefaults) {
    const TemporaryFolder library;
    for (const char* key :
         {"defaultCameraEnabled", "defaultAudioEnabled", "outputSettings", "cursorSettings",
          "appearanceSettings", "cameraSettings", "autoZoomSettings"}) {
        std::string json = encodeAppSettings(changed()).value();
        json.replace(json.find("\"" + std::string(key) + "\"") + 1, 1, "X");
        writeFile(library / "settings.json", json);
        EXPECT_EQ(loadAppSettings(library.path()), AppSettings{}) << key;
    }
}

TEST(AppSettings, oneBadValueAnywhereIsAllDefaultsAndTheFileStays) {
    const TemporaryFolder library;
    std::string json = encodeAppSettings(changed()).value();
    json.replace(json.find("\"wallpaper\""), 11, "\"Wallpaper\"");
    writeFile(library / "settings.json", json);
    EXPECT_EQ(loadAppSettings(library.path()), AppSettings{});
    EXPECT_EQ(readFile(library / "settings.json"), json);
}

TEST(AppSettings, anEmptyCursorSettingsInsideIsNoError) {
    const TemporaryFolder library;
    std::string json = encodeAppSettings(changed()).value();
    const auto start = json.find("{\"showCursor\"");
    json.replace(start, json.find('}', start) - start + 1, "{}");
    writeFile(library / "settings.json", json);
    EXPECT_EQ(loadAppSettings(library.path()), changed());
}

TEST(AppSettings, aSaveThatFailsIsDropped) {
    const TemporaryFolder documents;
    writeFile(documents / "Tavlin", "a file in the way");
    saveAppSettings(changed(), documents / "Tavlin");
    EXPECT_EQ(readFile(documents / "Tavlin"), "a file in the way");
}

} // namespace
} // namespace tavi
