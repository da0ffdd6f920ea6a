#include "app/RecordingLibrary.h"

#include "project/RecordingMetadataJson.h"
#include "support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <atomic>

namespace tavi {
namespace {

using test::TemporaryFolder;
using test::writeFile;

constexpr Date kNow{900000000};

void makeTake(const std::filesystem::path& folder, double date, double duration) {
    RecordingMetadata metadata;
    metadata.startDate = Date{date};
    metadata.duration = duration;
    writeFile(folder / "video.mov", "");
    writeFile(folder / "metadata.json", encodeRecordingMetadata(metadata).value());
}

std::vector<std::string> names(const std::vector<RecordingItem>& items) {
    std::vector<std::string> out;
    for (const RecordingItem& item : items) {
        out.push_back(item.url.filename());
    }
    return out;
}

TEST(ScanRecordings, listsTakesNewestFirst) {
    const TemporaryFolder library;
    makeTake(library / "b", 200, 2);
    makeTake(library / "a", 300, 3);
    makeTake(library / "c", 100, 1);
    const auto items = scanRecordings(library.path(), kNow);
    EXPECT_EQ(names(items), (std::vector<std::string>{"a", "b", "c"}));
    EXPECT_EQ(items[0].duration, 3);
    EXPECT_EQ(items[2].date, Date{100});
}

TEST(ScanRecordings, aTakeWithoutASidecarIsListedFirstWithDurationZero) {
    const TemporaryFolder library;
    makeTake(library / "whole", 200, 2);
    writeFile(library / "crashed/video.mov", "");
    makeTake(library / "broken", 100, 9);
    writeFile(library / "broken/metadata.json", R"({"startDate":100,"duration":9})");
    const auto items = scanRecordings(library.path(), kNow);
    ASSERT_EQ(items.size(), 3u);
    EXPECT_EQ(items[2].url.filename(), "whole");
    for (int i = 0; i < 2; ++i) {
        EXPECT_EQ(items[i].date, kNow);
        EXPECT_EQ(items[i].duration, 0);
    }
}

TEST(ScanRecordings, takesAreCompletedBeforeTheyAreRead) {
    const TemporaryFolder library;
    makeTake(library / "whole", 300, 3);
    writeFile(library / "crashed/video.mov", "");
    std::atomic<int> asked = 0;
    const auto items = scanRecordings(library.path(), kNow, [&](const auto& folder) {
        ++asked;
        if (folder.filename() == "crashed") {
            makeTake(folder, 200, 2);
        }
    });
    EXPECT_EQ(asked, 2);
    EXPECT_EQ(names(items), (std::vector<std::string>{"whole", "crashed"}));
    EXPECT_EQ(items[1].duration, 2);
}

TEST(ScanRecordings, foldersWithoutAVideoHiddenOnesAndFilesAreNotListed) {
    const TemporaryFolder library;
    writeFile(library / "settings.json", "{}");
    writeFile(library / "video.mov", "");
    writeFile(library / "empty/metadata.json", "{}");
    writeFile(library / ".hidden/video.mov", "");
    EXPECT_TRUE(scanRecordings(library.path(), kNow).empty());
}

TEST(ScanRecordings, aLibraryThatIsMissingOrNoFolderHasNoTakes) {
    const TemporaryFolder documents;
    EXPECT_TRUE(scanRecordings(documents / "Tavlin", kNow).empty());
    writeFile(documents / "file", "");
    EXPECT_TRUE(scanRecordings(documents / "file", kNow).empty());
}

TEST(ScanRecordings, idsAreFreshAtEveryScan) {
    const TemporaryFolder library;
    makeTake(library / "a", 1, 1);
    EXPECT_NE(scanRecordings(library.path(), kNow)[0].id,
              scanRecordings(library.path(), kNow)[0].id);
}

TEST(ScanRecordings, manyTakesAreReadByAllCores) {
    const TemporaryFolder library;
    for (int i = 0; i < 200; ++i) {
        makeTake(library / ("take" + std::to_string(i)), i, i);
    }
    const auto items = scanRecordings(library.path(), kNow);
    ASSERT_EQ(items.size(), 200u);
    for (int i = 0; i < 200; ++i) {
        EXPECT_EQ(items[i].duration, 199 - i);
    }
}

} // namespace
} // namespace tavi
