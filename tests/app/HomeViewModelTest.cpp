#include "app/HomeViewModel.h"

#include "app/RecordingName.h"
#include "app/RecordingTexts.h"
#include "app/RunningApp.h"

#include <QSignalSpy>
#include <gmock/gmock.h>

#include <sys/stat.h>

namespace tavi {
namespace {

using test::makeTake;
using testing::ElementsAre;
using testing::IsEmpty;

class HomeViewModelTest : public test::RunningApp {
protected:
    /// Takes "a", "b", "c", listed in this order.
    void open(int takes = 3) {
        for (int i = 0; i < takes; ++i) {
            makeTake(library / std::string(1, static_cast<char>('a' + i)), 100 - i, 65.9);
        }
        launchHome();
        home = std::make_unique<HomeViewModel>(*app, QLocale(QLocale::English));
    }
    QString id(int row) const { return field(row, "id"); }
    QString field(int row, const char* name) const {
        return home->rows()[row].toMap()[QLatin1String(name)].toString();
    }

    std::unique_ptr<HomeViewModel> home;
};

TEST_F(HomeViewModelTest, rowsTellNamePlaceLengthAndDate) {
    open();
    ASSERT_EQ(home->rows().size(), 3);
    EXPECT_EQ(field(0, "name"), "a");
    EXPECT_EQ(field(0, "path").toStdString(), (library / "a").string());
    EXPECT_EQ(field(0, "durationText"), "1:05") << "cut off, not rounded";
    EXPECT_FALSE(field(0, "dateText").isEmpty());
}

TEST_F(HomeViewModelTest, anEmptyLibraryHasNoRowsAndNothingToSelect) {
    open(0);
    EXPECT_TRUE(home->rows().isEmpty());
    home->selectAll();
    EXPECT_EQ(home->selectedCount(), 0);
    EXPECT_FALSE(home->allSelected());
}

TEST_F(HomeViewModelTest, selectionTogglesAndKnowsWhenItIsAll) {
    open();
    home->toggleSelection(id(1));
    EXPECT_EQ(home->selectedItems(), QStringList{id(1)});
    home->toggleSelection(id(1));
    EXPECT_EQ(home->selectedCount(), 0);
    home->selectAll();
    EXPECT_TRUE(home->allSelected());
    home->clearSelection();
    EXPECT_EQ(home->selectedCount(), 0);
    home->toggleSelection("no such id");
    EXPECT_EQ(home->selectedCount(), 0);
}

TEST_F(HomeViewModelTest, aScanEmptiesTheSelection) {
    open();
    home->selectAll();
    QSignalSpy changed(home.get(), &HomeViewModel::selectionChanged);
    app->loadRecordings();
    EXPECT_EQ(home->selectedCount(), 0);
    EXPECT_EQ(changed.count(), 1);
}

TEST_F(HomeViewModelTest, renamingTrimsBlanksAndMoves) {
    open();
    EXPECT_EQ(home->rename(id(0), "  neu ü \t"), "");
    EXPECT_EQ(field(0, "name"), "neu ü");
    EXPECT_TRUE(std::filesystem::exists(library / "neu ü" / "video.mov"));
}

struct NameCase {
    const char* description;
    QString name;
    QString problem;
};

TEST_F(HomeViewModelTest, namesAreRefusedForTheFirstReasonThatHolds) {
    open();
    const QString longest(200, u'x');
    const NameCase cases[]{
        {"empty", "", "Name cannot be empty."},
        {"blanks only", "   ", "Name cannot be empty."},
        {"slash", "a/b", "Name cannot contain \"/\" or \":\" characters."},
        {"colon before dot", ".a:b", "Name cannot contain \"/\" or \":\" characters."},
        {"dot", ".a", "Name cannot start with a dot."},
        {"dot before length", "." + longest, "Name cannot start with a dot."},
        {"201 characters", longest + "x", "Name is too long (max 200 characters)."},
        {"taken", "b", "A recording with this name already exists."},
        {"its own", "a", "A recording with this name already exists."},
    };
    for (const NameCase& c : cases) {
        EXPECT_EQ(home->rename(id(0), c.name), c.problem) << c.description;
        EXPECT_EQ(field(0, "name"), "a") << c.description;
    }
    EXPECT_EQ(home->rename(id(0), longest), "") << "200 characters are accepted";
}

TEST_F(HomeViewModelTest, charactersAreCountedAsAReaderDoes) {
    QString flags;
    for (int i = 0; i < 60; ++i) {
        flags += QString::fromUtf8("🇩🇪"); // two code points, four units, one character
    }
    EXPECT_EQ(problemWithName(flags, library / "a"), "");
    EXPECT_NE(problemWithName(flags.repeated(4), library / "a"), "");
}

TEST_F(HomeViewModelTest, aFileOfThatNameIsInTheWayToo) {
    open();
    test::writeFile(library / "notes", "");
    EXPECT_EQ(home->rename(id(0), "notes"), "A recording with this name already exists.");
    std::filesystem::create_symlink("/nowhere", library / "link");
    EXPECT_EQ(home->rename(id(0), "link"), "A recording with this name already exists.");
}

TEST_F(HomeViewModelTest, aTakeThatWentAwayMeanwhileIsTold) {
    open();
    const QString gone = id(0);
    std::filesystem::remove_all(library / "a");
    EXPECT_EQ(home->rename(gone, "new"), "Could not rename: \"a\" is not there any more.");
    EXPECT_EQ(home->deleteItem(gone), "Could not delete: \"a\" is not there any more.");
    app->loadRecordings();
    EXPECT_EQ(home->rename(gone, "new"), "This recording is not there any more.");
}

TEST_F(HomeViewModelTest, deletingTellsWhoseThumbnailGoes) {
    open();
    QSignalSpy gone(home.get(), &HomeViewModel::recordingGone);
    EXPECT_EQ(home->deleteItem(id(1)), "");
    ASSERT_EQ(gone.count(), 1);
    EXPECT_EQ(gone[0][0].toUrl().toLocalFile().toStdString(), (library / "b").string());
    EXPECT_THAT(names(), ElementsAre("a", "c"));
}

TEST_F(HomeViewModelTest, aBatchDeletesTheSelectedAndClearsTheSelection) {
    open();
    home->toggleSelection(id(2));
    home->toggleSelection(id(0));
    EXPECT_EQ(home->deleteSelected(), "");
    EXPECT_THAT(names(), ElementsAre("b"));
    EXPECT_EQ(home->selectedCount(), 0);
}

TEST_F(HomeViewModelTest, aBatchTellsItsFirstFailure) {
    open();
    home->selectAll();
    std::filesystem::remove_all(library / "b");
    EXPECT_EQ(home->deleteSelected(), "Could not delete: \"b\" is not there any more.");
    EXPECT_THAT(names(), IsEmpty());
}

TEST(RecordingTexts, lengthsAreMinutesAndSecondsCutOff) {
    EXPECT_EQ(durationText(0), "0:00");
    EXPECT_EQ(durationText(59.999), "0:59");
    EXPECT_EQ(durationText(60), "1:00");
    EXPECT_EQ(durationText(3725), "62:05");
    EXPECT_EQ(durationText(-3), "0:00");
    EXPECT_EQ(durationText(std::nan("")), "0:00");
    EXPECT_FALSE(durationText(INFINITY).isEmpty());
}

TEST(RecordingTexts, datesAreInTheWordsOfTheLocale) {
    const Date noon = Date::fromEpoch(1'795'262'400);
    EXPECT_TRUE(dateText(noon, QLocale(QLocale::English)).startsWith("Nov 2"));
    EXPECT_TRUE(dateText(noon, QLocale(QLocale::French)).startsWith("nov. 2"));
    EXPECT_EQ(dateText(Date{INFINITY}, QLocale::c()), "");
    EXPECT_EQ(dateText(Date{std::nan("")}, QLocale::c()), "");
}

} // namespace
} // namespace tavi
