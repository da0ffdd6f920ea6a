#include "cli/RunTavi.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace tavi::test {
namespace {

/// One take for all tests of this file.
class BadInput : public testing::Test {
protected:
    static void SetUpTestSuite() {
        s_folder = new TemporaryFolder;
        makeTake(take());
    }
    static void TearDownTestSuite() {
        delete s_folder;
        s_folder = nullptr;
    }
    static std::filesystem::path take() { return *s_folder / "good take"; }
    static std::filesystem::path place(const std::string& name) { return *s_folder / name; }

    /// The commands that read a take, each with an output that could be written.
    static std::vector<std::string> commandsOn(const std::filesystem::path& folder) {
        const std::string quoted = " '" + folder.string() + "'";
        return {"inspect" + quoted, "zoom" + quoted,
                "export" + quoted + " -o '" + place("film.mp4").string() + "'",
                "render" + quoted + " --at 0.5 -o '" + place("still.png").string() + "'"};
    }

    static void expectOneClearLine(const Outcome& outcome, const std::string& named) {
        EXPECT_EQ(outcome.status, 1) << outcome.err;
        EXPECT_EQ(outcome.out, "");
        EXPECT_EQ(std::count(outcome.err.begin(), outcome.err.end(), '\n'), 1) << outcome.err;
        EXPECT_TRUE(outcome.err.starts_with("tavi: ")) << outcome.err;
        EXPECT_NE(outcome.err.find(named), std::string::npos) << outcome.err;
    }

    static void expectTakeRefused(const std::filesystem::path& folder, const std::string& named) {
        for (const std::string& command : commandsOn(folder)) {
            SCOPED_TRACE(command);
            expectOneClearLine(runTavi(command), named);
        }
        expectNothingLeft(*s_folder);
    }

    /// No film, no still, and no partial file of either.
    static void expectNothingLeft(const TemporaryFolder& folder) {
        for (const auto& entry : std::filesystem::directory_iterator(folder.path())) {
            const std::string name = entry.path().filename();
            EXPECT_EQ(name.find("film"), std::string::npos) << name;
            EXPECT_EQ(name.find("still"), std::string::npos) << name;
        }
    }

    static TemporaryFolder* s_folder;
};

TemporaryFolder* BadInput::s_folder = nullptr;

TEST_F(BadInput, aGoodTakeIsTaken) {
    for (const std::string& command : commandsOn(take())) {
        const Outcome outcome = runTavi(command);
        EXPECT_EQ(outcome.status, 0) << command << "\n" << outcome.err;
    }
    EXPECT_TRUE(std::filesystem::remove(place("film.mp4")));
    EXPECT_TRUE(std::filesystem::remove(place("still.png")));
}

TEST_F(BadInput, aMissingTakeIsNamed) {
    expectTakeRefused(place("nowhere"), "nowhere");
}

TEST_F(BadInput, aFolderWithoutAVideoIsNamed) {
    std::filesystem::create_directory(place("empty take"));
    expectTakeRefused(place("empty take"), "empty take");
}

TEST_F(BadInput, aFileInPlaceOfATakeIsNamed) {
    writeFile(place("plain file"), "");
    expectTakeRefused(place("plain file"), "plain file");
}

TEST_F(BadInput, anEmptyVideoIsNamed) {
    writeFile(place("hollow/video.mov"), "");
    expectTakeRefused(place("hollow"), "video.mov");
}

TEST_F(BadInput, aTextInPlaceOfAVideoIsNamed) {
    writeFile(place("text/video.mov"), "This is no movie at all.\n");
    expectTakeRefused(place("text"), "video.mov");
}

TEST_F(BadInput, aTruncatedVideoIsNamed) {
    const std::string whole = readFile(take() / "video.mov");
    for (const std::size_t percent : {5, 50, 99}) { // the index is at the end of the file
        const auto folder = place("cut" + std::to_string(percent));
        writeFile(folder / "video.mov", whole.substr(0, whole.size() * percent / 100));
        expectTakeRefused(folder, "video.mov");
    }
}

TEST_F(BadInput, anOutputInAMissingFolderIsNamed) {
    expectOneClearLine(
        runTavi("export '" + take().string() + "' -o '" + place("missing/film.mp4").string() + "'"),
        place("missing").string());
    expectOneClearLine(runTavi("render '" + take().string() + "' --at 0 -o '" +
                               place("missing/still.png").string() + "'"),
                       place("missing").string());
    EXPECT_FALSE(std::filesystem::exists(place("missing")));
}

TEST_F(BadInput, anOutputThatCannotBeWrittenIsNamed) {
    // Nobody, not even root, makes files in /proc.
    for (const char* arguments :
         {"export '{}' -o /proc/film.mp4", "render '{}' --at 0 -o /proc/still.png"}) {
        std::string command = arguments;
        command.replace(command.find("{}"), 2, take().string());
        expectOneClearLine(runTavi(command), "/proc/");
    }
}

TEST_F(BadInput, anOutputThatIsAFolderIsNamedAndStays) {
    std::filesystem::create_directory(place("directory"));
    expectOneClearLine(
        runTavi("export '" + take().string() + "' -o '" + place("directory").string() + "'"),
        "directory");
    EXPECT_TRUE(std::filesystem::is_directory(place("directory")));
}

TEST_F(BadInput, aFullDiskLeavesTheExistingFilmAndNothingElse) {
    const TemporaryFolder outputs;
    writeFile(outputs / "film.mp4", "an earlier film");
    // A limit on the size of files stands in for the end of the disk: writes fail half-way.
    const Outcome outcome =
        runShell("trap '' XFSZ; ulimit -f 16; exec " + tavi() + " export '" + take().string() +
                 "' -o '" + (outputs / "film.mp4").string() + "'");
    EXPECT_EQ(outcome.status, 1);
    EXPECT_NE(outcome.err.find("film.mp4"), std::string::npos) << outcome.err;
    EXPECT_EQ(readFile(outputs / "film.mp4"), "an earlier film");
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(outputs.path()), {}), 1);
}

TEST_F(BadInput, aMomentBeyondTheEndIsRefused) {
    expectOneClearLine(runTavi("render '" + take().string() + "' --at 99 -o '" +
                               place("still.png").string() + "'"),
                       "2");
    expectNothingLeft(*s_folder);
}

TEST_F(BadInput, wrongUsageIsStatusTwo) {
    for (const std::string& arguments :
         {std::string(), std::string("fly"), std::string("export"), std::string("zoom --no-such x"),
          "export '" + take().string() + "' -o x.mp4 --set no.such=1",
          "export '" + take().string() + "' -o x.mp4 --set outputSettings.fps=many",
          "render '" + take().string() + "' --at soon -o x.png"}) {
        EXPECT_EQ(runTavi(arguments).status, 2) << arguments;
    }
    EXPECT_EQ(runTavi("--help").status, 0);
    EXPECT_EQ(runTavi("--version").status, 0);
}

TEST_F(BadInput, brokenSidecarsDoNotStopATake) {
    const auto folder = place("broken sidecars");
    std::filesystem::create_directory(folder);
    std::filesystem::copy(take() / "video.mov", folder / "video.mov");
    writeFile(folder / "metadata.json", "{");
    writeFile(folder / "project.json", "\xff\xfe");
    writeFile(folder / "cursor_0.png", "no picture");
    for (const std::string& command : commandsOn(folder)) {
        EXPECT_EQ(runTavi(command).status, 0) << command;
    }
    std::filesystem::remove(place("film.mp4"));
    std::filesystem::remove(place("still.png"));
}

} // namespace
} // namespace tavi::test
