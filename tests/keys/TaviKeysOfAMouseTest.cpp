#include "base/Clock.h"
#include "keys/FakeSeat.h"
#include "support/RunningKeys.h"

#include <gmock/gmock.h>

#include <linux/input-event-codes.h>
#include <sys/wait.h>

namespace tavi {
namespace {

using test::FakeSeat;
using test::RunningKeys;
using testing::ElementsAre;
using testing::IsEmpty;
using Type = CursorEventType;

constexpr const char* kKeyboard = "event5";
constexpr const char* kMouse = "event6";
constexpr const char* kOtherMouse = "event7";

const HelperCommand kWithPointer{test::kHelper, {kHelperPointerOption}};

/// A seat with a keyboard and a mouse, and the helper that tells of both.
class TaviKeysOfAMouse : public testing::Test {
protected:
    TaviKeysOfAMouse() {
        seat.plugIn(kKeyboard);
        seat.plugInMouse(kMouse);
    }
    void start(const HelperCommand& command = kWithPointer) {
        helper = std::make_unique<RunningKeys>(seat.environment(), command);
        ASSERT_TRUE(helper->isReady());
    }
    /// What was told until now; all that was done before has been read.
    std::vector<Type> deeds() {
        const std::size_t before = helper->keys().size();
        seat.type(kKeyboard, {KEY_A});
        EXPECT_TRUE(helper->hasKeys(before + 1));
        std::vector<Type> types;
        for (const PointerLine& click : helper->clicks()) {
            types.push_back(click.type);
        }
        return types;
    }

    FakeSeat seat;
    std::unique_ptr<RunningKeys> helper;
};

TEST_F(TaviKeysOfAMouse, printsBothButtonsAndTheWheel) {
    start();
    seat.type(kMouse, {BTN_LEFT});
    ASSERT_TRUE(helper->hasClicks(2));
    seat.type(kMouse, {BTN_RIGHT});
    ASSERT_TRUE(helper->hasClicks(3));
    seat.turnWheel(kMouse, -240);
    ASSERT_TRUE(helper->hasClicks(5));
    EXPECT_THAT(deeds(), ElementsAre(Type::leftMouseDown, Type::leftMouseUp, Type::rightClick,
                                     Type::scroll, Type::scroll));
}

TEST_F(TaviKeysOfAMouse, tellsTheMomentOfTheDevice) {
    start();
    const SystemClock clock;
    const MediaTime before = clock.hostTime();
    seat.press(kMouse, BTN_LEFT);
    ASSERT_TRUE(helper->hasClicks(1));
    const MediaTime after = clock.hostTime();
    // The device counts microseconds.
    EXPECT_GE(helper->clicks()[0].hostTime, before - MediaTime::fromNanoseconds(1000));
    EXPECT_LE(helper->clicks()[0].hostTime, after);
}

TEST_F(TaviKeysOfAMouse, partsOfANotchAddUp) {
    start();
    for (int part = 0; part < 3; ++part) {
        seat.turnWheel(kMouse, 40);
    }
    ASSERT_TRUE(helper->hasClicks(1));
    seat.turnWheel(kMouse, 80);
    seat.turnWheel(kMouse, -80); // back again is no notch
    EXPECT_THAT(deeds(), ElementsAre(Type::scroll));
}

TEST_F(TaviKeysOfAMouse, movesGiveNoLine) {
    start();
    seat.move(kMouse, 5, -3);
    EXPECT_THAT(deeds(), IsEmpty());
    EXPECT_EQ(helper->text().find("\"p\""), std::string::npos);
}

TEST_F(TaviKeysOfAMouse, aButtonHeldOnTwoMiceWentDownOnce) {
    seat.plugInMouse(kOtherMouse);
    start();
    seat.press(kMouse, BTN_LEFT);
    ASSERT_TRUE(helper->hasClicks(1));
    seat.type(kOtherMouse, {BTN_LEFT});
    EXPECT_THAT(deeds(), ElementsAre(Type::leftMouseDown));
    seat.release(kMouse, BTN_LEFT);
    ASSERT_TRUE(helper->hasClicks(2));
}

TEST_F(TaviKeysOfAMouse, withoutTheOptionTheMouseIsNotOpened) {
    start({test::kHelper});
    EXPECT_EQ(FakeSeat::devicesHeldBy(helper->pid()), 1);
    seat.type(kMouse, {BTN_LEFT});
    EXPECT_THAT(deeds(), IsEmpty());
}

TEST_F(TaviKeysOfAMouse, clicksOfAnotherConsoleGiveNoLine) {
    auto environment = seat.environment();
    environment["XDG_VTNR"] = "2";
    seat.showConsole("tty3");
    helper = std::make_unique<RunningKeys>(environment, kWithPointer);
    ASSERT_TRUE(helper->isReady());
    seat.turnWheel(kMouse, 120);
    ASSERT_TRUE(helper->rests()); // it has heard of that
    seat.showConsole("tty2");
    seat.press(kMouse, BTN_RIGHT);
    ASSERT_TRUE(helper->hasClicks(1));
    EXPECT_EQ(helper->clicks()[0].type, Type::rightClick);
}

TEST_F(TaviKeysOfAMouse, isSilentUntilItMayRead) {
    seat.allow(kMouse, false);
    seat.allow(kKeyboard, false);
    helper = std::make_unique<RunningKeys>(
        seat.unprivilegedEnvironment(),
        HelperCommand{seat.unprivileged(test::kHelper), {kHelperPointerOption}});
    std::this_thread::sleep_for(std::chrono::milliseconds(500));
    EXPECT_EQ(helper->text(), "");
    ASSERT_TRUE(helper->isAlive());
    seat.allow(kKeyboard, true);
    seat.allow(kMouse, true);
    ASSERT_TRUE(helper->isReady());
    // What is done while the device is being opened is lost.
    EXPECT_TRUE(test::eventually([this] {
        seat.turnWheel(kMouse, 120);
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
        return !helper->clicks().empty();
    }));
}

TEST_F(TaviKeysOfAMouse, refusesWhatItDoesNotKnow) {
    const RunningKeys refused(seat.environment(), {test::kHelper, {"--moves"}});
    siginfo_t end{};
    ASSERT_EQ(waitid(P_PID, static_cast<id_t>(refused.pid()), &end, WEXITED | WNOWAIT), 0);
    EXPECT_EQ(end.si_code, CLD_EXITED);
    EXPECT_EQ(end.si_status, 2);
}

} // namespace
} // namespace tavi
