#include "project/RecordingFolder.h"

#include "support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <time.h>

namespace tavi {
namespace {

using test::TemporaryFolder;
using test::writeFile;

/// Sets environment variables for one test and puts them back.
class Environment {
public:
    ~Environment() {
        for (const auto& [name, value] : m_before) {
            value ? setenv(name.c_str(), value->c_str(), 1) : unsetenv(name.c_str());
        }
        tzset();
    }
    void set(const char* name, const char* value) {
        const char* before = std::getenv(name);
        m_before.emplace_back(name, before ? std::optional<std::string>(before) : std::nullopt);
        value ? setenv(name, value, 1) : unsetenv(name);
    }

private:
    std::vector<std::pair<std::string, std::optional<std::string>>> m_before;
};

TEST(RecordingsDirectory, followsTheOverrideThenTheDesktopsRules) {
    Environment environment;
    const TemporaryFolder home;
    environment.set("HOME", home.path().c_str());
    environment.set("XDG_CONFIG_HOME", nullptr);
    environment.set("XDG_DOCUMENTS_DIR", nullptr);
    environment.set("TAVI_DOCUMENTS_DIR", nullptr);
    EXPECT_EQ(recordingsDirectory(), home / "Documents/Tavlin");
    writeFile(
        home / ".config/user-dirs.dirs",
        "# comment\nXDG_DESKTOP_DIR=\"$HOME/Desktop\"\nXDG_DOCUMENTS_DIR=\"$HOME/Dokumente\"\n");
    EXPECT_EQ(recordingsDirectory(), home / "Dokumente/Tavlin");
    writeFile(home / ".config/user-dirs.dirs", "XDG_DOCUMENTS_DIR=\"/srv/documents\"\n");
    EXPECT_EQ(recordingsDirectory(), "/srv/documents/Tavlin");
    environment.set("XDG_DOCUMENTS_DIR", "/elsewhere");
    EXPECT_EQ(recordingsDirectory(), "/elsewhere/Tavlin");
    environment.set("TAVI_DOCUMENTS_DIR", "/override");
    EXPECT_EQ(recordingsDirectory(), "/override/Tavlin");
}

TEST(RecordingFolder, isNamedByTheLocalDateAndTime) {
    Environment environment;
    environment.set("TZ", "Europe/Berlin");
    tzset();
    EXPECT_EQ(recordingFolderName(Date::fromEpoch(1767225599.9)), "Recording_2026-01-01_00-59-59");
    environment.set("TZ", "UTC");
    tzset();
    EXPECT_EQ(recordingFolderName(Date{0}), "Recording_2001-01-01_00-00-00");
}

TEST(RecordingFolder, isMadeWithItsParentsAndNeverTwice) {
    const TemporaryFolder documents;
    const auto library = documents / "deep/Tavlin";
    std::error_code error = std::make_error_code(std::errc::io_error);
    const auto first = makeRecordingFolder(library, Date{0}, error);
    EXPECT_FALSE(error) << "of something before";
    const auto second = makeRecordingFolder(library, Date{0}, error);
    EXPECT_FALSE(error);
    EXPECT_TRUE(std::filesystem::is_directory(first));
    EXPECT_TRUE(std::filesystem::is_directory(second));
    EXPECT_EQ(first.filename(), recordingFolderName(Date{0}));
    EXPECT_EQ(second.filename(), recordingFolderName(Date{0}) + "_2");
}

TEST(RecordingFolder, aFailureStillGivesThePathAndItsReason) {
    const TemporaryFolder documents;
    writeFile(documents / "Tavlin", "in the way");
    std::error_code error;
    EXPECT_EQ(makeRecordingFolder(documents / "Tavlin", Date{0}, error),
              documents / "Tavlin" / recordingFolderName(Date{0}));
    EXPECT_EQ(error, std::errc::not_a_directory);
}

TEST(RecordingFolder, imagesAreNumberedWithoutPadding) {
    EXPECT_EQ(take::cursorImageName(0), "cursor_0.png");
    EXPECT_EQ(take::cursorImageName(12), "cursor_12.png");
}

TEST(FolderUrl, isPercentEncodedAbsoluteAndEndsWithASlash) {
    EXPECT_EQ(folderUrl("/takes/a b"), "file:///takes/a%20b/");
    EXPECT_EQ(folderUrl("/takes/a b/"), "file:///takes/a%20b/");
    EXPECT_EQ(folderUrl("/ä%#?"), "file:///%C3%A4%25%23%3F/");
    EXPECT_EQ(folderUrl("/a/./b/../c"), "file:///a/c/");
    EXPECT_EQ(folderUrl("/"), "file:///");
    EXPECT_EQ(folderUrl("x"), "file://" + std::filesystem::current_path().string() + "/x/");
}

TEST(FolderUrl, pathsReadBack) {
    for (const char* path : {"/takes/a b", "/ä%#?&=+", "/100%", "/a%2Fb"}) {
        EXPECT_EQ(pathOfFileUrl(folderUrl(path)), std::string(path) + "/");
    }
    EXPECT_EQ(pathOfFileUrl("file://localhost/a/"), "/a/");
    EXPECT_EQ(pathOfFileUrl("/plain/path"), "/plain/path");
    EXPECT_EQ(pathOfFileUrl("file:///a%zz%4"), "/a%zz%4");
}

} // namespace
} // namespace tavi
