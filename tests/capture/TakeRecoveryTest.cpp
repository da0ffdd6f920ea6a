#include "capture/TakeRecovery.h"

#include "capture/CursorImageBytes.h"
#include "capture/JournalFile.h"
#include "fakes/FakeMedia.h"
#include "project/RecordingMetadataJson.h"
#include "project/TakeJournal.h"
#include "support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <sys/stat.h>
#include <unistd.h>

namespace tavi {
namespace {

using test::readFile;

/// A folder as a recorder leaves it that was killed after two events.
class TakeRecoveryTest : public testing::Test {
protected:
    TakeRecoveryTest() {
        journaled.startDate = Date{789003250.25};
        journaled.duration = 4;
        journaled.screenWidth = 640;
        journaled.screenHeight = 480;
        journaled.cursorImageInfos = {{0, 0, 2, 3}};
        for (const double time : {0.5, 3.75}) {
            CursorEvent& event = journaled.cursorEvents.emplace_back();
            event.timestamp = time;
        }
        std::string journal;
        appendTakeLine(journal, journaled);
        appendImageLine(journal, journaled.cursorImageInfos[0],
                        cursorImageBytes(PixelBuffer(2, 3), 0, 0));
        for (const CursorEvent& event : journaled.cursorEvents) {
            appendEventLine(journal, event);
        }
        test::writeFile(path("recording.journal"), journal);
        test::writeFile(path("video.mov"), "film");
    }

    std::filesystem::path path(const char* name) const { return folder / name; }
    bool isThere(const char* name) const { return std::filesystem::exists(path(name)); }
    bool recover() { return TakeRecovery(media, images).recover(folder.path()); }
    Result<RecordingMetadata, JsonError> sidecar() const {
        return decodeRecordingMetadata(readFile(path("metadata.json")));
    }

    RecordingMetadata journaled;
    const test::TemporaryFolder folder;
    FakeMediaLibrary media;
    FakeImageFiles images;
};

TEST_F(TakeRecoveryTest, makesTheSidecarAndTheImages) {
    EXPECT_TRUE(recover());
    EXPECT_EQ(sidecar(), journaled);
    ASSERT_EQ(images.written.count("cursor_0.png"), 1U);
    EXPECT_EQ(images.written.at("cursor_0.png")->height(), 3);
    EXPECT_FALSE(isThere("recording.journal"));
}

TEST_F(TakeRecoveryTest, takesTheDurationOfTheVideoWhereItCanBeRead) {
    media.asset.emplace().duration = MediaTime{45, 10};
    EXPECT_TRUE(recover());
    EXPECT_EQ(sidecar()->duration, 4.5);
}

TEST_F(TakeRecoveryTest, takesTheElapsedTimeWhereTheVideoHoldsNothing) {
    media.asset.emplace().duration = MediaTime{0, 1};
    EXPECT_TRUE(recover());
    EXPECT_EQ(sidecar()->duration, 4);
}

TEST_F(TakeRecoveryTest, cameraThatCameAfterTheLastLineIsTold) {
    test::writeFile(path("camera.mov"), "face");
    EXPECT_TRUE(recover());
    EXPECT_TRUE(sidecar()->hasCameraRecording);
}

TEST_F(TakeRecoveryTest, happensOnce) {
    EXPECT_TRUE(recover());
    const std::string first = readFile(path("metadata.json"));
    images.written.clear();
    EXPECT_FALSE(recover());
    EXPECT_EQ(readFile(path("metadata.json")), first);
    EXPECT_TRUE(images.written.empty());
}

TEST_F(TakeRecoveryTest, leavesATakeAloneThatIsRecordedNow) {
    const auto recorder = JournalFile::openLeftBehind(path("recording.journal"));
    ASSERT_TRUE(recorder);
    EXPECT_FALSE(recover());
    EXPECT_FALSE(isThere("metadata.json"));
    EXPECT_TRUE(isThere("recording.journal"));
}

TEST_F(TakeRecoveryTest, keepsAWholeSidecarAndRemovesTheJournal) {
    RecordingMetadata written = journaled;
    written.duration = 99;
    test::writeFile(path("metadata.json"), *encodeRecordingMetadata(written));
    EXPECT_FALSE(recover());
    EXPECT_EQ(sidecar(), written);
    EXPECT_FALSE(isThere("recording.journal"));
}

TEST_F(TakeRecoveryTest, replacesASidecarThatIsCutOff) {
    const std::string whole = *encodeRecordingMetadata(journaled);
    for (const std::size_t length : {std::size_t{0}, std::size_t{1}, whole.size() - 1}) {
        const std::string journal = readFile(path("recording.journal"));
        test::writeFile(path("metadata.json"), whole.substr(0, length));
        EXPECT_TRUE(recover()) << length;
        EXPECT_EQ(sidecar(), journaled);
        test::writeFile(path("recording.journal"), journal);
    }
}

TEST_F(TakeRecoveryTest, removesWhatWasBegunUnderAHiddenName) {
    test::writeFile(path(".metadata.json.17.new"), "{\"start");
    test::writeFile(path(".cursor_0.png.partial-17"), "\x89PNG");
    test::writeFile(path(".notes"), "of the user");
    EXPECT_TRUE(recover());
    EXPECT_FALSE(isThere(".metadata.json.17.new"));
    EXPECT_FALSE(isThere(".cursor_0.png.partial-17"));
    EXPECT_TRUE(isThere(".notes"));
}

TEST_F(TakeRecoveryTest, imageThatCannotBeWrittenLeavesAGap) {
    images.unwritable = "cursor_0.png";
    EXPECT_TRUE(recover());
    EXPECT_EQ(sidecar()->cursorImageInfos.size(), 1U);
}

TEST_F(TakeRecoveryTest, changesNothingWithoutVideoOrJournal) {
    std::filesystem::remove(path("video.mov"));
    EXPECT_FALSE(recover());
    EXPECT_TRUE(isThere("recording.journal"));
    test::writeFile(path("video.mov"), "film");
    std::filesystem::remove(path("recording.journal"));
    EXPECT_FALSE(recover());
    EXPECT_FALSE(isThere("metadata.json"));
    EXPECT_FALSE(TakeRecovery(media, images).recover(folder / "nowhere"));
}

TEST_F(TakeRecoveryTest, journalThatTellsNothingStays) {
    test::writeFile(path("recording.journal"), "{\"ta");
    EXPECT_FALSE(recover());
    EXPECT_FALSE(isThere("metadata.json"));
    EXPECT_TRUE(isThere("recording.journal"));
}

TEST_F(TakeRecoveryTest, readsOverATornLastLine) {
    std::filesystem::resize_file(path("recording.journal"),
                                 std::filesystem::file_size(path("recording.journal")) - 3);
    EXPECT_TRUE(recover());
    EXPECT_EQ(sidecar()->cursorEvents.size(), 1U);
}

/// A sidecar can't be made where its hidden name is taken by a folder, whoever runs this.
TEST_F(TakeRecoveryTest, keepsTheJournalWhereTheSidecarCannotBeWritten) {
    std::filesystem::create_directories(
        path((".metadata.json." + std::to_string(getpid()) + ".new/x").c_str()));
    EXPECT_FALSE(recover());
    EXPECT_FALSE(isThere("metadata.json"));
    EXPECT_TRUE(isThere("recording.journal"));
}

} // namespace
} // namespace tavi
