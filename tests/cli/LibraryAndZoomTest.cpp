#include "cli/RunTavi.h"
#include "project/EditProjectJson.h"
#include "project/RecordingMetadataJson.h"
#include "project/TakeLoader.h"

#include <gtest/gtest.h>

namespace tavi::test {
namespace {

void writeSidecar(const std::filesystem::path& take, double date) {
    RecordingMetadata metadata;
    metadata.startDate = Date{date};
    metadata.duration = 2;
    metadata.screenWidth = 320;
    metadata.screenHeight = 180;
    for (const double t : {0.5, 0.9}) {
        CursorEvent press;
        press.timestamp = t;
        press.x = 100;
        press.y = 50;
        press.eventType = CursorEventType::leftMouseDown;
        metadata.cursorEvents.push_back(press);
    }
    writeFile(take / "metadata.json", encodeRecordingMetadata(metadata).value());
}

TEST(LibraryCommand, listsTakesNewestFirst) {
    const TemporaryFolder documents;
    for (const auto& [name, date] : {std::pair{"old", 100.0}, std::pair{"new", 200.0}}) {
        writeFile(documents / "Tavlin" / name / "video.mov", "");
        writeSidecar(documents / "Tavlin" / name, date);
    }
    const std::string environment = "TAVI_DOCUMENTS_DIR='" + documents.path().string() + "' ";
    const Outcome table = runShell(environment + tavi() + " library");
    EXPECT_EQ(table.status, 0);
    EXPECT_LT(table.out.find("new"), table.out.find("old")) << table.out;
    const Outcome json = runShell(environment + tavi() + " library --json");
    EXPECT_TRUE(json.out.starts_with(R"([{"name":"new","path":)")) << json.out;
    EXPECT_NE(json.out.find(R"("date":100,"duration":2}])"), std::string::npos) << json.out;
}

TEST(LibraryCommand, anEmptyLibraryIsNoError) {
    const TemporaryFolder documents;
    const std::string environment = "TAVI_DOCUMENTS_DIR='" + documents.path().string() + "' ";
    EXPECT_EQ(runShell(environment + tavi() + " library").status, 0);
    EXPECT_EQ(runShell(environment + tavi() + " library --json").out, "[]\n");
}

TEST(ZoomCommand, writesKeyframesThatADryRunPrintsOnly) {
    const TemporaryFolder documents;
    const auto take = documents / "Tavlin/take";
    makeTake(take);
    writeSidecar(take, 1);
    const Outcome dry = runTavi("zoom '" + take.string() + "' --dry-run");
    EXPECT_EQ(dry.status, 0) << dry.err;
    EXPECT_TRUE(dry.out.starts_with(R"([{"id":")")) << dry.out;
    EXPECT_FALSE(std::filesystem::exists(take / "project.json"));

    EXPECT_EQ(runTavi("zoom '" + take.string() + "' --aggressiveness 1").status, 0);
    const EditProject project = openProject(take);
    ASSERT_EQ(project.keyframes.size(), 1u);
    EXPECT_DOUBLE_EQ(project.keyframes[0].timestamp, 0.5 - 0.4);
    EXPECT_DOUBLE_EQ(project.keyframes[0].endTime, 2);
    EXPECT_EQ(project.autoZoomSettings.aggressiveness, 0.5) << "the take's own setting stays";
}

TEST(ZoomCommand, findsATakeOfTheLibraryByItsName) {
    const TemporaryFolder documents;
    makeTake(documents / "Tavlin/by name");
    const Outcome outcome = runShell("TAVI_DOCUMENTS_DIR='" + documents.path().string() + "' " +
                                     tavi() + " inspect 'by name' --at 0,1.5,9");
    EXPECT_EQ(outcome.status, 0) << outcome.err;
    EXPECT_NE(outcome.out.find(R"({"time":9,"outputTime":null,)"), std::string::npos)
        << outcome.out;
    EXPECT_NE(outcome.out.find(R"("cursor":null)"), std::string::npos) << outcome.out;
}

TEST(CommandLine, anOptionTakesOneValueSoThatTheTakeMayFollow) {
    const TemporaryFolder folder;
    makeTake(folder / "take");
    const Outcome still =
        runTavi("render --at 0 --set outputSettings.resolution=64x36 --set outputSettings.fps=10 "
                "-o '" +
                (folder / "still.png").string() + "' '" + (folder / "take").string() + "'");
    EXPECT_EQ(still.status, 0) << still.err;
    const Outcome seen = runTavi("inspect --at 0,1 '" + (folder / "take").string() + "'");
    EXPECT_EQ(seen.status, 0) << seen.err;
}

} // namespace
} // namespace tavi::test
