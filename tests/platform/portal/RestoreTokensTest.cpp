#include "platform/portal/RestoreTokens.h"

#include "support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <sys/stat.h>

namespace tavi {
namespace {

class RestoreTokensOfAUser : public testing::Test {
protected:
    mode_t modeOf(const std::filesystem::path& path) const {
        struct stat facts {};
        return stat(path.c_str(), &facts) == 0 ? facts.st_mode & 0777 : 0;
    }

    test::TemporaryFolder folder;
    std::filesystem::path file = folder / "state/tavlin/screencast-tokens";
    RestoreTokens tokens{file};
};

TEST_F(RestoreTokensOfAUser, areKeptByTheNameOfTheirSource) {
    tokens.setToken("display-1", "first");
    tokens.setToken("display-2", "second");
    EXPECT_EQ(RestoreTokens(file).token("display-1"), "first");
    EXPECT_EQ(RestoreTokens(file).token("display-2"), "second");
    EXPECT_EQ(RestoreTokens(file).token("display-3"), std::nullopt);
}

TEST_F(RestoreTokensOfAUser, areReplacedAndForgotten) {
    tokens.setToken("display-1", "first");
    tokens.setToken("display-1", "second");
    EXPECT_EQ(tokens.token("display-1"), "second");
    tokens.setToken("display-1", std::nullopt);
    EXPECT_EQ(tokens.token("display-1"), std::nullopt);
}

TEST_F(RestoreTokensOfAUser, canBeReadByNobodyElse) {
    const mode_t before = umask(0);
    tokens.setToken("display-1", "secret");
    umask(before);
    EXPECT_EQ(modeOf(file), 0600U);
}

TEST_F(RestoreTokensOfAUser, leaveNothingBesideTheirFile) {
    tokens.setToken("display-1", "first");
    tokens.setToken("display-1", "second");
    int files = 0;
    for (const auto& entry : std::filesystem::directory_iterator(file.parent_path())) {
        EXPECT_EQ(entry.path(), file);
        ++files;
    }
    EXPECT_EQ(files, 1);
}

TEST_F(RestoreTokensOfAUser, damagedFileCountsAsEmpty) {
    test::writeFile(file, std::string("display-1\n\0\xff garbage\n\ndisplay-2 good\n", 38));
    EXPECT_EQ(tokens.token("display-1"), std::nullopt);
    EXPECT_EQ(tokens.token("display-2"), "good");
}

TEST_F(RestoreTokensOfAUser, tokenWithABlankIsNotKept) {
    tokens.setToken("display-1", "two words");
    EXPECT_EQ(tokens.token("display-1"), std::nullopt);
}

TEST_F(RestoreTokensOfAUser, folderThatCannotBeWrittenIsNoError) {
    test::writeFile(folder / "state", "a file where a folder should be");
    tokens.setToken("display-1", "first");
    EXPECT_EQ(tokens.token("display-1"), std::nullopt);
}

TEST(RestoreTokenFile, isBelowTheStateFolder) {
    const char* before = std::getenv("XDG_STATE_HOME");
    const std::string kept = before != nullptr ? before : "";
    setenv("XDG_STATE_HOME", "/state", 1);
    EXPECT_EQ(restoreTokenFile(), "/state/tavlin/screencast-tokens");
    setenv("XDG_STATE_HOME", "relative", 1);
    setenv("HOME", "/home/somebody", 1);
    EXPECT_EQ(restoreTokenFile(), "/home/somebody/.local/state/tavlin/screencast-tokens");
    before != nullptr ? setenv("XDG_STATE_HOME", kept.c_str(), 1) : unsetenv("XDG_STATE_HOME");
}

} // namespace
} // namespace tavi
