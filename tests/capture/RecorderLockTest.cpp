#include "capture/RecorderLock.h"

#include "support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <csignal>
#include <cstdlib>
#include <sys/wait.h>
#include <unistd.h>

namespace tavi {
namespace {

/// A process that holds the lock until it is killed.
class OtherRecorder {
public:
    explicit OtherRecorder(const std::filesystem::path& folder) {
        int ready[2];
        EXPECT_EQ(pipe(ready), 0);
        m_pid = fork();
        if (m_pid == 0) {
            const auto lock = RecorderLock::acquire(folder);
            const char byte = lock ? 1 : 0;
            _exit(write(ready[1], &byte, 1) == 1 && lock ? pause() : 1);
        }
        char byte = 0;
        EXPECT_EQ(read(ready[0], &byte, 1), 1);
        EXPECT_EQ(byte, 1);
        close(ready[0]);
        close(ready[1]);
    }
    ~OtherRecorder() { die(); }

    pid_t pid() const { return m_pid; }
    void die() {
        if (m_pid > 0) {
            kill(m_pid, SIGKILL);
            waitpid(m_pid, nullptr, 0);
        }
        m_pid = 0;
    }

private:
    pid_t m_pid = 0;
};

TEST(RecorderLock, isHeldByOneProcess) {
    const test::TemporaryFolder folder;
    EXPECT_EQ(RecorderLock::holder(folder.path()), std::nullopt);
    const OtherRecorder other(folder.path());
    EXPECT_EQ(RecorderLock::holder(folder.path()), other.pid());
    const auto mine = RecorderLock::acquire(folder.path());
    ASSERT_FALSE(mine);
    EXPECT_EQ(mine.error().kind, RecorderLockError::Kind::alreadyRunning);
}

TEST(RecorderLock, fileOfADeadRecorderMeansNothing) {
    const test::TemporaryFolder folder;
    OtherRecorder other(folder.path());
    other.die();
    EXPECT_TRUE(std::filesystem::exists(folder / "recorder.lock"));
    EXPECT_EQ(RecorderLock::holder(folder.path()), std::nullopt);
    EXPECT_TRUE(RecorderLock::acquire(folder.path()));
}

TEST(RecorderLock, needsAFolder) {
    const auto lock = RecorderLock::acquire("/nowhere/at/all");
    ASSERT_FALSE(lock);
    EXPECT_EQ(lock.error().kind, RecorderLockError::Kind::noFolder);
    EXPECT_EQ(RecorderLock::holder("/nowhere/at/all"), std::nullopt);
}

TEST(RecorderLock, liesInAPrivateFolderOfTheRuntimeDirectory) {
    const test::TemporaryFolder runtime;
    setenv("XDG_RUNTIME_DIR", runtime.path().c_str(), 1);
    const auto folder = RecorderLock::folder();
    ASSERT_TRUE(folder);
    EXPECT_EQ(*folder, runtime / "tavlin");
    const auto permissions = std::filesystem::status(*folder).permissions();
    EXPECT_EQ(permissions, std::filesystem::perms::owner_all);
    std::filesystem::permissions(*folder, std::filesystem::perms::all);
    EXPECT_FALSE(RecorderLock::folder()) << "a folder that others may enter";
    unsetenv("XDG_RUNTIME_DIR");
}

} // namespace
} // namespace tavi
