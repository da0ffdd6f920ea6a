#include "platform/x11/XTestServer.h"
#include "support/RunningKeys.h"

#include <gmock/gmock.h>
#include <xcb/xtest.h>

#include <cstdlib>
#include <sys/wait.h>
#include <unistd.h>

// The header has a field that is named like a keyword of C++.
#define explicit explicitComponents
#include <xcb/xkb.h>
#undef explicit

namespace tavi {
namespace {

using test::kCommand;
using test::kControl;
using test::kOption;
using test::kShift;
using test::line;

/// The helper on a display of its own.
class DisplayKeys : public test::RunningKeys {
public:
    explicit DisplayKeys(const std::string& display, const std::string& locale = "en_US.UTF-8")
        : RunningKeys({{"DISPLAY", display},
                       {"XDG_SESSION_TYPE", "x11"},
                       {"XDG_SEAT", "seat-of-nobody"}, // where no server is: no real keyboard
                       {"LC_ALL", locale}}) {}
};

TEST(TaviKeys, saysThatItIsReadyInItsFirstLine) {
    const test::XTestServer server;
    const DisplayKeys helper(server.name());
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
    const DisplayKeys helper(server.name());
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
    const DisplayKeys helper(server.name());
    ASSERT_TRUE(helper.isReady());
    ASSERT_TRUE(
        server.run("xdotool key shift ctrl alt super Caps_Lock Caps_Lock Num_Lock Num_Lock x"));
    ASSERT_TRUE(helper.hasKeys(1));
    EXPECT_THAT(helper.keys(), testing::ElementsAre("x 0"));
}

TEST(TaviKeys, heldKeyCountsOnce) {
    const test::XTestServer server;
    const DisplayKeys helper(server.name());
    ASSERT_TRUE(helper.isReady());
    ASSERT_TRUE(server.run("xset r rate 50 100"));
    ASSERT_TRUE(server.run("xdotool keydown x sleep 0.3 keyup x key y"));
    ASSERT_TRUE(helper.hasKeys(2));
    EXPECT_THAT(helper.keys(), testing::ElementsAre("x 0", "y 0"));
}

TEST(TaviKeys, followsTheLayoutOfTheMoment) {
    const test::XTestServer server;
    const DisplayKeys helper(server.name());
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
    const DisplayKeys helper(server.name());
    ASSERT_TRUE(helper.isReady());
    ASSERT_TRUE(server.run("setxkbmap de"));
    ASSERT_TRUE(server.run("xdotool key 21 key 26")); // dead acute, e
    ASSERT_TRUE(helper.hasKeys(1));
    EXPECT_THAT(helper.keys(), testing::ElementsAre("é 0"));
}

/// Switches the server's layout group, as a desktop's indicator does.
void lockGroup(const test::XTestServer& server, std::uint8_t group) {
    test::Painter client(server);
    xcb_connection_t* c = client.connection();
    std::free(xcb_xkb_use_extension_reply(c, xcb_xkb_use_extension(c, 1, 0), nullptr));
    xcb_xkb_latch_lock_state(c, XCB_XKB_ID_USE_CORE_KBD, 0, 0, 1, group, 0, 0, 0);
    client.sync();
}

/// Presses a key by its code, as a keyboard does; xdotool would switch the group itself.
void typeCode(const test::XTestServer& server, std::uint8_t code) {
    test::Painter client(server);
    for (const int kind : {XCB_KEY_PRESS, XCB_KEY_RELEASE}) {
        xcb_test_fake_input(client.connection(), static_cast<std::uint8_t>(kind), code, 0,
                            client.root(), 0, 0, 0);
    }
    client.sync();
}

TEST(TaviKeys, followsTheGroupOfTheMoment) {
    const test::XTestServer server;
    ASSERT_TRUE(server.run("setxkbmap us,gr"));
    const DisplayKeys helper(server.name());
    ASSERT_TRUE(helper.isReady());
    constexpr std::uint8_t kKey = 54; // "c" and "ψ"
    typeCode(server, kKey);
    ASSERT_TRUE(helper.hasKeys(1));
    lockGroup(server, 1);
    typeCode(server, kKey);
    ASSERT_TRUE(helper.hasKeys(2));
    ASSERT_TRUE(server.run("xdotool keydown Control_L"));
    lockGroup(server, 1);
    typeCode(server, kKey);
    ASSERT_TRUE(helper.hasKeys(3));
    ASSERT_TRUE(server.run("xdotool keyup Control_L"));
    lockGroup(server, 0);
    typeCode(server, kKey);
    ASSERT_TRUE(helper.hasKeys(4));
    EXPECT_THAT(helper.keys(), testing::ElementsAre("c 0", "ψ 0", line("c", kControl), "c 0"));
}

TEST(TaviKeys, capsLockMakesCapitalsAndNoModifier) {
    const test::XTestServer server;
    const DisplayKeys helper(server.name());
    ASSERT_TRUE(helper.isReady());
    ASSERT_TRUE(server.run("xdotool key Caps_Lock key 38 key Caps_Lock key 38"));
    ASSERT_TRUE(helper.hasKeys(2));
    EXPECT_THAT(helper.keys(), testing::ElementsAre("A 0", "a 0"));
}

TEST(TaviKeys, sleepsWhileNobodyTypes) {
    const test::XTestServer server;
    const DisplayKeys helper(server.name());
    ASSERT_TRUE(helper.isReady());
    ASSERT_TRUE(server.run("xdotool key a"));
    ASSERT_TRUE(helper.hasKeys(1));
    EXPECT_TRUE(helper.rests(std::chrono::seconds(1)));
}

TEST(TaviKeys, keysOfAGrabbedKeyboardAreSeen) {
    const test::XTestServer server;
    const DisplayKeys helper(server.name());
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

/// A server below a Wayland session sees only what is typed into its own windows.
TEST(TaviKeys, inAWaylandSessionTheServerIsNotAsked) {
    const test::XTestServer server;
    const test::RunningKeys helper({{"DISPLAY", server.name()},
                                    {"XDG_SESSION_TYPE", "wayland"},
                                    {"XDG_SEAT", "seat-of-nobody"}});
    test::runLoopFor(0.3);
    ASSERT_TRUE(server.run("xdotool key a"));
    test::runLoopFor(0.2);
    EXPECT_TRUE(helper.isAlive());
    EXPECT_EQ(helper.text(), "");
}

TEST(TaviKeys, withoutDisplayStaysAndIsSilent) {
    const DisplayKeys helper(":9871");
    test::runLoopFor(0.3);
    EXPECT_TRUE(helper.isAlive());
    EXPECT_EQ(helper.text(), "");
}

TEST(TaviKeys, staysWhenTheServerDies) {
    test::XTestServer server;
    const DisplayKeys helper(server.name());
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
            setenv("XDG_SESSION_TYPE", "x11", 1);
            setenv("XDG_SEAT", "seat-of-nobody", 1);
            setenv("DISPLAY", display.c_str(), 1);
            dup2(ends[1], STDOUT_FILENO);
            close(ends[0]);
            close(ends[1]);
            execl(test::kHelper.c_str(), test::kHelper.c_str(), nullptr);
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
