#include "capture/PosixHelperLauncher.h"

#include "support/TemporaryFolder.h"

#include <gmock/gmock.h>

#include <chrono>
#include <condition_variable>
#include <csignal>
#include <mutex>

namespace tavi {
namespace {

using namespace std::chrono_literals;

/// Collects what a helper says; waits for it.
class Listener {
public:
    HelperLauncher::ChunkHandler handler() {
        return [this](std::string_view chunk) {
            const std::lock_guard lock(m_mutex);
            m_heard += chunk;
            m_wake.notify_all();
        };
    }
    bool hears(const std::string& text) {
        std::unique_lock lock(m_mutex);
        return m_wake.wait_for(lock, 10s, [&] { return m_heard.find(text) != std::string::npos; });
    }
    std::string heard() {
        const std::lock_guard lock(m_mutex);
        return m_heard;
    }

private:
    std::mutex m_mutex;
    std::condition_variable m_wake;
    std::string m_heard;
};

class PosixHelperLauncherTest : public testing::Test {
protected:
    std::string script(const std::string& body) {
        const auto path = folder / "helper";
        test::writeFile(path, "#!/bin/sh\n" + body);
        std::filesystem::permissions(path, std::filesystem::perms::owner_all);
        return path.string();
    }

    test::TemporaryFolder folder;
    Listener listener; ///< Outlives every helper.
    PosixHelperLauncher launcher;
};

TEST_F(PosixHelperLauncherTest, givesWhatTheHelperPrints) {
    const auto helper =
        launcher.launch(script("echo '{\"ready\":true}'\nexec sleep 60\n"), listener.handler());
    ASSERT_TRUE(helper);
    EXPECT_TRUE(listener.hears("{\"ready\":true}\n"));
    EXPECT_EQ(kill(helper->pid(), 0), 0);
}

TEST_F(PosixHelperLauncherTest, stopSendsTheSignalAndLeavesNoZombie) {
    auto helper = launcher.launch(script("echo on\nexec sleep 60\n"), listener.handler());
    ASSERT_TRUE(helper);
    ASSERT_TRUE(listener.hears("on"));
    const pid_t pid = helper->pid();
    helper.reset();
    EXPECT_EQ(kill(pid, 0), -1);
    EXPECT_EQ(errno, ESRCH);
}

TEST_F(PosixHelperLauncherTest, helperThatIgnoresTheSignalIsKilled) {
    auto helper = launcher.launch(script("trap '' TERM\necho deaf\nwhile :; do sleep 0.05; done\n"),
                                  listener.handler());
    ASSERT_TRUE(helper);
    ASSERT_TRUE(listener.hears("deaf"));
    const pid_t pid = helper->pid();
    helper.reset();
    EXPECT_EQ(kill(pid, 0), -1);
}

TEST_F(PosixHelperLauncherTest, helperThatEndsByItselfIsReapedAtTheStop) {
    auto helper = launcher.launch(script("echo bye\n"), listener.handler());
    ASSERT_TRUE(helper);
    ASSERT_TRUE(listener.hears("bye"));
    const pid_t pid = helper->pid();
    helper.reset();
    EXPECT_EQ(kill(pid, 0), -1);
}

TEST_F(PosixHelperLauncherTest, missingProgramGivesNothing) {
    EXPECT_EQ(launcher.launch({"/nowhere/helper"}, listener.handler()), nullptr);
}

} // namespace
} // namespace tavi
