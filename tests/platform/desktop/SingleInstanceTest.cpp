#include "platform/desktop/SingleInstance.h"

#include "support/RunLoop.h"
#include "support/TemporaryFolder.h"

#include <QLocalSocket>
#include <QSignalSpy>
#include <gtest/gtest.h>

#include <csignal>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace tavi {
namespace {

using test::runLoopUntil;

class SingleInstanceTest : public testing::Test {
protected:
    /// A later start, on another thread, as another process would.
    bool startAgain(const std::optional<std::filesystem::path>& take) {
        std::optional<bool> isTaken;
        std::thread other([&] {
            SingleInstance later(folder.path());
            const bool isFirst = later.claim();
            const bool wasTaken = !isFirst && later.handOver(take);
            QMetaObject::invokeMethod(qApp, [&, wasTaken] { isTaken = wasTaken; });
        });
        EXPECT_TRUE(runLoopUntil([&] { return isTaken.has_value(); }));
        other.join();
        return isTaken.value_or(false);
    }
    QString socket() const {
        return QString::fromStdString((folder / "application.socket").string());
    }

    test::TemporaryFolder folder;
};

TEST_F(SingleInstanceTest, aSecondStartRaisesTheFirst) {
    SingleInstance first(folder.path());
    ASSERT_TRUE(first.claim());
    QSignalSpy asked(&first, &SingleInstance::asked);
    EXPECT_TRUE(startAgain(std::nullopt));
    ASSERT_EQ(asked.count(), 1);
    EXPECT_EQ(asked[0][0].toString(), "");
}

TEST_F(SingleInstanceTest, aSecondStartPassesItsTakeWhateverItIsCalled) {
    SingleInstance first(folder.path());
    ASSERT_TRUE(first.claim());
    QSignalSpy asked(&first, &SingleInstance::asked);
    for (const std::string& name : {std::string("/takes/plain"),
                                    std::string("/takes/ü 100 % #1?\nx"), std::string("/a b/")}) {
        EXPECT_TRUE(startAgain(name));
        EXPECT_EQ(asked.last()[0].toString().toStdString(), name);
    }
    EXPECT_TRUE(startAgain("here"));
    EXPECT_EQ(asked.last()[0].toString().toStdString(),
              (std::filesystem::current_path() / "here").string());
}

TEST_F(SingleInstanceTest, whatADeadProcessLeftIsTakenOver) {
    const pid_t dead = fork();
    if (dead == 0) {
        SingleInstance instance(folder.path());
        instance.claim();
        ::kill(getpid(), SIGKILL); // leaves lock and socket
    }
    int status = 0;
    ASSERT_EQ(waitpid(dead, &status, 0), dead);
    ASSERT_TRUE(WIFSIGNALED(status));
    ASSERT_TRUE(std::filesystem::exists(folder / "application.socket"));
    SingleInstance first(folder.path());
    ASSERT_TRUE(first.claim());
    EXPECT_TRUE(startAgain(std::nullopt));
}

TEST_F(SingleInstanceTest, strangersAreNotHeard) {
    SingleInstance first(folder.path());
    ASSERT_TRUE(first.claim());
    QSignalSpy asked(&first, &SingleInstance::asked);
    for (const QByteArray& line :
         {QByteArray("hello\n"), QByteArray("show http://example.org/\n"), QByteArray("\n"),
          QByteArray(100'000, 'x'), QByteArray("show")}) {
        QLocalSocket stranger;
        stranger.connectToServer(socket());
        ASSERT_TRUE(runLoopUntil([&] { return stranger.state() == QLocalSocket::ConnectedState; }));
        stranger.write(line);
        stranger.flush();
        if (line != "show") { // a line without end is waited for
            EXPECT_TRUE(
                runLoopUntil([&] { return stranger.state() == QLocalSocket::UnconnectedState; }));
        }
    }
    EXPECT_TRUE(startAgain(std::nullopt));
    EXPECT_EQ(asked.count(), 1);
}

} // namespace
} // namespace tavi
