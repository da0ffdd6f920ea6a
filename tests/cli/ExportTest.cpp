#include "cli/RunTavi.h"

#include <gmock/gmock.h>

#include <filesystem>
#include <string>
#include <vector>

namespace tavi::test {
namespace {

namespace fs = std::filesystem;

using testing::HasSubstr;
using testing::UnorderedElementsAre;

std::string quoted(const fs::path& path) {
    return "'" + path.string() + "'";
}

std::vector<std::string> namesIn(const fs::path& folder) {
    std::vector<std::string> names;
    for (const auto& entry : fs::directory_iterator(folder)) {
        names.push_back(entry.path().filename().string());
    }
    return names;
}

/// Exports run small, and keep their log out of the user's own folder.
class ExportCommand : public testing::Test {
protected:
    ExportCommand() {
        makeTake(folder / "one");
        makeTake(folder / "two");
    }

    Outcome exportTakes(const std::string& arguments) {
        return runShell(
            "TAVI_DOCUMENTS_DIR=" + quoted(folder.path()) + " " + tavi() +
            " export --set outputSettings.resolution=160x90 --set outputSettings.fps=10 " +
            arguments);
    }

    TemporaryFolder folder;
    fs::path films = folder / "films";
};

TEST_F(ExportCommand, severalTakesBecomeFilmsNamedAfterThem) {
    const Outcome outcome = exportTakes("--out-dir " + quoted(films) + " " +
                                        quoted(folder / "one/") + " " + quoted(folder / "two"));
    EXPECT_EQ(outcome.status, 0) << outcome.err;
    EXPECT_THAT(namesIn(films), UnorderedElementsAre("one.mp4", "two.mp4"));
    EXPECT_EQ(outcome.out,
              (films / "one.mp4").string() + "\n" + (films / "two.mp4").string() + "\n");
    EXPECT_EQ(outcome.err, "");
}

TEST_F(ExportCommand, folderOfFilmsIsMadeButNoTreeOfFolders) {
    const fs::path nested = folder / "mistyped/films";
    const Outcome outcome =
        exportTakes("--out-dir " + quoted(nested) + " " + quoted(folder / "one"));
    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(outcome.err, HasSubstr("no such folder: " + nested.string()));
    EXPECT_FALSE(fs::exists(folder / "mistyped"));
}

TEST_F(ExportCommand, takesOfOneNameDoNotReplaceEachOther) {
    makeTake(folder / "other/one");
    const Outcome outcome =
        exportTakes("--out-dir " + quoted(films) + " " + quoted(folder / "one") + " " +
                    quoted(folder / "other/one"));
    EXPECT_EQ(outcome.status, 0) << outcome.err;
    EXPECT_THAT(namesIn(films), UnorderedElementsAre("one.mp4", "one_2.mp4"));
}

TEST_F(ExportCommand, takeThatCannotBeExportedDoesNotStopTheOthers) {
    const Outcome outcome = exportTakes("--out-dir " + quoted(films) + " " +
                                        quoted(folder / "none") + " " + quoted(folder / "two"));
    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(outcome.err, HasSubstr("No such take"));
    EXPECT_THAT(namesIn(films), UnorderedElementsAre("two.mp4"));
}

TEST_F(ExportCommand, severalTakesNeedAFolder) {
    const Outcome outcome =
        exportTakes("-o x.mp4 " + quoted(folder / "one") + " " + quoted(folder / "two"));
    EXPECT_EQ(outcome.status, 2);
    EXPECT_THAT(outcome.err, HasSubstr("--out-dir"));
    EXPECT_EQ(exportTakes(quoted(folder / "one")).status, 2);
}

TEST_F(ExportCommand, interruptLeavesNoFile) {
    // Long enough that the signal comes in the middle of the first of two.
    const Outcome outcome = exportTakes(
        "--set outputSettings.resolution=3840x2160 --set outputSettings.fps=240 --out-dir " +
        quoted(films) + " " + quoted(folder / "one") + " " + quoted(folder / "two") +
        " & export=$!; while kill -0 $export && [ -z \"$(ls -A " + quoted(films) +
        " 2>/dev/null)\" ]; do sleep 0.05; done; kill -INT $export; wait $export");
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.err, "tavi: Export was cancelled.\n");
    EXPECT_TRUE(fs::is_empty(films));
}

} // namespace
} // namespace tavi::test
