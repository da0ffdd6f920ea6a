#include "platform/x11/RecordedVideo.h"
#include "platform/x11/XTestServer.h"
#include "project/RecordingMetadataJson.h"
#include "support/TemporaryFolder.h"

#include <gmock/gmock.h>

#include <array>
#include <cstdlib>
#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace tavi {
namespace {

using test::waitFor;
using testing::HasSubstr;
using testing::MatchesRegex;

/// A second after the first picture.
constexpr const char* kRunning = "● 0:01";

/// `tavi` on a display of its own, its standard error a terminal.
class Recorder {
public:
    Recorder() {
        m_terminal = posix_openpt(O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC);
        EXPECT_EQ(grantpt(m_terminal) + unlockpt(m_terminal), 0);
        // Kept open, or the terminal hangs up when the program ends.
        m_far = open(ptsname(m_terminal), O_RDWR | O_NOCTTY | O_CLOEXEC);
    }
    ~Recorder() {
        if (m_pid > 0) {
            kill(m_pid, SIGKILL);
            waitpid(m_pid, nullptr, 0);
        }
        close(m_far);
        close(m_terminal);
    }
    Recorder(const Recorder&) = delete;
    Recorder& operator=(const Recorder&) = delete;

    void start(std::vector<std::string> arguments) {
        arguments.insert(arguments.begin(), TAVI_BINARY_DIR "/tavi");
        std::vector<char*> raw;
        for (auto& argument : arguments) {
            raw.push_back(argument.data());
        }
        raw.push_back(nullptr);
        m_pid = fork();
        if (m_pid == 0) {
            setEnvironment();
            dup2(m_far, STDERR_FILENO);
            dup2(open(out().c_str(), O_WRONLY | O_CREAT, 0600), STDOUT_FILENO);
            execv(raw[0], raw.data());
            _exit(127);
        }
    }

    void sendSignal(int number) const { kill(m_pid, number); }

    /// Runs another tavi beside it; its exit status.
    int runBeside(const std::string& argument) const {
        const pid_t pid = fork();
        if (pid == 0) {
            setEnvironment();
            execl(TAVI_BINARY_DIR "/tavi", "tavi", argument.c_str(), nullptr);
            _exit(127);
        }
        int status = -1;
        waitpid(pid, &status, 0);
        return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }

    /// The exit status, when it ended; -1 if it doesn't or a signal ended it.
    int wait() {
        int status = -1;
        if (!waitFor([&] { return waitpid(m_pid, &status, WNOHANG) == m_pid; })) {
            return -1;
        }
        m_pid = 0;
        return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }

    /// Everything on the terminal so far.
    const std::string& terminal() {
        std::array<char, 4096> bytes{};
        for (ssize_t n = 0; (n = read(m_terminal, bytes.data(), bytes.size())) > 0;) {
            m_text.append(bytes.data(), static_cast<std::size_t>(n));
        }
        return m_text;
    }
    bool shows(const std::string& text) {
        return waitFor([&] { return terminal().find(text) != std::string::npos; });
    }

    /// The folder that was printed.
    std::filesystem::path take() const {
        const std::string text = test::readFile(out());
        return text.substr(0, text.find('\n'));
    }

    const test::XTestServer server{"320x240x24"};
    const test::TemporaryFolder folder;

private:
    std::filesystem::path out() const { return folder / "out"; }
    void setEnvironment() const {
        setenv("DISPLAY", server.name().c_str(), 1);
        setenv("TAVI_DOCUMENTS_DIR", folder.path().c_str(), 1);
        setenv("XDG_RUNTIME_DIR", folder.path().c_str(), 1);
    }

    int m_terminal = -1;
    int m_far = -1;
    pid_t m_pid = 0;
    std::string m_text;
};

void expectWhole(const std::filesystem::path& take) {
    EXPECT_FALSE(test::readAll(take / "video.mov").empty());
    EXPECT_TRUE(decodeRecordingMetadata(test::readFile(take / "metadata.json")));
}

class RecordUntil : public testing::TestWithParam<int> {};

TEST_P(RecordUntil, theSignalSavesTheTake) {
    Recorder recorder;
    recorder.start({"record"});
    ASSERT_TRUE(recorder.shows(kRunning)) << recorder.terminal();
    recorder.sendSignal(GetParam());
    EXPECT_EQ(recorder.wait(), 0);
    expectWhole(recorder.take());
}

INSTANTIATE_TEST_SUITE_P(Signals, RecordUntil, testing::Values(SIGINT, SIGTERM, SIGHUP));

TEST(RecordCommand, isEndedByTheStopCommandWhichWaitsForTheFiles) {
    Recorder recorder;
    recorder.start({"record"});
    ASSERT_TRUE(recorder.shows(kRunning)) << recorder.terminal();
    EXPECT_EQ(recorder.runBeside("stop"), 0);
    expectWhole(recorder.take());
    EXPECT_EQ(recorder.wait(), 0);
    EXPECT_EQ(recorder.runBeside("stop"), 1) << "nothing runs any more";
}

TEST(RecordCommand, countsDownOnTheTerminalAndRecordsForTheTimeAskedFor) {
    Recorder recorder;
    recorder.start({"record", "--countdown", "2", "--duration", "0.75"});
    EXPECT_EQ(recorder.wait(), 0);
    EXPECT_THAT(recorder.terminal(), HasSubstr("\x1b[K2\r\x1b[K1\r"));
    EXPECT_THAT(recorder.terminal(), HasSubstr("● 0:00  Ctrl-C or `tavi stop` ends"));
    expectWhole(recorder.take());
    const auto metadata =
        decodeRecordingMetadata(test::readFile(recorder.take() / "metadata.json")).value();
    EXPECT_GE(metadata.duration, 0.75);
}

TEST(RecordCommand, stoppedDuringTheCountRecordsNothing) {
    Recorder recorder;
    recorder.start({"record", "--countdown", "60"});
    ASSERT_TRUE(recorder.shows("60"));
    recorder.sendSignal(SIGINT);
    EXPECT_EQ(recorder.wait(), 1);
    EXPECT_THAT(recorder.terminal(), HasSubstr("Nothing was recorded"));
    EXPECT_FALSE(std::filesystem::exists(recorder.folder / "Tavlin"));
}

TEST(RecordCommand, tellsWhatIsWrongInOneLine) {
    const std::vector<std::pair<std::vector<std::string>, std::string>> cases{
        {{"record", "--display", "7"}, "tavi: There is no display 7; `tavi sources` lists them."},
        {{"record", "--window", "7"}, "tavi: There is no window 7; `tavi sources` lists them."},
    };
    for (const auto& [arguments, message] : cases) {
        Recorder recorder;
        recorder.start(arguments);
        EXPECT_EQ(recorder.wait(), 1);
        EXPECT_EQ(recorder.terminal(), message + "\r\n");
        EXPECT_FALSE(std::filesystem::exists(recorder.folder / "Tavlin"));
    }
}

} // namespace
} // namespace tavi
