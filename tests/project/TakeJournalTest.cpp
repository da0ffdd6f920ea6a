#include "project/TakeJournal.h"

#include <gmock/gmock.h>

#include <cmath>

namespace tavi {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

const CursorImageInfo kArrow{1, 2, 24, 32};
const std::vector<std::uint8_t> kArrowBytes{0, 1, 0x7F, 0x80, 0xFF};
const CursorEvent kMove{0.5, 10.25, 20, CursorEventType::move, 0, std::nullopt, std::nullopt};
const CursorEvent kKey{0.75, -3, 20, CursorEventType::keyDown, 0, "\"/\n\xE2\x8C\x98", 0x40000};

RecordingMetadata facts() {
    RecordingMetadata metadata;
    metadata.startDate = Date{789003250.25};
    metadata.duration = 1.5;
    metadata.screenWidth = 640;
    metadata.screenHeight = 480;
    metadata.hasCameraRecording = true;
    metadata.hasAudioRecording = true;
    metadata.cameraStartDelay = 0.125;
    return metadata;
}

/// A take with one of everything, and its journal.
struct Written {
    Written() {
        appendTakeLine(journal, facts());
        appendImageLine(journal, kArrow, kArrowBytes);
        appendEventLine(journal, kMove);
        appendEventLine(journal, kKey);
        appendElapsedLine(journal, 2.25);
        take.metadata = facts();
        take.metadata.duration = 2.25;
        take.metadata.cursorEvents = {kMove, kKey};
        take.metadata.cursorImageInfos = {kArrow};
        take.cursorImageDatas = {kArrowBytes};
    }
    std::string journal;
    JournaledTake take;
};

TEST(TakeJournal, tellsWhatWasWritten) {
    const Written written;
    EXPECT_EQ(decodeTakeJournal(written.journal), written.take);
}

TEST(TakeJournal, keepsToOneLineAnEntry) {
    const Written written;
    EXPECT_EQ(std::count(written.journal.begin(), written.journal.end(), '\n'), 5);
}

TEST(TakeJournal, takeLineLeavesTheListsOut) {
    RecordingMetadata whole = facts();
    whole.cursorEvents = {kMove};
    whole.cursorImageInfos = {kArrow};
    std::string journal;
    appendTakeLine(journal, whole);
    EXPECT_EQ(decodeTakeJournal(journal)->metadata, facts());
}

TEST(TakeJournal, lastTakeLineCountsAndKeepsTheLog) {
    Written written;
    RecordingMetadata later = facts();
    later.cameraStartDelay = 0.5;
    later.duration = 3;
    appendTakeLine(written.journal, later);
    const auto take = decodeTakeJournal(written.journal);
    ASSERT_TRUE(take);
    EXPECT_EQ(take->metadata.cameraStartDelay, 0.5);
    EXPECT_EQ(take->metadata.duration, 3);
    EXPECT_THAT(take->metadata.cursorEvents, ElementsAre(kMove, kKey));
    EXPECT_THAT(take->cursorImageDatas, SizeIs(1));
}

TEST(TakeJournal, tornLastLineIsIgnoredWhereverItIsTorn) {
    const Written written;
    const std::string& journal = written.journal;
    for (std::size_t length = 0; length < journal.size(); ++length) {
        const auto lines = static_cast<std::size_t>(
            std::count(journal.begin(), journal.begin() + static_cast<long>(length), '\n'));
        const auto take = decodeTakeJournal(std::string_view(journal).substr(0, length));
        ASSERT_EQ(take.has_value(), lines >= 1) << length;
        if (take) {
            EXPECT_THAT(take->cursorImageDatas, SizeIs(std::min<std::size_t>(lines - 1, 1)));
            EXPECT_THAT(take->metadata.cursorEvents,
                        SizeIs(lines <= 2 ? 0 : std::min<std::size_t>(lines - 2, 2)));
        }
    }
}

TEST(TakeJournal, whatStandsBehindADamagedLineIsNotTaken) {
    for (const char* damage :
         {"\n", "{\"event\":{}}\n", "{\"image\":{\"info\":{},\"bytes\":\"00\"}}\n", "0\n",
          "{\"event\":[]}\n", "{\"elapsed\":\"1\"}\n"}) {
        Written written;
        written.journal += damage;
        appendEventLine(written.journal, kMove);
        EXPECT_EQ(decodeTakeJournal(written.journal), written.take) << damage;
    }
}

TEST(TakeJournal, imageWithHalfAByteOrStrangeDigitsEndsIt) {
    for (const char* digits : {"0", "0G", "-1", "0 "}) {
        Written written;
        written.journal += "{\"image\":{\"info\":{\"hotspotX\":1,\"hotspotY\":1,\"width\":1,"
                           "\"height\":1},\"bytes\":\"" +
                           std::string(digits) + "\"}}\n";
        EXPECT_EQ(decodeTakeJournal(written.journal), written.take) << digits;
    }
}

TEST(TakeJournal, zeroesOfAPowerFailureEndIt) {
    Written written;
    written.journal += std::string(4096, '\0');
    EXPECT_EQ(decodeTakeJournal(written.journal), written.take);
}

TEST(TakeJournal, unknownKeysArePassedOver) {
    Written written;
    written.journal += "{\"future\":[1,2]}\n";
    appendElapsedLine(written.journal, 4);
    EXPECT_EQ(decodeTakeJournal(written.journal)->metadata.duration, 4);
}

TEST(TakeJournal, withoutTheTakeInFrontThereIsNone) {
    std::string journal;
    EXPECT_EQ(decodeTakeJournal(journal), std::nullopt);
    appendEventLine(journal, kMove);
    appendTakeLine(journal, facts());
    EXPECT_EQ(decodeTakeJournal(journal), std::nullopt);
}

TEST(TakeJournal, numbersWithoutAJsonFormLeaveTheirLineOut) {
    std::string journal;
    appendElapsedLine(journal, NAN);
    CursorEvent event = kMove;
    event.x = INFINITY;
    appendEventLine(journal, event);
    EXPECT_THAT(journal, IsEmpty());
}

} // namespace
} // namespace tavi
