#include "capture/CountdownOverlayService.h"

#include "fakes/FakeOverlay.h"
#include "fakes/FakeTimers.h"

#include <gmock/gmock.h>

namespace tavi {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr double kSecond = 1;
constexpr double kFrame = 1.0 / 30;
const Rect kArea{10, 20, 640, 480};
constexpr std::uint32_t kWindow = 77;

class CountdownOverlayServiceTest : public testing::Test {
protected:
    CountdownOverlayServiceTest() {
        QObject::connect(&*service, &CountdownOverlayService::countdownValueChanged,
                         [this] { values.push_back(service->countdownValue()); });
    }

    void startOverDisplay() {
        service->start(kArea, [this] { ++completions; });
    }
    void startOverWindow() {
        service->start(kWindow, kArea, [this] { ++completions; });
    }
    void count(int seconds) {
        for (int i = 0; i < seconds; ++i) {
            timers.tick(kSecond);
        }
    }

    FakeOverlayPanels panels;
    FakeSourceFrames frames;
    FakeTimers timers;
    std::unique_ptr<CountdownOverlayService> service = std::make_unique<CountdownOverlayService>(
        CountdownOverlayService::Ports{panels, frames, timers});
    int completions = 0;
    std::vector<int> values;
};

TEST_F(CountdownOverlayServiceTest, showsAPanelOverTheAreaAndCountsFromFive) {
    EXPECT_EQ(service->countdownValue(), 5);
    EXPECT_FALSE(service->isCounting());
    startOverDisplay();
    EXPECT_TRUE(service->isCounting());
    EXPECT_THAT(panels.calls(), ElementsAre("makePanel 5", "setFrame", "orderFront"));
    EXPECT_EQ(panels.lastFrame, kArea);
    EXPECT_THAT(timers.running(), ElementsAre(kSecond)) << "nothing is followed over a display";
    count(4);
    EXPECT_THAT(values, ElementsAre(4, 3, 2, 1));
    EXPECT_EQ(completions, 0) << "one is shown for a second as well";
}

TEST_F(CountdownOverlayServiceTest, completesAfterFiveSecondsWithThePanelClosed) {
    bool wasOpen = true;
    service->start(kArea, [&] {
        ++completions;
        wasOpen = panels.isOpen();
    });
    count(5);
    EXPECT_EQ(completions, 1);
    EXPECT_FALSE(wasOpen);
    EXPECT_THAT(timers.running(), IsEmpty());
    EXPECT_THAT(panels.calls(), ElementsAre("makePanel 5", "setFrame", "orderFront", "setValue 4",
                                            "setValue 3", "setValue 2", "setValue 1", "close"));
}

TEST_F(CountdownOverlayServiceTest, cancelDuringTheCountEndsItWithoutCompletion) {
    startOverWindow();
    count(2);
    service->cancel();
    EXPECT_FALSE(panels.isOpen());
    EXPECT_FALSE(service->isCounting());
    EXPECT_THAT(timers.running(), IsEmpty());
    count(5);
    EXPECT_EQ(completions, 0);
    service->cancel();
    EXPECT_EQ(completions, 0);
}

TEST_F(CountdownOverlayServiceTest, followsItsWindowThirtyTimesASecond) {
    frames.windows[kWindow] = kArea;
    startOverWindow();
    EXPECT_THAT(timers.running(), ElementsAre(kSecond, kFrame));
    const Rect moved{300, 200, 700, 500};
    frames.windows[kWindow] = moved;
    timers.tick(kFrame);
    EXPECT_EQ(panels.lastFrame, moved);
}

TEST_F(CountdownOverlayServiceTest, windowThatIsClosedLeavesThePanelAndTheCountGoesOn) {
    startOverWindow();
    timers.tick(kFrame);
    EXPECT_EQ(panels.lastFrame, kArea);
    EXPECT_TRUE(panels.isOpen());
    count(5);
    EXPECT_EQ(completions, 1);
}

TEST_F(CountdownOverlayServiceTest, startsAgainFromFive) {
    startOverDisplay();
    count(3);
    service->cancel();
    startOverDisplay();
    EXPECT_EQ(service->countdownValue(), 5);
    count(5);
    EXPECT_EQ(completions, 1);
}

TEST_F(CountdownOverlayServiceTest, mayBeDestroyedWhenItCompletes) {
    service->start(kWindow, kArea, [this] {
        ++completions;
        service.reset();
    });
    count(5);
    EXPECT_EQ(completions, 1);
    EXPECT_EQ(service, nullptr);
}

TEST_F(CountdownOverlayServiceTest, destroyedDuringTheCountClosesThePanel) {
    startOverWindow();
    service.reset();
    EXPECT_FALSE(panels.isOpen());
    EXPECT_THAT(timers.running(), IsEmpty());
    EXPECT_EQ(completions, 0);
}

} // namespace
} // namespace tavi
