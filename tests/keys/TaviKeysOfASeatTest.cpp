#include "keys/FakeSeat.h"
#include "support/RunningKeys.h"

#include <gmock/gmock.h>

#include <linux/input-event-codes.h>
#include <sys/wait.h>

namespace tavi {
namespace {

using test::FakeSeat;
using test::kControl;
using test::kShift;
using test::line;
using test::RunningKeys;
using test::Variables;
using testing::ElementsAre;

constexpr const char* kFirst = "event5";
constexpr const char* kSecond = "event6";

/// A seat with one keyboard and variables of its own.
class SeatKeys {
public:
    explicit SeatKeys(const Variables& variables = {}, FakeSeat::Lock lit = FakeSeat::Lock::none) {
        seat.plugIn(kFirst, lit);
        auto environment = seat.environment();
        for (const auto& [name, value] : variables) {
            environment[name] = value;
        }
        helper = std::make_unique<RunningKeys>(environment);
        EXPECT_TRUE(helper->isReady());
    }

    void typeHolding(unsigned modifier, unsigned key) {
        seat.press(kFirst, modifier);
        seat.type(kFirst, {key});
        seat.release(kFirst, modifier);
    }

    /// The keys once there are so many.
    std::vector<std::string> keys(std::size_t count) const {
        EXPECT_TRUE(helper->hasKeys(count));
        return helper->keys();
    }

    FakeSeat seat;
    std::unique_ptr<RunningKeys> helper;
};

TEST(TaviKeysOfASeat, printsEachPressWithItsNameAndModifiers) {
    SeatKeys keys;
    EXPECT_EQ(keys.helper->text(), "{\"ready\":true}\n");
    keys.typeHolding(KEY_RIGHTSHIFT, KEY_A);
    keys.typeHolding(KEY_RIGHTCTRL, KEY_C);
    keys.typeHolding(KEY_LEFTALT, KEY_TAB);
    keys.typeHolding(KEY_RIGHTMETA, KEY_L);
    keys.seat.type(kFirst, {KEY_ENTER, KEY_LEFT, KEY_VOLUMEUP, KEY_PLAYPAUSE, KEY_F5});
    EXPECT_THAT(keys.keys(7),
                ElementsAre(line("A", kShift), line("c", kControl), line("Tab", test::kOption),
                            line("l", test::kCommand), "Return 0", "← 0", "F5 0"));
}

TEST(TaviKeysOfASeat, heldKeyCountsOnce) {
    SeatKeys keys;
    keys.seat.press(kFirst, KEY_X);
    keys.seat.repeat(kFirst, KEY_X);
    keys.seat.repeat(kFirst, KEY_X);
    keys.seat.release(kFirst, KEY_X);
    keys.seat.type(kFirst, {KEY_Y});
    EXPECT_THAT(keys.keys(2), ElementsAre("x 0", "y 0"));
}

TEST(TaviKeysOfASeat, deadKeyAndLetterGiveOneCharacter) {
    SeatKeys keys(Variables{{"XKB_DEFAULT_VARIANT", "intl"}});
    keys.seat.type(kFirst, {KEY_APOSTROPHE, KEY_E});
    EXPECT_THAT(keys.keys(1), ElementsAre("é 0"));
}

TEST(TaviKeysOfASeat, keysSwitchTheLayout) {
    SeatKeys keys(
        Variables{{"XKB_DEFAULT_LAYOUT", "us,gr"}, {"XKB_DEFAULT_OPTIONS", "grp:shifts_toggle"}});
    keys.seat.type(kFirst, {KEY_C});
    keys.typeHolding(KEY_LEFTSHIFT, KEY_RIGHTSHIFT);
    keys.seat.type(kFirst, {KEY_C});
    keys.typeHolding(KEY_LEFTCTRL, KEY_C);
    EXPECT_THAT(keys.keys(3), ElementsAre("c 0", "ψ 0", line("c", kControl)));
}

TEST(TaviKeysOfASeat, numLockThatWasOnBeforeGivesDigits) {
    SeatKeys keys({}, FakeSeat::Lock::num);
    keys.seat.type(kFirst, {KEY_KP4, KEY_NUMLOCK, KEY_KP4});
    EXPECT_THAT(keys.keys(2), ElementsAre("4 0", "← 0"));
}

TEST(TaviKeysOfASeat, capsLockThatWasOnBeforeGivesCapitals) {
    SeatKeys keys({}, FakeSeat::Lock::caps);
    keys.seat.type(kFirst, {KEY_A, KEY_CAPSLOCK, KEY_A});
    EXPECT_THAT(keys.keys(2), ElementsAre("A 0", "a 0"));
}

TEST(TaviKeysOfASeat, keyboardsComeAndGo) {
    FakeSeat seat;
    const RunningKeys helper(seat.environment());
    EXPECT_TRUE(helper.rests());
    EXPECT_EQ(helper.text(), "");
    seat.plugIn(kFirst);
    seat.announce(kFirst);
    ASSERT_TRUE(helper.isReady());
    seat.type(kFirst, {KEY_A});
    ASSERT_TRUE(helper.hasKeys(1));
    seat.unplug(kFirst);
    ASSERT_TRUE(test::eventually([&] { return FakeSeat::devicesHeldBy(helper.pid()) == 0; }));
    seat.plugIn(kSecond);
    seat.announce(kSecond);
    // What is typed while the device is being opened is lost.
    ASSERT_TRUE(test::eventually([&] {
        seat.type(kSecond, {KEY_B});
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
        return helper.keys().size() > 1;
    }));
    EXPECT_EQ(helper.keys()[0], "a 0");
    EXPECT_EQ(helper.keys()[1], "b 0");
    EXPECT_EQ(helper.text().find("ready"), helper.text().rfind("ready"));
}

TEST(TaviKeysOfASeat, keyboardsShareTheirModifiers) {
    FakeSeat seat;
    seat.plugIn(kFirst);
    seat.plugIn(kSecond);
    const RunningKeys helper(seat.environment());
    ASSERT_TRUE(helper.isReady());
    seat.press(kFirst, KEY_LEFTSHIFT);
    seat.type(kFirst, {KEY_A});
    ASSERT_TRUE(helper.hasKeys(1));
    seat.type(kSecond, {KEY_LEFTSHIFT, KEY_B}); // the first keyboard holds it still
    ASSERT_TRUE(helper.hasKeys(2));
    EXPECT_THAT(helper.keys(), ElementsAre(line("A", kShift), line("B", kShift)));
}

TEST(TaviKeysOfASeat, isSilentUntilItMayRead) {
    FakeSeat seat;
    seat.plugIn(kFirst);
    seat.allow(kFirst, false);
    const RunningKeys helper(seat.unprivilegedEnvironment(), seat.unprivileged(test::kHelper));
    std::this_thread::sleep_for(std::chrono::milliseconds(500));
    EXPECT_EQ(helper.text(), "");
    EXPECT_EQ(FakeSeat::devicesHeldBy(helper.pid()), 0);
    ASSERT_TRUE(helper.isAlive());
    seat.allow(kFirst, true);
    ASSERT_TRUE(helper.isReady());
    seat.type(kFirst, {KEY_A});
    ASSERT_TRUE(helper.hasKeys(1));
    EXPECT_THAT(helper.keys(), ElementsAre("a 0"));
}

TEST(TaviKeysOfASeat, keysOfAnotherConsoleGiveNoLine) {
    SeatKeys keys(Variables{{"XDG_VTNR", "2"}});
    keys.seat.showConsole("tty3");
    keys.seat.type(kFirst, {KEY_A});
    keys.seat.press(kFirst, KEY_LEFTSHIFT);
    keys.seat.type(kFirst, {KEY_B});
    ASSERT_TRUE(keys.helper->rests()); // it has heard all that
    keys.seat.showConsole("tty2");
    keys.seat.type(kFirst, {KEY_C});
    EXPECT_THAT(keys.keys(1), ElementsAre(line("C", kShift)));
}

TEST(TaviKeysOfASeat, opensNothingButKeyboards) {
    FakeSeat seat;
    seat.plugIn(kFirst);
    seat.plugInMouse(kSecond);
    const RunningKeys helper(seat.environment());
    ASSERT_TRUE(helper.isReady());
    EXPECT_EQ(FakeSeat::devicesHeldBy(helper.pid()), 1);
}

TEST(TaviKeysOfASeat, sleepsWhileNobodyTypes) {
    SeatKeys keys;
    keys.seat.type(kFirst, {KEY_A});
    ASSERT_TRUE(keys.helper->hasKeys(1));
    EXPECT_TRUE(keys.helper->rests(std::chrono::seconds(1)));
}

TEST(TaviKeysOfASeat, endsBySignal15) {
    const SeatKeys keys;
    ASSERT_EQ(kill(keys.helper->pid(), SIGTERM), 0);
    siginfo_t end{};
    ASSERT_EQ(waitid(P_PID, static_cast<id_t>(keys.helper->pid()), &end, WEXITED | WNOWAIT), 0);
    EXPECT_EQ(end.si_code, CLD_KILLED);
    EXPECT_EQ(end.si_status, SIGTERM);
}

} // namespace
} // namespace tavi
