#include "platform/x11/RecordedVideo.h"
#include "platform/x11/RecorderProcess.h"
#include "platform/x11/XTestServer.h"
#include "project/RecordingMetadataJson.h"

#include <gmock/gmock.h>

#include <array>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <memory>
#include <unistd.h>

namespace tavi {
namespace {

using test::RecorderProcess;
using test::waitFor;
using testing::HasSubstr;

/// A second after the first picture.
constexpr const char* kRunning = "● 0:01";

/// A terminal that nobody looks at but the test.
class Terminal {
public:
    Terminal() : m_near(posix_openpt(O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC)) {
        EXPECT_EQ(grantpt(m_near) + unlockpt(m_near), 0);
        m_far = open(ptsname(m_near), O_RDWR | O_NOCTTY | O_CLOEXEC);
    }
    ~Terminal() {
        close(m_far);
        close(m_near);
    }
    Terminal(const Terminal&) = delete;
    Terminal& operator=(const Terminal&) = delete;

    /// Where programs write.
    int descriptor() const { return m_far; }

    /// Everything written so far.
    const std::string& text() {
        std::array<char, 4096> bytes{};
        for (ssize_t n = 0; (n = read(m_near, bytes.data(), bytes.size())) > 0;) {
            m_text.append(bytes.data(), static_cast<std::size_t>(n));
        }
        return m_text;
    }
    bool shows(const std::string& part) {
        return waitFor([&] { return text().find(part) != std::string::npos; });
    }

private:
    int m_near = -1;
    int m_far = -1;
    std::string m_text;
};

/// A display, and how the program records it on a terminal.
class RecordCommand : public testing::Test {
protected:
    void start(std::vector<std::string> arguments = {}) {
        recorder = std::make_unique<RecorderProcess>(server.name(), std::move(arguments),
                                                     terminal.descriptor());
    }

    void expectWholeTake() {
        const std::string printed = recorder->out();
        const std::filesystem::path take = printed.substr(0, printed.find('\n'));
        EXPECT_FALSE(test::readAll(take / "video.mov").empty());
        const auto decoded = decodeRecordingMetadata(test::readFile(take / "metadata.json"));
        ASSERT_TRUE(decoded);
        metadata = *decoded;
    }

    void expectNoTake() { EXPECT_FALSE(std::filesystem::exists(recorder->library())); }

    const test::XTestServer server{"320x240x24"};
    Terminal terminal;
    std::unique_ptr<RecorderProcess> recorder;
    RecordingMetadata metadata;
};

class RecordUntil : public RecordCommand, public testing::WithParamInterface<int> {};

TEST_P(RecordUntil, theSignalSavesTheTake) {
    start();
    ASSERT_TRUE(terminal.shows(kRunning)) << terminal.text();
    recorder->signal(GetParam());
    EXPECT_EQ(recorder->wait(), 0);
    expectWholeTake();
}

INSTANTIATE_TEST_SUITE_P(Signals, RecordUntil, testing::Values(SIGINT, SIGTERM, SIGHUP));

TEST_F(RecordCommand, isEndedByTheStopCommandWhichWaitsForTheFiles) {
    start();
    ASSERT_TRUE(terminal.shows(kRunning)) << terminal.text();
    int status = -1;
    recorder->run("stop", status);
    EXPECT_EQ(status, 0);
    expectWholeTake();
    EXPECT_EQ(recorder->wait(), 0);
    EXPECT_THAT(recorder->run("stop", status), HasSubstr("No recording is running."));
    EXPECT_EQ(status, 1);
}

TEST_F(RecordCommand, countsDownOnTheTerminalAndRecordsForTheTimeAskedFor) {
    start({"--countdown", "2", "--duration", "0.75"});
    EXPECT_EQ(recorder->wait(), 0);
    EXPECT_THAT(terminal.text(), HasSubstr("\x1b[K2\r\x1b[K1\r"));
    EXPECT_THAT(terminal.text(), HasSubstr("● 0:00  Ctrl-C or `tavi stop` ends"));
    expectWholeTake();
    EXPECT_GE(metadata.duration, 0.75);
}

TEST_F(RecordCommand, stoppedDuringTheCountRecordsNothing) {
    start({"--countdown", "60"});
    ASSERT_TRUE(terminal.shows("60"));
    recorder->signal(SIGINT);
    EXPECT_EQ(recorder->wait(), 1);
    EXPECT_THAT(terminal.text(), HasSubstr("Nothing was recorded"));
    expectNoTake();
}

struct MistakeCase {
    const char* option;
    const char* message;
};

class RecordMistake : public RecordCommand, public testing::WithParamInterface<MistakeCase> {};

TEST_P(RecordMistake, isToldInOneLine) {
    start({GetParam().option, "7"});
    EXPECT_EQ(recorder->wait(), 1);
    EXPECT_EQ(terminal.text(), std::string(GetParam().message) + "\r\n");
    expectNoTake();
}

INSTANTIATE_TEST_SUITE_P(
    Sources, RecordMistake,
    testing::Values(
        MistakeCase{"--display", "tavi: There is no display 7; `tavi sources` lists them."},
        MistakeCase{"--window", "tavi: There is no window 7; `tavi sources` lists them."}));

} // namespace
} // namespace tavi
