#include "capture/JournalFile.h"

#include "support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <csignal>
#include <fcntl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace tavi {
namespace {

class JournalFileTest : public testing::Test {
protected:
    /// Bytes on the disk, which may be more than the file's size.
    std::int64_t allocated() const {
        struct stat status {};
        EXPECT_EQ(stat(path.c_str(), &status), 0);
        return status.st_blocks * 512;
    }

    const test::TemporaryFolder folder;
    const std::filesystem::path path = folder / "recording.journal";
};

TEST_F(JournalFileTest, holdsWhatWasAppended) {
    const auto journal = JournalFile::create(path);
    ASSERT_TRUE(journal);
    journal->append("one\n");
    journal->append("two\n");
    EXPECT_EQ(test::readFile(path), "one\ntwo\n");
}

TEST_F(JournalFileTest, takesNoFileThatIsThereAndNoFolderThatIsNot) {
    test::writeFile(path, "of an other take");
    EXPECT_FALSE(JournalFile::create(path));
    EXPECT_EQ(test::readFile(path), "of an other take");
    EXPECT_FALSE(JournalFile::create(folder / "nowhere" / "journal"));
}

TEST_F(JournalFileTest, isNotLeftBehindWhileItsRecorderLives) {
    auto journal = JournalFile::create(path);
    EXPECT_FALSE(JournalFile::openLeftBehind(path));
    journal.reset();
    EXPECT_TRUE(JournalFile::openLeftBehind(path));
}

TEST_F(JournalFileTest, isCompletedByOneOnly) {
    test::writeFile(path, "");
    const auto first = JournalFile::openLeftBehind(path);
    ASSERT_TRUE(first);
    EXPECT_FALSE(JournalFile::openLeftBehind(path));
}

TEST_F(JournalFileTest, isLetGoWhenItsProcessIsKilledThoughItsHelperLives) {
    int ready[2];
    ASSERT_EQ(pipe(ready), 0);
    const pid_t recorder = fork();
    if (recorder == 0) {
        const auto journal = JournalFile::create(path);
        if (fork() == 0) { // as the key helper is started
            execlp("sleep", "sleep", "30", nullptr);
            _exit(1);
        }
        static_cast<void>(!write(ready[1], "x", 1));
        pause();
        _exit(1);
    }
    close(ready[1]);
    char c = 0;
    ASSERT_EQ(read(ready[0], &c, 1), 1);
    EXPECT_FALSE(JournalFile::openLeftBehind(path));
    kill(recorder, SIGKILL);
    waitpid(recorder, nullptr, 0);
    // The helper holds a copy until it runs its own program.
    std::unique_ptr<JournalFile> left;
    for (int tries = 0; tries < 1000 && !left; ++tries) {
        usleep(10'000);
        left = JournalFile::openLeftBehind(path);
    }
    EXPECT_TRUE(left);
    close(ready[0]);
}

TEST_F(JournalFileTest, canBeCompletedWhereItCannotBeWritten) {
    test::writeFile(path, "{}\n");
    ASSERT_EQ(chmod(path.c_str(), 0444), 0);
    EXPECT_TRUE(JournalFile::openLeftBehind(path));
}

TEST_F(JournalFileTest, ofAnotherKindIsNone) {
    EXPECT_FALSE(JournalFile::openLeftBehind(path));
    ASSERT_EQ(mkfifo(path.c_str(), 0666), 0);
    EXPECT_FALSE(JournalFile::openLeftBehind(path));
    EXPECT_FALSE(JournalFile::openLeftBehind(folder.path()));
}

TEST_F(JournalFileTest, keepsRoomInReserveUntilItIsReleased) {
    const auto journal = JournalFile::create(path);
    const std::string text(3'000'000, 'x');
    journal->append(text);
    const auto length = static_cast<std::int64_t>(text.size());
    ASSERT_EQ(std::filesystem::file_size(path), text.size()) << "the reserve is not part of it";
    EXPECT_GE(allocated(), 2 * length) << "the sidecar needs as much again";
    journal->releaseReserve();
    EXPECT_LT(allocated(), length + length / 2);
    EXPECT_EQ(test::readFile(path), text);
}

TEST_F(JournalFileTest, takesNoReserveAnewOnceItIsReleased) {
    const auto journal = JournalFile::create(path);
    journal->releaseReserve();
    journal->append("last\n");
    EXPECT_LT(allocated(), 1 << 20);
    EXPECT_EQ(test::readFile(path), "last\n");
}

/// The largest file that this process may write; puts the old limit back.
class FileSizeLimit {
public:
    explicit FileSizeLimit(rlim_t bytes) : m_handler(std::signal(SIGXFSZ, SIG_IGN)) {
        getrlimit(RLIMIT_FSIZE, &m_old);
        const rlimit limit{bytes, m_old.rlim_max};
        setrlimit(RLIMIT_FSIZE, &limit);
    }
    ~FileSizeLimit() {
        setrlimit(RLIMIT_FSIZE, &m_old);
        std::signal(SIGXFSZ, m_handler);
    }

private:
    rlimit m_old{};
    void (*m_handler)(int);
};

TEST_F(JournalFileTest, writesLaterWhatTheDiskDidNotTake) {
    const auto journal = JournalFile::create(path);
    {
        const FileSizeLimit limit(6);
        journal->append("one\n");
        journal->append("two\n");
        EXPECT_EQ(test::readFile(path), "one\ntw");
        journal->append("three\n");
    }
    journal->append("four\n");
    EXPECT_EQ(test::readFile(path), "one\ntwo\nthree\nfour\n");
}

} // namespace
} // namespace tavi
