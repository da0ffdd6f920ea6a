#include "app/SettingsViewModel.h"

#include "app/StorageSize.h"
#include "fakes/FakeDesktop.h"
#include "fakes/FakeExecutor.h"
#include "support/TemporaryFolder.h"

#include <QSignalSpy>
#include <gmock/gmock.h>

#include <sys/stat.h>

namespace tavi {
namespace {

using test::TemporaryFolder;
using test::writeFile;
using testing::ElementsAre;

const QLocale kEnglish(QLocale::English, QLocale::UnitedStates);

struct CountCase {
    std::int64_t bytes;
    const char* text;
};

class ByteCount : public testing::TestWithParam<CountCase> {};

TEST_P(ByteCount, readsAsInAFileManager) {
    EXPECT_EQ(byteCountText(GetParam().bytes, kEnglish), GetParam().text);
}

INSTANTIATE_TEST_SUITE_P(
    Counts, ByteCount,
    testing::Values(CountCase{0, "Zero KB"}, CountCase{1, "1 byte"}, CountCase{2, "2 bytes"},
                    CountCase{999, "999 bytes"}, CountCase{1000, "1 KB"}, CountCase{1499, "1 KB"},
                    CountCase{999'499, "999 KB"}, CountCase{999'500, "1 MB"},
                    CountCase{1'250'000, "1.3 MB"}, CountCase{12'000'000, "12 MB"},
                    CountCase{999'960'000, "1 GB"}, CountCase{1'254'000'000, "1.25 GB"},
                    CountCase{83'600'000'000, "83.6 GB"}, CountCase{5'000'000'000'000, "5 TB"},
                    CountCase{INT64_MAX, "9.22 EB"}));

TEST(ByteCountText, usesTheLocalesDigits) {
    EXPECT_EQ(byteCountText(1'250'000, QLocale(QLocale::German)), "1,3 MB");
}

TEST(TotalSize, addsUpEveryEntryAtAnyDepthWithoutFollowingLinks) {
    const TemporaryFolder library;
    writeFile(library / "settings.json", std::string(10, 'x'));
    writeFile(library / "take/video.mov", std::string(5000, 'x'));
    writeFile(library / "take/.hidden", std::string(7, 'x'));
    std::filesystem::create_symlink("/usr", library / "link");
    struct stat folder {};
    ASSERT_EQ(lstat((library / "take").c_str(), &folder), 0);
    EXPECT_EQ(totalSize(library.path()),
              5017 + folder.st_size + static_cast<std::int64_t>(std::string("/usr").size()));
}

TEST(TotalSize, ofAFolderThatIsNotThereIsZero) {
    EXPECT_EQ(totalSize("/no/such/folder"), 0);
}

class SettingsViewModelTest : public testing::Test {
protected:
    TemporaryFolder library;
    CallLog log;
    FakeWorkspace workspace{log};
    FakeExecutor main;
    FakeExecutor background;
    SettingsViewModel model{
        {workspace, main, background}, library / "Tavlin", {"1.5", "42"}, kEnglish};
};

TEST_F(SettingsViewModelTest, tellsPlaceVersionAndBuild) {
    EXPECT_EQ(model.locationText().toStdString(), (library / "Tavlin").string());
    EXPECT_EQ(model.versionText(), "1.5");
    EXPECT_EQ(model.buildText(), "42");
    EXPECT_EQ(model.storageSizeText(), "");
}

TEST_F(SettingsViewModelTest, theSizeIsAddedUpInTheBackgroundEachTimeThePanelComesUp) {
    model.appear();
    EXPECT_EQ(model.storageSizeText(), "");
    background.runAll();
    main.runAll();
    EXPECT_EQ(model.storageSizeText(), "Zero KB") << "a library that is not there";
    writeFile(library / "Tavlin/a", std::string(2000, 'x'));
    model.disappear();
    model.appear();
    background.runAll();
    main.runAll();
    EXPECT_EQ(model.storageSizeText(), "2 KB");
}

TEST_F(SettingsViewModelTest, aPanelThatIsClosedMeanwhileDropsTheResult) {
    model.appear();
    background.runAll();
    model.disappear();
    main.runAll();
    EXPECT_EQ(model.storageSizeText(), "");
}

TEST_F(SettingsViewModelTest, theLocationIsRevealed) {
    model.revealLibrary();
    EXPECT_THAT(log.calls(), ElementsAre("reveal " + (library / "Tavlin").string()));
}

} // namespace
} // namespace tavi
