#include "capture/RecordingStatusBarService.h"

#include "fakes/FakeClock.h"
#include "fakes/FakeOverlay.h"
#include "fakes/FakeTimers.h"

#include <gmock/gmock.h>

namespace tavi {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

struct TitleCase {
    double seconds;
    std::string title;
};

class StatusItemTitle : public testing::TestWithParam<TitleCase> {};

TEST_P(StatusItemTitle, isMinutesAndSecondsCutDownToWholeOnes) {
    EXPECT_EQ(statusItemTitle(GetParam().seconds), GetParam().title);
}

INSTANTIATE_TEST_SUITE_P(Times, StatusItemTitle,
                         testing::Values(TitleCase{0, " 00:00"}, TitleCase{0.99, " 00:00"},
                                         TitleCase{59.999, " 00:59"}, TitleCase{60, " 01:00"},
                                         TitleCase{3725, " 62:05"}, // no hours
                                         TitleCase{6000, " 100:00"},
                                         TitleCase{-5, " 00:00"})); // the clock was set back

class RecordingStatusBarServiceTest : public testing::Test {
protected:
    void start() {
        service.start(clock.now(), [this] { ++stops; });
    }

    FakeStatusItems items;
    FakeClock clock;
    FakeTimers timers;
    RecordingStatusBarService service{{items, clock, timers}};
    int stops = 0;
};

TEST_F(RecordingStatusBarServiceTest, showsARedMarkAndTheTimeEachSecond) {
    start();
    EXPECT_EQ(items.lastLook.symbolName, "record.circle");
    EXPECT_EQ(items.lastLook.accessibilityText, "Recording");
    EXPECT_THAT(timers.running(), ElementsAre(1.0));
    clock.advance(1);
    timers.tick(1);
    clock.advance(3724);
    timers.tick(1);
    EXPECT_THAT(items.titles, ElementsAre(" 00:00", " 00:01", " 62:05"));
    EXPECT_EQ(service.title(), " 62:05");
}

TEST_F(RecordingStatusBarServiceTest, clickAsksToStopAndLeavesTheItem) {
    items.click();
    EXPECT_EQ(stops, 0);
    start();
    items.click();
    EXPECT_EQ(stops, 1);
    EXPECT_TRUE(items.isShown());
    EXPECT_TRUE(service.isRunning());
}

TEST_F(RecordingStatusBarServiceTest, stopRemovesTheItemAndForgetsWhatAClickDoes) {
    start();
    service.stop();
    EXPECT_FALSE(items.isShown());
    EXPECT_FALSE(service.isRunning());
    EXPECT_THAT(timers.running(), IsEmpty());
    service.stopRecording();
    EXPECT_EQ(stops, 0);
}

TEST_F(RecordingStatusBarServiceTest, mayBeStoppedByTheClick) {
    service.start(clock.now(), [this] {
        ++stops;
        service.stop();
    });
    items.click();
    EXPECT_EQ(stops, 1);
    EXPECT_FALSE(items.isShown());
}

TEST_F(RecordingStatusBarServiceTest, titleBeginsAnewWithTheNextTake) {
    start();
    clock.advance(70);
    timers.tick(1);
    service.stop();
    start();
    EXPECT_EQ(items.lastLook.title, " 00:00");
    EXPECT_EQ(service.title(), " 00:00");
}

} // namespace
} // namespace tavi
