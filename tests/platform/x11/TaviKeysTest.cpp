#include "capture/PosixHelperLauncher.h"
#include "platform/x11/XTestServer.h"
#include "project/KeyLineJson.h"

#include <gmock/gmock.h>

#include <cstdlib>
#include <mutex>
#include <sstream>
#include <sys/wait.h>
#include <unistd.h>

namespace tavi {
namespace {

const std::string kHelper = std::string(TAVI_BINARY_DIR) + "/TaviKeys";

constexpr unsigned kShift = 0x20000;
constexpr unsigned kControl = 0x40000;
constexpr unsigned kOption = 0x80000;
constexpr unsigned kCommand = 0x100000;

/// The helper on a display, and what it printed so far.
class RunningKeys {
public:
    explicit RunningKeys(const std::string& display) {
        setenv("DISPLAY", display.c_str(), 1);
        m_process = m_launcher.launch(kHelper, [this](std::string_view chunk) {
            const std::lock_guard lock(m_mutex);
            m_text += chunk;
        });
        unsetenv("DISPLAY");
        EXPECT_TRUE(m_process) << kHelper;
    }

    std::string text() const {
        const std::lock_guard lock(m_mutex);
        return m_text;
    }

    /// Each key line as its "c", a space and its "m".
    std::vector<std::string> keys() const {
        std::istringstream lines(text());
        std::vector<std::string> found;
        for (std::string line; std::getline(lines, line);) {
            if (const auto key = parseKeyLine(line)) {
                found.push_back(key->character + " " + std::to_string(key->modifiers.value_or(99)));
            }
        }
        return found;
    }

    bool isReady() const {
        return test::waitFor([this] { return text().find("\"ready\"") != std::string::npos; });
    }
    bool hasKeys(std::size_t count) const {
        return test::waitFor([this, count] { return keys().size() >= count; });
    }
    bool isAlive() const { return kill(m_process->pid(), 0) == 0; }

private:
    mutable std::mutex m_mutex;
    std::string m_text;
    PosixHelperLauncher m_launcher;
    std::unique_ptr<HelperProcess> m_process;
};

std::string line(const std::string& character, unsigned modifiers) {
    return character + " " + std::to_string(modifiers);
}

TEST(TaviKeys, saysThatItIsReadyInItsFirstLine) {
    const test::XTestServer server;
    const RunningKeys helper(server.name());
    ASSERT_TRUE(helper.isReady());
    EXPECT_EQ(helper.text(), "{\"ready\":true}\n");
}

struct KeyCase {
    const char* xdotool;
    std::string line;
};

TEST(TaviKeys, printsEachPressWithItsNameAndModifiers) {
    const std::vector<KeyCase> cases{
        {"a", line("a", 0)},
        {"shift+a", line("A", kShift)},
        {"ctrl+c", line("c", kControl)},
        {"ctrl+shift+t", line("T", kControl | kShift)},
        {"alt+Tab", line("Tab", kOption)},
        {"shift+Tab", line("Tab", kShift)},
        {"super+l", line("l", kCommand)},
        {"Return", line("Return", 0)},
        {"KP_Enter", line("Return", 0)},
        {"space", line("Space", 0)},
        {"BackSpace", line("Delete", 0)},
        {"Delete", line("ForwardDelete", 0)},
        {"Escape", line("Escape", 0)},
        {"Left", line("←", 0)},
        {"Right", line("→", 0)},
        {"Up", line("↑", 0)},
        {"Down", line("↓", 0)},
        {"F12", line("F12", 0)},
        {"5", line("5", 0)},
        {"shift+5", line("%", kShift)},
        {"quotedbl", line("\"", kShift)},
        {"backslash", line("\\", 0)},
    };
    const test::XTestServer server;
    const RunningKeys helper(server.name());
    ASSERT_TRUE(helper.isReady());
    std::string keys;
    std::vector<std::string> expected;
    for (const auto& c : cases) {
        keys += std::string(" ") + c.xdotool;
        expected.push_back(c.line);
    }
    ASSERT_TRUE(server.run("xdotool key" + keys));
    ASSERT_TRUE(helper.hasKeys(cases.size()));
    EXPECT_EQ(helper.keys(), expected);
}

TEST(TaviKeys, modifiersAloneGiveNoLine) {
    const test::XTestServer server;
    const RunningKeys helper(server.name());
    ASSERT_TRUE(helper.isReady());
    ASSERT_TRUE(
        server.run("xdotool key shift ctrl alt super Caps_Lock Caps_Lock Num_Lock Num_Lock x"));
    ASSERT_TRUE(helper.hasKeys(1));
    EXPECT_THAT(helper.keys(), testing::ElementsAre("x 0"));
}

TEST(TaviKeys, heldKeyCountsOnce) {
    const test::XTestServer server;
    const RunningKeys helper(server.name());
    ASSERT_TRUE(helper.isReady());
    ASSERT_TRUE(server.run("xset r rate 50 100"));
    ASSERT_TRUE(server.run("xdotool keydown x sleep 0.3 keyup x key y"));
    ASSERT_TRUE(helper.hasKeys(2));
    EXPECT_THAT(helper.keys(), testing::ElementsAre("x 0", "y 0"));
}

TEST(TaviKeys, followsTheLayoutOfTheMoment) {
    const test::XTestServer server;
    const RunningKeys helper(server.name());
    ASSERT_TRUE(helper.isReady());
    // Key code 29 is "y" on a US keyboard and "z" on a German one.
    ASSERT_TRUE(server.run("xdotool key 29"));
    ASSERT_TRUE(server.run("setxkbmap de"));
    ASSERT_TRUE(server.run("xdotool key 29"));
    ASSERT_TRUE(helper.hasKeys(2));
    EXPECT_THAT(helper.keys(), testing::ElementsAre("y 0", "z 0"));
}

TEST(TaviKeys, deadKeyAndLetterGiveOneCharacter) {
    const test::XTestServer server;
    setenv("LC_ALL", "en_US.UTF-8", 1);
    const RunningKeys helper(server.name());
    unsetenv("LC_ALL");
    ASSERT_TRUE(helper.isReady());
    ASSERT_TRUE(server.run("setxkbmap de"));
    ASSERT_TRUE(server.run("xdotool key 21 key 26")); // dead acute, e
    ASSERT_TRUE(helper.hasKeys(1));
    EXPECT_THAT(helper.keys(), testing::ElementsAre("é 0"));
}

TEST(TaviKeys, keysOfAGrabbedKeyboardAreSeen) {
    const test::XTestServer server;
    const RunningKeys helper(server.name());
    ASSERT_TRUE(helper.isReady());
    const test::Painter grabber(server);
    std::free(xcb_grab_keyboard_reply(grabber.connection(),
                                      xcb_grab_keyboard(grabber.connection(), 0, grabber.root(),
                                                        XCB_CURRENT_TIME, XCB_GRAB_MODE_ASYNC,
                                                        XCB_GRAB_MODE_ASYNC),
                                      nullptr));
    ASSERT_TRUE(server.run("xdotool key g"));
    EXPECT_TRUE(helper.hasKeys(1));
}

TEST(TaviKeys, withoutDisplayStaysAndIsSilent) {
    const RunningKeys helper(":9871");
    test::runLoopFor(0.3);
    EXPECT_TRUE(helper.isAlive());
    EXPECT_EQ(helper.text(), "");
}

TEST(TaviKeys, staysWhenTheServerDies) {
    test::XTestServer server;
    const RunningKeys helper(server.name());
    ASSERT_TRUE(helper.isReady());
    server.die();
    test::runLoopFor(0.2);
    EXPECT_TRUE(helper.isAlive());
}

/// Runs the helper with a pipe whose reading end is closed at once.
TEST(TaviKeys, endsWhenItsReaderIsGone) {
    const test::XTestServer server;
    for (const std::string& display : {server.name(), std::string(":9871")}) {
        int ends[2];
        ASSERT_EQ(pipe(ends), 0);
        const pid_t pid = fork();
        if (pid == 0) {
            setenv("DISPLAY", display.c_str(), 1);
            dup2(ends[1], STDOUT_FILENO);
            close(ends[0]);
            close(ends[1]);
            execl(kHelper.c_str(), kHelper.c_str(), nullptr);
            _exit(127);
        }
        close(ends[1]);
        close(ends[0]);
        int status = -1;
        EXPECT_TRUE(test::waitFor([&] { return waitpid(pid, &status, WNOHANG) == pid; }))
            << display;
        EXPECT_EQ(status, 0);
    }
}

} // namespace
} // namespace tavi
